#pragma once

namespace tandolin {

/// Looks for the organizer, its version and its folders. False means that the run must end; without
/// an organizer the run goes on and `OrganizerPresent` stays false.
bool Check4Outlook();

} // namespace tandolin
