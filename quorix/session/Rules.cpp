#include "quorix/session/Rules.h"

#include "quorix/base/AutomationError.h"
#include "quorix/platform/Environment.h"

namespace quorix {

namespace {

class ClassicRules : public SessionRules {
public:
    eMode Mode() const override { return KV_Classic; }
    const TextRules& Text() const override { return ClassicText(); }
    std::unique_ptr<StreamReader> NewReader(const std::int32_t& /*maxStanzaSize*/) const override {
        return NewClassicReader();
    }
    std::shared_ptr<Line> NewLine(SessionCore& session) const override { return NewClassicLine(session); }
    StanzaError ErrorOf(const Stanza& stanza) const override { return ErrorAsSent(stanza); }
    bool RefusalEnds() const override { return false; }
    bool ReportsAfterEnd() const override { return true; }
    bool MayTellPassword(bool /*isSecure*/, bool /*isChosen*/) const override { return true; }
    void LetOthersRun() const override { Environment::Current().DoEvents(); }
    void RefuseToSend() const override {}
};

class ModernRules : public SessionRules {
public:
    eMode Mode() const override { return KV_Modern; }
    const TextRules& Text() const override { return ModernText(); }
    std::unique_ptr<StreamReader> NewReader(const std::int32_t& maxStanzaSize) const override {
        return NewModernReader(maxStanzaSize);
    }
    std::shared_ptr<Line> NewLine(SessionCore& session) const override { return NewModernLine(session); }
    StanzaError ErrorOf(const Stanza& stanza) const override { return ErrorByCondition(stanza); }
    bool RefusalEnds() const override { return true; }
    bool ReportsAfterEnd() const override { return false; }
    bool MayTellPassword(bool isSecure, bool isChosen) const override { return isSecure || isChosen; }
    void LetOthersRun() const override {}
    void RefuseToSend() const override { throw AutomationError(ERR_NotConnected); }
};

}  // namespace

const SessionRules& RulesOf(eMode mode) {
    static const ClassicRules classic;
    static const ModernRules modern;
    switch (mode) {
        case KV_Classic: return classic;
        case KV_Modern: return modern;
    }
    throw AutomationError(ERR_Overflow);
}

}  // namespace quorix
