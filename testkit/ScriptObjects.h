// Objects to call by name, and values to call them with.
#pragma once

#include <algorithm>
#include <vector>

#include "quorix/scripting/Classes.h"
#include "quorix/services/cAgentItem.h"
#include "quorix/session/cSession.h"

namespace quorix::testkit {

// One object of each class: those that can be made, and what they lead to.
inline std::vector<scripting::Object> OneOfEachClass() {
    using scripting::Object;
    std::vector<Object> all;
    const auto add = [&](const scripting::Value& value) {
        const auto* object = std::get_if<Object>(&value);
        if (object == nullptr || !object->instance) return;
        const bool isKnown = std::any_of(all.begin(), all.end(),
                                         [&](const Object& known) { return known.table == object->table; });
        if (!isKnown) all.push_back(*object);
    };
    const auto session = cSession::Create();
    const auto document = std::make_shared<cXML_Node>();
    document->xml(u"<a><b c='d'/></a>");
    add(scripting::ToValue(session));
    add(scripting::ToValue(document));
    add(scripting::ToValue(session->CreateMessage(u"a@s", MSG_Chat, u"b", u"c")));
    add(scripting::ToValue(std::make_shared<cAgentItem>()));
    add(scripting::ToValue(document->getNode(u"//b")));
    add(scripting::ToValue(document->getNodes(u"//b")));
    for (const scripting::ClassTable* table : scripting::Classes()) {
        if (table->Create()) add(table->MakeObject());
    }
    for (std::size_t i = 0; i < all.size(); ++i) {  // grows as it goes
        const Object object = all[i];
        for (const scripting::Member& member : object.table->Members()) {
            if (member.kind == scripting::MemberKind::Get && member.result.kind == scripting::Kind::Object &&
                member.parameters.empty()) {
                add(scripting::Call(member, object.instance, {}));
            }
        }
    }
    return all;
}

// Some of each kind. None of the texts is the name of a file that could be written.
inline scripting::Values SomeValues() {
    return {
        scripting::Missing(),
        scripting::Nothing(),
        false,
        true,
        std::int16_t(-1),
        std::int32_t(0),
        std::int32_t(1),
        std::int32_t(70000),
        String(),
        String(u"a@s/r"),
        String(u"a//b"),
        String(u"<a xmlns='b'>&amp;</a>"),
        String(1, char16_t(0)),
        String{0xD83C, '/', 0xDF39},
        String(40000, u'x'),
        scripting::ByteArray(),
        scripting::ByteArray("\0\xff", 2),
        scripting::Values(),
    };
}

}  // namespace quorix::testkit
