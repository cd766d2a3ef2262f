#include "quorix/automation/Classes.h"
#include "quorix/automation/SetSession.h"
#include "quorix/services/cVcard.h"

namespace quorix::automation {

template <>
const ClassTable& TableOf<cVcard>() {
    using T = cVcard;
    static const auto table =
        Class<T>(L"cVcard")
            .Creatable()
            .Property(L"FullName", &T::FullName, &T::FullName)
            .Property(L"LastName", &T::LastName, &T::LastName)
            .Property(L"FirstName", &T::FirstName, &T::FirstName)
            .Property(L"MiddleName", &T::MiddleName, &T::MiddleName)
            .Property(L"NickName", &T::NickName, &T::NickName)
            .Property(L"WebPage", &T::WebPage, &T::WebPage)
            .Property(L"BirthDate", &T::BirthDate, &T::BirthDate)
            .Property(L"OrgName", &T::OrgName, &T::OrgName)
            .Property(L"OrgUnit", &T::OrgUnit, &T::OrgUnit)
            .Property(L"Title", &T::Title, &T::Title)
            .Property(L"Role", &T::Role, &T::Role)
            .Property(L"HomePhone", &T::HomePhone, &T::HomePhone)
            .Property(L"HomeFax", &T::HomeFax, &T::HomeFax)
            .Property(L"HomeMessage", &T::HomeMessage, &T::HomeMessage)
            .Property(L"HomeExtAddress", &T::HomeExtAddress, &T::HomeExtAddress)
            .Property(L"HomeStreet", &T::HomeStreet, &T::HomeStreet)
            .Property(L"HomeCity", &T::HomeCity, &T::HomeCity)
            .Property(L"HomeRegion", &T::HomeRegion, &T::HomeRegion)
            .Property(L"HomePostalCode", &T::HomePostalCode, &T::HomePostalCode)
            .Property(L"HomeCountry", &T::HomeCountry, &T::HomeCountry)
            .Property(L"BusinessPhone", &T::BusinessPhone, &T::BusinessPhone)
            .Property(L"BusinessFax", &T::BusinessFax, &T::BusinessFax)
            .Property(L"BusinessMessage", &T::BusinessMessage, &T::BusinessMessage)
            .Property(L"BusinessExtAddress", &T::BusinessExtAddress, &T::BusinessExtAddress)
            .Property(L"BusinessStreet", &T::BusinessStreet, &T::BusinessStreet)
            .Property(L"BusinessCity", &T::BusinessCity, &T::BusinessCity)
            .Property(L"BusinessRegion", &T::BusinessRegion, &T::BusinessRegion)
            .Property(L"BusinessPostalCode", &T::BusinessPostalCode, &T::BusinessPostalCode)
            .Property(L"BusinessCountry", &T::BusinessCountry, &T::BusinessCountry)
            .Property(L"Email", &T::Email, &T::Email)
            .Property(L"JabberID", &T::JabberID, &T::JabberID)
            .Property(L"Description", &T::Description, &T::Description)
            .Method(L"SetSession", &SetSession<T>);
    return table;
}

}  // namespace quorix::automation
