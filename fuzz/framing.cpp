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
    Texts Take(const std::string& chunk) {
        waiting_ += chunk;
        Texts texts;
        if (ParsedXml::FromWire(waiting_)) {
            texts.push_back(WireFromBytes(waiting_));
        } else if (ParsedXmlPtr content = ParsedXml::ContentFromWire(waiting_)) {
            for (ParsedNode child = content->First(); child; child = child.NextSibling()) {
                if (!child.IsBlankText()) texts.push_back(child.Xml());
            }
        } else {
            return texts;
        }
        waiting_.clear();
        return texts;
    }

private:
    std::string waiting_;
};

Texts Take(Framer& framer, std::string_view chunk) {
    framer.Append(chunk);
    Texts texts;
    while (auto frame = framer.Next()) {
        texts.push_back(frame->bytes.IsEmpty() ? frame->Xml() : String(frame->bytes.BecomeText()));
    }
    return texts;
}

}  // namespace
}  // namespace quorix

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    FuzzedDataProvider input(data, size);
    quorix::Framer framer;
    quorix::PlainFramer plain;
    while (input.remaining_bytes() > 0) {
        std::string chunk = input.ConsumeRandomLengthString();
        // More of its last character is a token that is not looked at anew with each chunk.
        if (!chunk.empty() && input.ConsumeIntegralInRange(0, 15) == 1) chunk.append(70000, chunk.back());
        if (quorix::Take(framer, chunk) != plain.Take(chunk)) std::abort();
    }
    return 0;
}
