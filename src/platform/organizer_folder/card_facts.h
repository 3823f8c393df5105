#pragma once

// The members of a contact as a list, so that reading, keeping and writing walk over them; texts
// are UTF-8 here.

#include "core/ports/contacts.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace tandolin::vcard {

enum class Member : std::uint8_t {
    EntryID,
    LastName,
    FirstName,
    CompanyName,
    HomePhone,
    BusinessPhone,
    MobilePhone,
    Email,
    HomeStreet,
    HomePostalCode,
    HomeCity,
    HomeCountry,
    HomeFax,
    BusinessStreet,
    BusinessPostalCode,
    BusinessCity,
    BusinessCountry,
    BusinessFax,
    HomePage,
    Categories
};

inline constexpr std::size_t kMembers = static_cast<std::size_t>(Member::Categories) + 1;

/// The texts of a contact.
class CardFacts {
public:
    std::string& operator[](Member member) { return texts_.at(static_cast<std::size_t>(member)); }

    const std::string& operator[](Member member) const {
        return texts_.at(static_cast<std::size_t>(member));
    }

    friend bool operator==(const CardFacts&, const CardFacts&) = default;

    /// In one piece of memory, as many thousands of them are kept.
    [[nodiscard]] std::string packed() const;

private:
    std::array<std::string, kMembers> texts_;
};

/// One text out of `packed`.
std::string_view unpacked(std::string_view packed, Member member);

/// Puts all texts of `packed` into the contact.
void unpackInto(std::string_view packed, ContactFacts& contact);

/// The texts as a card can hold them.
CardFacts cardFactsOf(const ContactFacts& contact);

} // namespace tandolin::vcard
