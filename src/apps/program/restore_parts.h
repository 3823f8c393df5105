#pragma once

#include "platform/backup_folder/undo.h"

#include <string>
#include <string_view>

namespace tandolin::program {

/// True when the value of `--only` stands for an entry and not for a side.
bool namesEntry(const std::string& only);

/// True when the entry is called so: by its whole name, its file's, or in the organizer by its
/// file's without the ending, which is the UID where this program made it.
bool bearsName(const platform::Change& change, const std::string& name);

/// True when this is one whole line of the bytes, folded or not.
bool holdsLine(std::string_view bytes, const std::string& line);

/// Puts the status files of a side back as far as its entries are those of before the run again. A
/// kind that the run did not work on has no copy; it counts as before where it is empty.
void restoreStatusFiles(StoreSide side, StoreFiles& files, const platform::StoredRun& run);

} // namespace tandolin::program
