// The framer against the plain rule that it is a faster form of: try all that has come and was not handed on,
// as a document, then as content.
#include <fuzzer/FuzzedDataProvider.h>

#include <cstdlib>

#include "quorix/base/WireText.h"
#include "quorix/session/Framer.h"

namespace quorix {
namespace {

using Texts = std::vector<String>;

class PlainFramer {
public:
    Texts Take(StringView chunk) {
        waiting_ += chunk;
        Texts texts;
        auto document = XmlDocument::Create();
        if (document->Load(waiting_)) {
            texts.push_back(waiting_);
        } else if (document->LoadContent(waiting_)) {
            XmlNode child = document->Root().FirstChild();
            for (; child; child = child.NextSibling()) texts.push_back(child.Xml());
        } else {
            return texts;
        }
        waiting_.clear();
        return texts;
    }

private:
    String waiting_;
};

Texts Take(Framer& framer, StringView chunk) {
    framer.Append(chunk);
    FrameBatch batch = framer.TakeComplete();
    Texts texts;
    while (auto frame = batch.Next()) texts.push_back(frame->text);
    return texts;
}

}  // namespace
}  // namespace quorix

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    quorix::Framer framer;
    quorix::PlainFramer plain;
    while (input.remaining_bytes() > 0) {
        quorix::String chunk = quorix::WireFromBytes(input.ConsumeRandomLengthString());
        if (quorix::Take(framer, chunk) != plain.Take(chunk)) std::abort();
    }
    return 0;
}
