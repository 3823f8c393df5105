#pragma once

// Changes of contacts on the lines of their file. Only the lines of members that differ are
// touched; they keep their group, their parameters and the parts that this program doesn't know,
// and the card its version.

#include "platform/organizer_folder/card_facts.h"
#include "platform/organizer_folder/content_lines.h"
#include "platform/organizer_folder/time_zone.h"

#include <string>
#include <string_view>

namespace tandolin::vcard {

/// Makes the card of this identifier say what is wanted. False when nothing differs and the lines
/// are as before. A card without UID gets its identifier for one with its first change. Throws
/// Failure 91 when the lines don't hold the card, ical::Unreadable when it doesn't read.
bool applyFacts(ical::ContentLines& lines, std::string_view id, const CardFacts& wanted,
                std::string_view fileName, ical::Seconds nowUtc);

/// Takes the card out of the lines. False when no other is left, and the file may go.
bool removeCard(ical::ContentLines& lines, std::string_view id, std::string_view fileName);

/// The file of a new card: version 3.0, with CR LF.
std::string newCardFile(std::string_view id, const CardFacts& facts, ical::Seconds nowUtc);

/// The name that a card shows: first and last name, without these the company, else whatever it
/// has, at last its identifier.
std::string shownName(const CardFacts& facts);

} // namespace tandolin::vcard
