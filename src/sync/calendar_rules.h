#pragma once

#include "store/tables.h"

#include <optional>

namespace tandolin {

// The rules by which a row just read and a row of the main table are one entry. Pure: they look at
// the current rows of the two tables and change nothing.

/// 41 for a number that begins with "+", else 40: the characters of a phone number on the phone.
std::int16_t Phonecall_Len(TextView text);

/// Characters of any other text that the phone holds.
inline constexpr std::size_t kPhoneTextLength = 32;

/// May the kinds meet? An organizer row is a meeting or nothing in particular, so the phone's
/// memos, anniversaries and calls meet the latter.
bool kindsAgree(const Table<Calendar>& main, const Table<Calendar>& candidate);

/// Do the texts agree as far as the phone holds them?
bool textsAgree(const Table<Calendar>& main, const Table<Calendar>& candidate);

/// May the two be merged at all: rows of different origin may, all others only with one identity.
bool vcalCheckbeforecompare(const Table<Calendar>& main, const Table<Calendar>& candidate);

/// All rules in their order; the first that fails decides.
bool sameEntry(const Table<Calendar>& main, const Table<Calendar>& candidate);

/// In words, why the two are not one entry: the first rule that fails, empty when they are one.
TextView firstFailedRule(const Table<Calendar>& main, const Table<Calendar>& candidate);

/// Is the row's kind selected by the mask: 1 memo, 2 meeting, 4 anniversary, 8 phone call, 32 all.
bool EntryTypeCheck(std::int16_t SyncTermine, const Table<Calendar>& table);

/// Cuts `Text` of the current row to what the phone holds; `Description` follows a text that was
/// cut and keeps its value beside one that fits.
void vcalTextCheck(Table<Calendar>& table);

/// Does the organizer row's text equal the phone row's as the phone would hold and read it back:
/// cut to its length, without regard to case, trailing blanks and the form of line breaks? For a
/// phone call its digits alone may equal too.
bool textsEqualOnPhone(const Table<Calendar>& organizer, const Table<Calendar>& phone);

/// The organizer row's text as the phone gives it back, where that differs by more than the cut: a
/// control character takes the letter behind it along. Nothing where it comes back as it was.
std::optional<Text> textChangedOnPhone(const Table<Calendar>& organizer);

/// What `vcalTextCheck` would leave of the current row's text.
Text textOnPhone(const Table<Calendar>& table);

} // namespace tandolin
