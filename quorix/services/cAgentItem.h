/// \class quorix::cAgentItem
/// One agent of the server: a transport to another network, a search service, a chat service
/// (jabber:iq:agents), with the form by which one registers with it (jabber:iq:register).
///
/// Ownership: shared between the session's list and the application, which may keep it. What sends goes
/// through the session that listed the agent: error 91 when that session is gone, or for an agent that the
/// application made itself. A field whose name cannot be a tag is left out of
/// a request.
/// Threads: like its session.
#pragma once

#include <memory>

#include "quorix/base/Collection.h"
#include "quorix/base/Export.h"
#include "quorix/base/String.h"
#include "quorix/services/cSearchFields.h"
#include "quorix/services/cXData.h"
#include "quorix/xml/XmlDocument.h"

namespace quorix {

class SessionLink;
class QUORIX_API cAgentItem;

/// One value of the agent's registration form. Its agent is what the application sets; it is held, so an
/// agent that a field of its own points back to lives until one of the two lets go.
class QUORIX_API cAgentField {
public:
    String Name() const { return name_; }
    void Name(StringView value) { name_ = value; }

    String Value() const { return value_; }
    void Value(StringView value) { value_ = value; }

    std::shared_ptr<quorix::cAgentItem> cAgentItem() const { return agent_; }
    void cAgentItem(std::shared_ptr<quorix::cAgentItem> value) { agent_ = std::move(value); }

private:
    String name_;
    String value_;
    std::shared_ptr<quorix::cAgentItem> agent_;
};

class QUORIX_API cAgentAttrib {
public:
    String Name() const { return name_; }
    void Name(StringView value) { name_ = value; }

    String Value() const { return value_; }
    void Value(StringView value) { value_ = value; }

private:
    String name_;
    String value_;
};

class QUORIX_API cAgentItem {
public:
    using FieldList = Collection<std::shared_ptr<cAgentField>>;
    using AttribList = Collection<std::shared_ptr<cAgentAttrib>>;

    /// The "agent" element, from which the properties below are read. What is not well-formed leaves it
    /// empty.
    String xml() const;
    void xml(StringView value);

    /// Wire text, "" when missing.
    String JID() const { return jid_; }
    String Name() const;
    String Service() const;

    bool CanRegister() const;
    bool CanSearch() const;
    bool IsGroupChat() const;
    bool IsTransport() const;

    /// A registration form came with a field "registered" (ASCII case aside).
    bool Registered() const;

    /// The values of the registration form, keyed by name, as received; Update sends them.
    FieldList& Fields() { return fields_; }
    const FieldList& Fields() const { return fields_; }
    /// For the application's own use.
    AttribList& Attribs() { return attribs_; }
    const AttribList& Attribs() const { return attribs_; }

    /// The data form of the registration, without fields when there is none. Each reply appends its fields,
    /// so set a new one before asking again. Never null unless set so.
    const std::shared_ptr<cXData>& xData() const { return xData_; }
    void xData(std::shared_ptr<cXData> value) { xData_ = std::move(value); }

    /// Asks for the search form: OnSearchFields.
    void GetSearchFields();
    /// Sends those of the session's SearchFields that are not empty: OnSearchResults.
    void Search();
    /// Asks the gateway what it needs: OnGatewayInfo. The request carries no id.
    void QueryGateway();
    /// Sends the fields as registration, without "register", "search", "instructions" and "service".
    void Update();
    /// Unregisters by removing the contact JID/registered from the roster.
    void Delete();

    /// Appends. Error 457 when there is one of that name.
    std::shared_ptr<cAgentField> AddField(StringView name, StringView value);
    std::shared_ptr<cAgentAttrib> AddAttrib(StringView name, StringView value);

    /// Position from 1 of the first of exactly that name, 0 when there is none. Error 6 beyond 32767.
    std::int16_t FindField(StringView name) const;
    std::int16_t FindAttrib(StringView name) const;

    /// The value of the last field of exactly that name, "" when there is none.
    String GetField(StringView name) const;
    /// Error 9 when there is no such field.
    void SetField(StringView name, StringView value);

private:
    friend class Agents;

    void SetSession(std::weak_ptr<SessionLink> session, std::shared_ptr<cSearchFields> searchFields);
    bool Has(StringView child) const;
    void SendQuery(StringView type, StringView xmlns, StringView body) const;

    std::shared_ptr<XmlDocument> document_ = XmlDocument::Create();
    String jid_;  // of the document; every presence is compared with it
    FieldList fields_;
    AttribList attribs_;
    std::shared_ptr<cXData> xData_ = std::make_shared<cXData>();
    std::weak_ptr<SessionLink> session_;
    std::shared_ptr<cSearchFields> searchFields_;
};

}  // namespace quorix
