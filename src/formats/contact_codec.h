#pragma once

#include "core/failure.h"
#include "store/tables.h"

namespace tandolin {

// A contact travels as one vCard object, one object a file on the phone. Reader and writer work on
// the current row.
//
//   BEGIN:VCARD / VERSION:2.1 / N:Meier;Hans / TEL;HOME:+4930123 / END:VCARD
//   <-> LastName "Meier", FirstName "Hans", Phone "+4930123"

/// Reads an object into the current row, which is a new one. True when it was read to its end. A
/// failure is reported with the file name and the line, counted from 1; the row keeps what was
/// read until then. A version other than `GlobalVersion` is shown and becomes it. What follows the
/// last line break is not read. `codePage`: the object's bytes were no UTF-8.
bool vCardParsEntryFromMobile(Table<Contact>& table, TextView object, TextView fileName = {},
                              bool codePage = false);

/// The text that tells of a version other than `GlobalVersion`.
Text versionConflict(TextView version);

/// The same without the report and without a box: the failure itself, or nothing. `otherVersion`,
/// where given, is called for a version that differs, before `GlobalVersion` takes it.
std::optional<Failure> readContactObject(Table<Contact>& table, TextView object,
                                         TextView fileName = {}, bool codePage = false,
                                         void (*otherVersion)(TextView version) = nullptr);

/// The object of the current row, CR LF behind every line. `vCardLenControl` has cut the row
/// before. A value that goes out plain gets blanks for its line breaks.
Text contactObject(const Table<Contact>& table);

/// Cuts the current row's own fields to what the phone holds.
void vCardLenControl(Table<Contact>& table);

/// `limitPlus` for a number that begins with "+", else `limit`.
std::int16_t vCardPhoneNumber_Len(TextView number, std::int16_t limit, std::int16_t limitPlus);

/// After a match: the target's row takes the phone's side of the source's row.
void vCardSyncMobileEntry(Table<Contact>& target, const Table<Contact>& source);

/// After a match: the target's row takes the organizer's side of the source's row.
void vCardSyncOutlookEntry(Table<Contact>& target, const Table<Contact>& source);

/// The text with one blank in place of each line break.
Text SplittStreet(TextView text);

} // namespace tandolin
