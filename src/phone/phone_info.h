#pragma once

// The phone's status files: who it is, how many entries it has room for and how many it holds. Both
// kinds are lines of text that end in CR LF:
//
//     MANU:EXAMPLE                 devinfo.txt
//     MOD:X1
//     MAXIMUM-RECORDS:100          info.log, one for the calendar and one for the phone book
//     TOTAL-RECORDS:4
//     LAST-USED-INDEX:5

#include "core/state.h"

#include <array>
#include <memory>
#include <optional>
#include <vector>

namespace tandolin {

/// The lines of a status file: before the first colon, and up to the second. A line without a colon
/// is a pair of empty texts.
using PXDInfoTable = std::vector<std::array<Text, 2>>;

/// The two directories of objects, each with a status file of its own.
enum class StoreDirectory : std::uint8_t { calendar, contacts };

/// Reads a status file. False without a report for an absent file and for one without a line break
/// (CR LF); the table is then empty.
bool getMobilePXDInfo(std::unique_ptr<PhoneServer>& server, TextView path, TextView fileName,
                      PXDInfoTable& table);

/// Takes maker, model and counters out of a status file. Counters that the file does not name keep
/// their value. The selector is "" for the device file, "0" for the calendar, whose capacity is
/// lowered by `freeMobileEntries`, and "1" for the phone book. The slot bounds follow the file that
/// was evaluated last. A value that is no number is reported and ends the evaluation.
void PXDInfoAuswertung(const PXDInfoTable& table, PhoneState& record, std::int16_t& max,
                       std::int16_t& total, std::int16_t& lastUsed, TextView selector);

/// Reads all three status files; on success the phone counts as connected.
bool PXDInfoAll(std::unique_ptr<PhoneServer>& server, const MobilePaths& paths);

/// The device file and the phone book's status file only.
bool PXDInfovCard(std::unique_ptr<PhoneServer>& server, const MobilePaths& paths);

/// The device file and the calendar's status file only.
bool PXDInfovCal(std::unique_ptr<PhoneServer>& server, const MobilePaths& paths);

/// The name of the contact that the phone stored last, from the phone book's status file: where the
/// phone chose the number of a new one, this tells it. False, and an empty name, when the file
/// could not be read.
bool getvCardMobileEntryName(std::unique_ptr<PhoneServer>& server, Text& name,
                             const MobilePaths& paths);

/// TOTAL-RECORDS of a directory, read anew; nothing when the phone does not tell. Changes no state.
std::optional<int> totalRecordsNow(StoreDirectory directory);

} // namespace tandolin
