#pragma once

namespace tandolin {

/// Takes the contact folder that the command line names, `app.run.contactFolder`, for this run and,
/// stored at once, for those to come. False, with nothing changed, when there is no such folder (a
/// failure tells it) or several (the run's `usageReason` does). True without a name, and without an
/// organizer, whose absence is told elsewhere.
bool useChosenFolder();

} // namespace tandolin
