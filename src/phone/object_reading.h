#pragma once

// The loop over the phone's objects of one kind that every form of reading shares: list, fetch,
// take into a table, count. What the kinds and forms do differently on purpose is handed in.

#include "core/error_reporting.h"
#include "phone/phone_info.h"

#include <functional>

namespace tandolin {

/// What sets one kind of objects apart in the loop.
struct ObjectKind {
    StoreDirectory store;
    TextView extension;
    TextView begin; ///< what an object that was read whole holds, if it holds the first
    TextView end;
    TextView between; ///< stands between running number and count in the progress
    TextView entries; ///< in messages
    /// Wanted: only the calendar's reader looks at the names.
    bool checksNames;
};

// clang-format off
inline constexpr ObjectKind kCalendarObjects{
    StoreDirectory::calendar, u".vcs", u"BEGIN:VCALENDAR", u"END:VCALENDAR",
    u" / ", u"calendar entries", true};
inline constexpr ObjectKind kContactObjects{
    StoreDirectory::contacts, u".vcf", u"BEGIN:VCARD", u"\nEND:",
    u"/", u"contacts", false};

// clang-format on

/// The objects of this kind that the phone holds, as far as they were read.
std::int16_t& entryCount(const ObjectKind& kind);

/// How a read ended: the objects listed (-1 for none or a failed listing), and by whom.
struct ObjectsRead {
    int listed = -1;
    /// The listing itself reported a failure.
    bool listingFailed = false;
    bool cancelled = false;
    /// Every object that was listed is in the table.
    bool complete = false;
};

/// Takes one object into the table and counts it. False ends the read; what was wrong is reported.
using TakeObject = std::function<bool(TextView object, TextView fileName, bool codePage)>;

/// Reads all objects and counts them in `entryCount`. Stops at the first that cannot be read, and
/// at a cancel. Failures are reported.
ObjectsRead readObjects(const ObjectKind& kind, Place place, const TakeObject& take);

/// After a listing without entries, which looks like a missing phone: only an explicit wish and a
/// status file that says the same make it a read of nothing. Otherwise false, and the user is told
/// of the wish where it may help.
bool emptyStoreAccepted(const ObjectKind& kind, Place place, const ObjectsRead& read);

} // namespace tandolin
