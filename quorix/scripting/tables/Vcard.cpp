#include "quorix/scripting/Classes.h"
#include "quorix/scripting/SetSession.h"
#include "quorix/services/cVcard.h"

namespace quorix::scripting {

template <>
const ClassTable& TableOf<cVcard>() {
    using T = cVcard;
    static const auto table =
        Class<T>("cVcard")
            .Creatable()
            .Property("FullName", &T::FullName, &T::FullName)
            .Property("LastName", &T::LastName, &T::LastName)
            .Property("FirstName", &T::FirstName, &T::FirstName)
            .Property("MiddleName", &T::MiddleName, &T::MiddleName)
            .Property("NickName", &T::NickName, &T::NickName)
            .Property("WebPage", &T::WebPage, &T::WebPage)
            .Property("BirthDate", &T::BirthDate, &T::BirthDate)
            .Property("OrgName", &T::OrgName, &T::OrgName)
            .Property("OrgUnit", &T::OrgUnit, &T::OrgUnit)
            .Property("Title", &T::Title, &T::Title)
            .Property("Role", &T::Role, &T::Role)
            .Property("HomePhone", &T::HomePhone, &T::HomePhone)
            .Property("HomeFax", &T::HomeFax, &T::HomeFax)
            .Property("HomeMessage", &T::HomeMessage, &T::HomeMessage)
            .Property("HomeExtAddress", &T::HomeExtAddress, &T::HomeExtAddress)
            .Property("HomeStreet", &T::HomeStreet, &T::HomeStreet)
            .Property("HomeCity", &T::HomeCity, &T::HomeCity)
            .Property("HomeRegion", &T::HomeRegion, &T::HomeRegion)
            .Property("HomePostalCode", &T::HomePostalCode, &T::HomePostalCode)
            .Property("HomeCountry", &T::HomeCountry, &T::HomeCountry)
            .Property("BusinessPhone", &T::BusinessPhone, &T::BusinessPhone)
            .Property("BusinessFax", &T::BusinessFax, &T::BusinessFax)
            .Property("BusinessMessage", &T::BusinessMessage, &T::BusinessMessage)
            .Property("BusinessExtAddress", &T::BusinessExtAddress, &T::BusinessExtAddress)
            .Property("BusinessStreet", &T::BusinessStreet, &T::BusinessStreet)
            .Property("BusinessCity", &T::BusinessCity, &T::BusinessCity)
            .Property("BusinessRegion", &T::BusinessRegion, &T::BusinessRegion)
            .Property("BusinessPostalCode", &T::BusinessPostalCode, &T::BusinessPostalCode)
            .Property("BusinessCountry", &T::BusinessCountry, &T::BusinessCountry)
            .Property("Email", &T::Email, &T::Email)
            .Property("JabberID", &T::JabberID, &T::JabberID)
            .Property("Description", &T::Description, &T::Description)
            .Method("SetSession", &SetSession<T>);
    return table;
}

}  // namespace quorix::scripting
