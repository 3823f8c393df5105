#pragma once

#include "core/ports/organizer.h"
#include "core/settings_form.h"

#include <vector>

namespace tandolin {

/// Finds a usable contact folder: the stored one, else the first of the organizer that opens, which
/// then replaces the stored one. Where none opens the four settings are cleared.
/// True when `GlobalContactFolder` is set.
bool InitContactFolder();

/// Makes the list hold only the folder in use. True.
bool PreSetFolderArray();

/// Walks the organizer's folders from the top and fills `GlobalFolderList`. False after a failure,
/// which is reported; the list is empty then.
bool OutlookContactFolder();

/// Walks one collection of folders with all that lies below and adds the contact folders to `list`.
/// Folders of other kinds are walked too: a contact folder below a mail folder is found.
bool OutlookContactFolderList(const std::vector<FolderRecord>& folders,
                              std::vector<FolderRecord>& list);

/// Fills the list of `FolderComboBox` with the folders and chooses the one in use. Without an
/// organizer it adds nothing. True.
bool BuildOutlookContactFolderList(const std::vector<FolderRecord>& list, SettingsForm& form);

/// The folder as the user sees it: its parent, a backslash, its name.
Text shownFolder(const FolderRecord& folder);

/// The folders that the user may mean by `name`: a name, `shownFolder`, or the EntryID, case
/// ignored. Of folders that case alone tells apart the one is meant that `shownFolder` spells so.
std::vector<FolderRecord> foldersNamed(const std::vector<FolderRecord>& list, TextView name);

/// Are the two one folder?
bool isSameFolder(const FolderRecord& a, const FolderRecord& b);

/// Remembers a folder in the four settings.
void rememberFolder(const FolderRecord& folder);

} // namespace tandolin
