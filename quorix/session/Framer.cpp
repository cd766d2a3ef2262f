#include "quorix/session/Framer.h"

#include <utility>

namespace quorix {

std::optional<Frame> FrameBatch::Next() {
    if (whole_) return std::exchange(whole_, std::nullopt);
    XmlNode child = content_ ? content_->Root().FirstChild() : XmlNode();
    if (!child) return {};
    String text = child.Xml();
    if (child.IsElement()) return Frame{text, std::make_shared<cXML_Node>(XmlDocument::Detach(child))};
    content_->Root().RemoveChild(child);
    return Frame{text, std::make_shared<cXML_Node>()};
}

void Framer::Append(StringView text) {
    if (hopeless_) return;
    text_ += text;
    scanner_.Take(text);
}

// Unlike comments and instructions, a declaration is nothing without its element.
bool Framer::IsDeclarationAlone() const {
    constexpr StringView kOpening = u"<?xml";
    return scanner_.IsEmpty() && StartsWith(text_, kOpening) && IsSpace(text_[kOpening.size()]);
}

FrameBatch Framer::TakeComplete() {
    if (scanner_.Hopeless()) hopeless_ = true;
    if (hopeless_) text_ = String();
    if (hopeless_ || !scanner_.Complete() || IsDeclarationAlone()) return {};
    bool isDocument = std::exchange(scanner_, StanzaScanner()).IsDocument();
    String text = std::exchange(text_, String());
    auto document = XmlDocument::Create();
    bool loaded = isDocument ? document->Load(text) : document->LoadContent(text);
    hopeless_ = !loaded;
    if (!loaded) return {};
    if (!isDocument) return FrameBatch(std::move(document));
    return FrameBatch(Frame{std::move(text), std::make_shared<cXML_Node>(std::move(document))});
}

}  // namespace quorix
