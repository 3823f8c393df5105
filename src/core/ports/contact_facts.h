#pragma once

#include "core/date.h"
#include "core/text.h"

namespace tandolin {

/// An address as the organizer keeps one for the home and one for the office.
struct ContactAddress {
    Text Street; ///< may have several lines
    Text PostalCode;
    Text City;
    Text Country;
    Text FaxNumber;
};

/// What a contact of the organizer tells of itself; a text that it lacks is empty.
struct ContactFacts {
    Text EntryID;
    Text LastName;
    Text FirstName;
    Text CompanyName;
    Text HomeTelephoneNumber;
    Text BusinessTelephoneNumber;
    Text MobileTelephoneNumber;
    Text Email1Address;
    ContactAddress Home;
    ContactAddress Business;
    Text BusinessHomePage;
    /// The categories in one text.
    Text Categories;
    Date CreationTime;
    /// The file or object it comes from, for messages; empty when the store has none.
    Text File;
};

} // namespace tandolin
