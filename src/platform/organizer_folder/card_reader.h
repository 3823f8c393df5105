#pragma once

// From the lines of a file to its cards. A member is read from one line of the card, and the writer
// asks here for the same line.

#include "platform/organizer_folder/card_facts.h"
#include "platform/organizer_folder/card_line.h"
#include "platform/organizer_folder/content_lines.h"
#include "platform/organizer_folder/time_zone.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace tandolin::vcard {

/// A property in its place.
struct CardLine {
    std::size_t line = 0;
    Property property;
    Marks marks;
};

/// What an address or number is for.
enum class Use : std::uint8_t { home, business };

/// One card of a file. The lines must stay as they are meanwhile.
class Card {
public:
    Card(const ical::ContentLines& lines, int component);

    [[nodiscard]] Version version() const { return version_; }

    [[nodiscard]] const std::vector<CardLine>& lines() const { return lines_; }

    /// The first property of this name, a preferred one before others; null without one.
    [[nodiscard]] const CardLine* find(std::string_view name) const;
    /// The line that tells a member which has one of its own (numbers, mail, page, company).
    [[nodiscard]] const CardLine* lineOf(Member member) const;
    [[nodiscard]] const CardLine* address(Use use) const;

    /// The text of a line's value, or of one of its parts; empty for one that is not there.
    [[nodiscard]] std::string text(const CardLine* line) const;
    [[nodiscard]] std::string text(const CardLine* line, std::size_t part) const;

private:
    template <class Test>
    [[nodiscard]] const CardLine* best(std::string_view name, Test test) const;
    [[nodiscard]] const CardLine* telephone(Use use) const;

    std::vector<CardLine> lines_;
    Version version_ = Version::v30;
};

/// A card as it was read.
struct ReadCard {
    CardFacts facts;
    ical::Seconds created = 0; ///< local
    bool isList = false;
};

/// Where N and ADR keep what.
namespace part {
inline constexpr std::size_t kLastName = 0;
inline constexpr std::size_t kFirstName = 1;
inline constexpr std::size_t kStreet = 2;
inline constexpr std::size_t kCity = 3;
inline constexpr std::size_t kPostalCode = 5;
inline constexpr std::size_t kCountry = 6;
} // namespace part

/// The scheme that a number may stand behind: "tel:" as written, or nothing.
std::string_view schemeOf(std::string_view number);

/// The categories of a line.
std::vector<std::string> categoriesOf(const Card& card, const CardLine& line);

/// The cards of a file by component number, those within others not counted.
std::vector<int> cardsOf(const ical::ContentLines& lines);

/// What a card tells. `fileName` stands for the UID where there is none. Throws ical::Unreadable.
CardFacts factsOf(const Card& card, std::string_view fileName);

/// All cards of a file. `fileTime` (local) stands for the creation time where the card has none.
/// Throws ical::Unreadable.
std::vector<ReadCard> readCards(const ical::ContentLines& lines, std::string_view fileName,
                                const ical::TimeZone& local, ical::Seconds fileTime);

/// The component of the card with this identifier. Throws Failure 91 when there is none,
/// ical::Unreadable when the file is none of cards.
int cardWith(const ical::ContentLines& lines, std::string_view id, std::string_view fileName);

} // namespace tandolin::vcard
