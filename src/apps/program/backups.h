#pragma once

#include "apps/program/options.h"

#include <iosfwd>

namespace tandolin::program {

/// `--list-backups`: the copies that runs made before their first write, newest first. 0, or 1 when
/// one of them cannot be read.
int listBackups(const Options& options, std::ostream& out, std::ostream& errors);

} // namespace tandolin::program
