#pragma once

namespace tandolin::platform {

/// From now on SIGINT and SIGTERM are noted and no longer end the process; SIGPIPE is ignored.
void catchSignals();

/// How often SIGINT came so far.
int interruptCount();

/// Did SIGTERM come?
bool terminated();

} // namespace tandolin::platform
