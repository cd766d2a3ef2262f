// The type library inside this program or component, which numbers the members that the tables name.
#pragma once

#include <oaidl.h>

#include <map>
#include <string>

#include "quorix/automation/ComPtr.h"
#include "quorix/automation/Variant.h"

namespace quorix::automation {

using scripting::ClassTable;
using scripting::Member;

// A class as the type library declares it.
struct Declaration {
    GUID classId = {};
    GUID interfaceId = {};
    GUID eventsId = {};  // zero where the class raises none
    ComPtr<ITypeInfo> classInfo;
    ComPtr<ITypeInfo> interfaceInfo;
    ComPtr<ITypeInfo> eventsInfo;
};

// An event as the type library declares it: its number, and which of its arguments go by reference.
struct DeclaredEvent {
    DISPID id;
    std::vector<bool> referenced;
};

// The DISPATCH_ value of a member.
WORD DispatchKind(const Member& member);

// One class of the table, joined with its declaration.
class BoundClass {
public:
    BoundClass(const ClassTable& table, Declaration declaration);

    const ClassTable& Table() const { return table_; }
    const Declaration& Declared() const { return declaration_; }
    bool RaisesEvents() const { return !events_.empty(); }
    const DeclaredEvent& Find(const scripting::Event& event) const { return events_.at(&event); }

    // The member of that number that the `kinds` (a sum of DISPATCH_ values) ask for, if any.
    const Member* Find(DISPID id, WORD kinds) const;

private:
    const ClassTable& table_;
    Declaration declaration_;
    std::multimap<DISPID, const Member*> members_;
    std::map<const scripting::Event*, DeclaredEvent> events_;
};

// Where this code was loaded from.
std::wstring ModulePath();

// The library itself, and a class in it by its name. What is absent there throws std::logic_error: the
// program was linked wrongly.
ComPtr<ITypeLib> LoadOwnTypeLibrary();
Declaration FindDeclaration(ITypeLib& library, const std::wstring& className);

// The one binding of `table`, made at its first use.
const BoundClass& Bind(const ClassTable& table);

}  // namespace quorix::automation
