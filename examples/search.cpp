// Looks somebody up in the server's directory: the services first, then the form of the one that searches, then the
// hits. Ends with 1 when there is none within 20 seconds.
#include "examples/Example.h"

using namespace example;

class Seeker : public SessionEvents {
public:
    Seeker(cSession& session, StringView field, StringView value) : session_(session), field_(field), value_(value) {}

    void OnAuthorized() override { session_.FetchAgents(); }

    void OnAgentItem(const std::shared_ptr<cAgentItem>& agent, const NodePtr&) override {
        Say({u"service ", agent->JID(), u": ", agent->Name()});
        if (agent->CanSearch()) directory_ = agent;
    }
    void OnAgentEnd() override {
        if (directory_) return directory_->GetSearchFields();
        Say({u"nobody searches here"});
        Finish(1);
    }

    // A plain form has its fields here; those of a data form are in SearchXData, and are answered with SendXML.
    void OnSearchFields(const std::shared_ptr<cSearchFields>& form) override {
        for (const auto& field : *form) {
            Say({u"field ", field->FieldName(), u" ", field->FieldData()});
            if (field->FieldName() == u"instructions") field->FieldData(u"");  // what is empty is not sent
            if (field->FieldName() == field_) field->FieldData(value_);
        }
        for (const auto& field : session_.SearchXData()->Fields()) {
            Say({u"field ", field->Var(), u" (", field->FieldType(), u"): ", field->Label()});
        }
        directory_->Search();
    }

    void OnSearchResults(const std::shared_ptr<cSearchResults>& hits) override {
        for (const auto& hit : *hits) {
            Say({u"found ", hit->SearchItem()});
            for (const auto& field : *hit->Fields()) Say({u"  ", field->FieldName(), u" = ", field->FieldData()});
        }
        session_.Disconnect();
        Finish(0);
    }

    void OnIQError(const NodePtr&, StringView from, std::int16_t, StringView why) override { Say({from, u": ", why}); }
    void OnError(const NodePtr&, StringView, std::int16_t, StringView why) override { Say({why}); }
    void OnSocketError(const NodePtr&, StringView why, std::int16_t) override { Say({why}); }

private:
    cSession& session_;
    const String field_;
    const String value_;
    std::shared_ptr<cAgentItem> directory_;
};

int main(int count, char** values) {
    const auto arguments = Arguments(count, values, "HOST PORT USER PASSWORD FIELD VALUE");
    const auto session = SessionOf(arguments, u"seeker");
    session->Advise(std::make_shared<Seeker>(*session, arguments[4], arguments[5]));
    session->Connect();
    return Run(20);
}
