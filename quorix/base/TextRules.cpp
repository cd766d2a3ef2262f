#include "quorix/base/TextRules.h"

#include "quorix/base/WireText.h"
#include "quorix/base/modUTF_8.h"

namespace quorix {

namespace {

class Classic : public TextRules {
public:
    void Append(String& xml, StringView value, Put put, Place place) const override {
        switch (put) {
            case Put::Own: xml.append(value); return;
            case Put::Raw: return AppendGuarded(xml, value, place);
            case Put::Encoded: return AppendGuarded(xml, EncodeUTF8(value, false), place);
            case Put::Escaped:
                if (!AppendEncoded(xml, value, true)) AppendGuarded(xml, value, place);
                return;
            case Put::Held: return AppendEscaped(xml, value, place);
            case Put::Text:
                if (!AppendEncoded(xml, value, place)) AppendEscaped(xml, value, place);
                return;
        }
    }
    String ToNode(StringView text) const override { return WithoutForbidden(EncodeUTF8(text, false)); }
    String Read(String received) const override {
        if (!IsDecoded(received)) return DecodeUTF8(received, true);
        return received;
    }
    std::string ToBytes(StringView xml) const override { return BytesFromWire(xml); }
};

class Modern : public TextRules {
public:
    void Append(String& xml, StringView value, Put /*put*/, Place place) const override {
        AppendEscaped(xml, value, place);
    }
    String ToNode(StringView text) const override { return WithoutForbidden(text); }
    String Read(String received) const override { return received; }
    std::string ToBytes(StringView xml) const override { return Utf8FromText(xml); }
};

}  // namespace

const TextRules& ClassicText() {
    static const Classic rules;
    return rules;
}

const TextRules& ModernText() {
    static const Modern rules;
    return rules;
}

}  // namespace quorix
