#pragma once

#include "apps/program/around.h"
#include "apps/program/options.h"

#include <iosfwd>

namespace tandolin::program {

/// `--list-folders`: the contact folders of the organizer as "Parent\Name", the one that a run
/// would use marked; with `--verbose` their paths too. Changes nothing. 0, or the status that a run
/// ends with when it cannot start or does not reach the organizer.
int listFolders(const Options& options, std::ostream& out, std::ostream& errors,
                const Around& around);

} // namespace tandolin::program
