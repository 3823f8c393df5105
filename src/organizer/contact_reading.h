#pragma once

#include "core/ports/organizer.h"
#include "store/tables.h"

namespace tandolin {

/// Neither a list of contacts nor one without a name, which nobody could tell from others: what no
/// read shows is no partner of a card either.
bool isReadAsContact(const ContactFacts& item);

/// The items of the contact folder in use, `GlobalContactFolder`. Throws the organizer's failure,
/// or -1987 where no folder is in use.
ContactFolder& contactItemsInUse();

/// Reads the contacts of the folder in use into the table, each that has a name once, and pairs
/// them with the phone's rows. Lists of contacts stay out. Opens the status dialog. A cancel keeps
/// what was read so far. `noGridRefresh` leaves the grid as it is. True when it ended without a
/// failure; the failure is reported.
bool vCardReadOutlook(Table<Contact>& table, bool noGridRefresh);

/// The same for an unattended run, without window; another order of the items.
bool SilentvCardReadOutlook(Table<Contact>& table);

} // namespace tandolin
