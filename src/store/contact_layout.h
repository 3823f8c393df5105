#pragma once

#include "store/layout.h"
#include "store/table.h"

#include <array>

namespace tandolin {

/// Fields of a contact row. A field with the prefix `PIM` holds the organizer's value beside the
/// phone's, which is shorter; the one without is what the grid shows and what goes to the phone.
struct Contact {
    static constexpr std::array<FieldSpec, 45> fields{{
        // clang-format off
        {u"PIM", CellType::boolean},
        {u"Mobile", CellType::boolean},
        {u"LastName", CellType::text},
        {u"FirstName", CellType::text},
        {u"Company", CellType::text},
        {u"Phone", CellType::text},
        {u"Street", CellType::text},
        {u"ZipCode", CellType::text},
        {u"City", CellType::text},
        {u"Categories", CellType::boolean},
        {u"PhoneWork", CellType::text},
        {u"PhoneMobile", CellType::text},
        {u"Fax", CellType::text},
        {u"eMail", CellType::text},
        {u"Country", CellType::text},
        {u"URL", CellType::text},
        {u"IsChanged", CellType::boolean},
        {u"ChangeString", CellType::text},
        {u"EntryType", CellType::int32},
        {u"MobileID", CellType::text},
        {u"UID", CellType::text},
        {u"UTF8Flag", CellType::boolean},
        {u"Recordset", CellType::text},
        {u"TransferMode", CellType::int32},
        {u"EntryPath", CellType::text},
        {u"EntryFile", CellType::text},
        {u"CategoriesText", CellType::text},
        {u"EntryID", CellType::text},
        {u"CreationDate", CellType::date},
        {u"PIMNew", CellType::boolean},
        {u"TransferNew", CellType::int32},
        {u"PIMLastName", CellType::text},
        {u"PIMFirstName", CellType::text},
        {u"PIMCompany", CellType::text},
        {u"PIMStreet", CellType::text},
        {u"PIMCity", CellType::text},
        {u"PIMZipCode", CellType::text},
        {u"PIMCountry", CellType::text},
        {u"PIMeMail", CellType::text},
        {u"PIMURL", CellType::text},
        {u"PIMPhone", CellType::text},
        {u"PIMPhoneWork", CellType::text},
        {u"PIMPhoneMobile", CellType::text},
        {u"PIMFax", CellType::text},
        {u"MobileCategoriesText", CellType::text},
        // clang-format on
    }};
};

namespace con {
// clang-format off
inline constexpr Field<Contact, bool> PIM{u"PIM"};
inline constexpr Field<Contact, bool> Mobile{u"Mobile"};
inline constexpr Field<Contact, tandolin::Text> LastName{u"LastName"};
inline constexpr Field<Contact, tandolin::Text> FirstName{u"FirstName"};
inline constexpr Field<Contact, tandolin::Text> Company{u"Company"};
inline constexpr Field<Contact, tandolin::Text> Phone{u"Phone"};
inline constexpr Field<Contact, tandolin::Text> Street{u"Street"};
inline constexpr Field<Contact, tandolin::Text> ZipCode{u"ZipCode"};
inline constexpr Field<Contact, tandolin::Text> City{u"City"};
inline constexpr Field<Contact, bool> Categories{u"Categories"};
inline constexpr Field<Contact, tandolin::Text> PhoneWork{u"PhoneWork"};
inline constexpr Field<Contact, tandolin::Text> PhoneMobile{u"PhoneMobile"};
inline constexpr Field<Contact, tandolin::Text> Fax{u"Fax"};
inline constexpr Field<Contact, tandolin::Text> eMail{u"eMail"};
inline constexpr Field<Contact, tandolin::Text> Country{u"Country"};
inline constexpr Field<Contact, tandolin::Text> URL{u"URL"};
inline constexpr Field<Contact, bool> IsChanged{u"IsChanged"};
inline constexpr Field<Contact, tandolin::Text> ChangeString{u"ChangeString"};
inline constexpr Field<Contact, std::int32_t> EntryType{u"EntryType"};
inline constexpr Field<Contact, tandolin::Text> MobileID{u"MobileID"};
inline constexpr Field<Contact, tandolin::Text> UID{u"UID"};
inline constexpr Field<Contact, bool> UTF8Flag{u"UTF8Flag"};
inline constexpr Field<Contact, tandolin::Text> Recordset{u"Recordset"};
inline constexpr Field<Contact, std::int32_t> TransferMode{u"TransferMode"};
inline constexpr Field<Contact, tandolin::Text> EntryPath{u"EntryPath"};
inline constexpr Field<Contact, tandolin::Text> EntryFile{u"EntryFile"};
inline constexpr Field<Contact, tandolin::Text> CategoriesText{u"CategoriesText"};
inline constexpr Field<Contact, tandolin::Text> EntryID{u"EntryID"};
inline constexpr Field<Contact, Date> CreationDate{u"CreationDate"};
inline constexpr Field<Contact, bool> PIMNew{u"PIMNew"};
inline constexpr Field<Contact, std::int32_t> TransferNew{u"TransferNew"};
inline constexpr Field<Contact, tandolin::Text> PIMLastName{u"PIMLastName"};
inline constexpr Field<Contact, tandolin::Text> PIMFirstName{u"PIMFirstName"};
inline constexpr Field<Contact, tandolin::Text> PIMCompany{u"PIMCompany"};
inline constexpr Field<Contact, tandolin::Text> PIMStreet{u"PIMStreet"};
inline constexpr Field<Contact, tandolin::Text> PIMCity{u"PIMCity"};
inline constexpr Field<Contact, tandolin::Text> PIMZipCode{u"PIMZipCode"};
inline constexpr Field<Contact, tandolin::Text> PIMCountry{u"PIMCountry"};
inline constexpr Field<Contact, tandolin::Text> PIMeMail{u"PIMeMail"};
inline constexpr Field<Contact, tandolin::Text> PIMURL{u"PIMURL"};
inline constexpr Field<Contact, tandolin::Text> PIMPhone{u"PIMPhone"};
inline constexpr Field<Contact, tandolin::Text> PIMPhoneWork{u"PIMPhoneWork"};
inline constexpr Field<Contact, tandolin::Text> PIMPhoneMobile{u"PIMPhoneMobile"};
inline constexpr Field<Contact, tandolin::Text> PIMFax{u"PIMFax"};
inline constexpr Field<Contact, tandolin::Text> MobileCategoriesText{u"MobileCategoriesText"};
// clang-format on
} // namespace con

} // namespace tandolin
