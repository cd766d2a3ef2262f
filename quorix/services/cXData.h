/// \class quorix::cXData
/// A data form (jabber:x:data), as a search service or a registration sends it.
///
/// Ownership: shared; an application may keep any form, field or option that it is given.
/// Threads: like the session that filled them.
#pragma once

#include <memory>

#include "quorix/base/Collection.h"
#include "quorix/base/Export.h"
#include "quorix/base/String.h"

namespace quorix {

/// One choice of a list field.
class QUORIX_API cXDataOption {
public:
    String Label() const { return label_; }
    void Label(StringView value) { label_ = value; }

    String Value() const { return value_; }
    void Value(StringView value) { value_ = value; }

private:
    String label_;
    String value_;
};

/// One field. FieldType is the protocol's word ("text-single", "list-single", ...); of several values the
/// first one counts. All are wire text, as received.
class QUORIX_API cXDataField {
public:
    bool Required() const { return required_; }
    void Required(bool value) { required_ = value; }

    String FieldType() const { return fieldType_; }
    void FieldType(StringView value) { fieldType_ = value; }

    String Label() const { return label_; }
    void Label(StringView value) { label_ = value; }

    String Var() const { return var_; }
    void Var(StringView value) { var_ = value; }

    String Value() const { return value_; }
    void Value(StringView value) { value_ = value; }

    Collection<std::shared_ptr<cXDataOption>>& Options() { return options_; }
    const Collection<std::shared_ptr<cXDataOption>>& Options() const { return options_; }

private:
    bool required_ = false;
    String fieldType_;
    String label_;
    String var_;
    String value_;
    Collection<std::shared_ptr<cXDataOption>> options_;
};

class QUORIX_API cXData {
public:
    String Title() const { return title_; }
    void Title(StringView value) { title_ = value; }

    String Instructions() const { return instructions_; }
    void Instructions(StringView value) { instructions_ = value; }

    Collection<std::shared_ptr<cXDataField>>& Fields() { return fields_; }
    const Collection<std::shared_ptr<cXDataField>>& Fields() const { return fields_; }

private:
    String title_;
    String instructions_;
    Collection<std::shared_ptr<cXDataField>> fields_;
};

}  // namespace quorix
