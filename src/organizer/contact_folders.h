#pragma once

#include "core/ports/organizer.h"

#include <vector>

namespace tandolin {

/// Finds a usable contact folder: the stored one, else the first of the organizer that opens, which
/// then replaces the stored one. Without any contact folder the four settings are cleared.
/// True when `GlobalContactFolder` is set.
bool InitContactFolder();

/// Makes the list hold only the folder in use. True.
bool PreSetFolderArray();

/// Walks the organizer's folders from the top and fills `GlobalFolderList`.
void OutlookContactFolder();

/// Walks one collection of folders with all that lies below and adds the contact folders to `list`.
/// Folders of other kinds are walked too: a contact folder below a mail folder is found.
bool OutlookContactFolderList(const std::vector<FolderRecord>& folders,
                              std::vector<FolderRecord>& list);

/// Remembers a folder in the four settings.
void rememberFolder(const FolderRecord& folder);

} // namespace tandolin
