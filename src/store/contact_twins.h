#pragma once

#include "store/contact_layout.h"

#include <array>
#include <span>

namespace tandolin {

/// A field as the phone holds it and the same as the organizer holds it.
struct ContactTwin {
    Field<Contact, Text> phone;
    Field<Contact, Text> organizer;
};

/// All of them; the two of the name stand first.
inline constexpr std::array kContactTwins{ContactTwin{con::LastName, con::PIMLastName},
                                          ContactTwin{con::FirstName, con::PIMFirstName},
                                          ContactTwin{con::Company, con::PIMCompany},
                                          ContactTwin{con::Street, con::PIMStreet},
                                          ContactTwin{con::City, con::PIMCity},
                                          ContactTwin{con::ZipCode, con::PIMZipCode},
                                          ContactTwin{con::Country, con::PIMCountry},
                                          ContactTwin{con::eMail, con::PIMeMail},
                                          ContactTwin{con::URL, con::PIMURL},
                                          ContactTwin{con::Phone, con::PIMPhone},
                                          ContactTwin{con::PhoneWork, con::PIMPhoneWork},
                                          ContactTwin{con::PhoneMobile, con::PIMPhoneMobile},
                                          ContactTwin{con::Fax, con::PIMFax}};

/// Those beside the name.
inline constexpr std::span kContactTwinsBesideName = std::span(kContactTwins).subspan<2>();

} // namespace tandolin
