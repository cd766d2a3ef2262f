/// \file
/// A business card (vcard-temp).
///
/// Ownership: shared; the session keeps none. Threads: like the session that it is used with.
#pragma once

#include <memory>

#include "quorix/base/Export.h"
#include "quorix/base/String.h"

namespace quorix {

class cSession;

/// 32 properties of text, each stored and returned unchanged: `String Name() const` and
/// `void Name(StringView)`. MiddleName and HomeExtAddress are read from replies and never published.
class QUORIX_API cVcard {
public:
// The table in VCard.cpp takes the address of each pair.
#define QUORIX_PROPERTY(Name)                        \
    String Name() const { return Name##_; }          \
    void Name(StringView value) { Name##_ = value; } \
                                                     \
private:                                             \
    String Name##_;                                  \
                                                     \
public:
    QUORIX_PROPERTY(FullName)
    QUORIX_PROPERTY(LastName)
    QUORIX_PROPERTY(FirstName)
    QUORIX_PROPERTY(MiddleName)
    QUORIX_PROPERTY(NickName)
    QUORIX_PROPERTY(WebPage)
    QUORIX_PROPERTY(BirthDate)
    QUORIX_PROPERTY(OrgName)
    QUORIX_PROPERTY(OrgUnit)
    QUORIX_PROPERTY(Title)
    QUORIX_PROPERTY(Role)
    QUORIX_PROPERTY(HomePhone)
    QUORIX_PROPERTY(HomeFax)
    QUORIX_PROPERTY(HomeMessage)
    QUORIX_PROPERTY(HomeExtAddress)
    QUORIX_PROPERTY(HomeStreet)
    QUORIX_PROPERTY(HomeCity)
    QUORIX_PROPERTY(HomeRegion)
    QUORIX_PROPERTY(HomePostalCode)
    QUORIX_PROPERTY(HomeCountry)
    QUORIX_PROPERTY(BusinessPhone)
    QUORIX_PROPERTY(BusinessFax)
    QUORIX_PROPERTY(BusinessMessage)
    QUORIX_PROPERTY(BusinessExtAddress)
    QUORIX_PROPERTY(BusinessStreet)
    QUORIX_PROPERTY(BusinessCity)
    QUORIX_PROPERTY(BusinessRegion)
    QUORIX_PROPERTY(BusinessPostalCode)
    QUORIX_PROPERTY(BusinessCountry)
    QUORIX_PROPERTY(Email)
    QUORIX_PROPERTY(JabberID)
    QUORIX_PROPERTY(Description)
#undef QUORIX_PROPERTY

    /// Taken for the sake of programs that set it: nothing here needs one.
    void SetSession(const std::shared_ptr<cSession>& /*session*/) {}
};

}  // namespace quorix
