#pragma once

namespace tandolin {

/// The exit statuses of a run, as scripts rely on them.
enum class ExitStatus : int {
    done = 0,
    incomplete = 1,
    usage = 2,
    phone = 3,
    organizer = 4,
    stopped = 5,
    otherInstance = 6,
    startFailed = 7
};

/// The first cause that holds in the run's state, from the failed start to single entries.
ExitStatus exitStatus();

} // namespace tandolin
