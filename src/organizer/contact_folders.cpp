#include "organizer/contact_folders.h"

#include "core/debug_trace.h"
#include "core/state.h"
#include "core/trap.h"

#include <algorithm>
#include <functional>

namespace tandolin {

namespace {

constexpr TextView kModule = u"QELOutlook";
constexpr int kContactItems = 2;

/// The folder without those below it, as the list holds it.
FolderRecord alone(const FolderRecord& folder) {
    return {folder.Parent, folder.Name, folder.EntryID, folder.StoreID, folder.DefaultItemType, {}};
}

/// The organizer brings a folder with all that lies below: one that opens has its `Folders` read.
std::optional<FolderRecord> openFolder(TextView entryID, TextView storeID) {
    std::optional<FolderRecord> folder;
    attempt([&] { folder = app.organizer.MOL->GetFolderFromID(entryID, storeID); });
    return folder;
}

std::optional<FolderRecord> firstThatOpens(const std::vector<FolderRecord>& list) {
    for (const FolderRecord& folder : list) {
        rememberFolder(folder);
        if (auto opened = openFolder(folder.EntryID, folder.StoreID)) {
            return opened;
        }
    }
    rememberFolder({});
    return std::nullopt;
}

std::vector<FolderRecord> topFolders() {
    std::vector<FolderRecord> top;
    if (const auto failure = attempt([&top] { top = app.organizer.MOL->Folders(); })) {
        throw Failure(failure_number::kOrganizer,
                      failure->Description + u"\r\n" + tr(ids::kFolder) + failure->File,
                      u"MSOutlook:OutlookContactFolderList");
    }
    return top;
}

} // namespace

Text shownFolder(const FolderRecord& folder) {
    return folder.Parent + u'\\' + folder.Name;
}

bool isSameFolder(const FolderRecord& a, const FolderRecord& b) {
    return a.EntryID == b.EntryID && a.StoreID == b.StoreID;
}

std::vector<FolderRecord> foldersNamed(const std::vector<FolderRecord>& list, TextView name) {
    std::vector<FolderRecord> found;
    std::ranges::copy_if(list, std::back_inserter(found), [name](const FolderRecord& folder) {
        return sameText(name, folder.Name) || sameText(name, shownFolder(folder)) ||
               sameText(name, folder.EntryID);
    });
    const auto isSpeltSo = [name](const FolderRecord& folder) {
        return shownFolder(folder) == name;
    };
    if (std::ranges::count_if(found, isSpeltSo) == 1) {
        std::erase_if(found, std::not_fn(isSpeltSo));
    }
    return found;
}

void rememberFolder(const FolderRecord& folder) {
    app.settings.FolderParent = folder.Parent;
    app.settings.FolderName = folder.Name;
    app.settings.FolderEntryID = folder.EntryID;
    app.settings.FolderStoreID = folder.StoreID;
}

bool OutlookContactFolderList(const std::vector<FolderRecord>& folders,
                              std::vector<FolderRecord>& list) {
    for (const FolderRecord& folder : folders) {
        app.status.SetText(folder.Name + u"\r\n" + tr(ids::kPleaseWait));
        if (folder.DefaultItemType == kContactItems) {
            app.organizer.GlobalFolderCount = int16Of(app.organizer.GlobalFolderCount + 1);
            list.push_back(alone(folder));
        }
        if (!folder.Folders.empty()) {
            OutlookContactFolderList(folder.Folders, list);
        }
    }
    return true;
}

bool OutlookContactFolder() {
    return trapped({kModule, u"OutlookContactFolder"}, false, [](bool& result) {
        app.organizer.GlobalFolderList.clear();
        app.organizer.GlobalFolderCount = 0;
        result = OutlookContactFolderList(topFolders(), app.organizer.GlobalFolderList);
    });
}

bool InitContactFolder() {
    return trapped({kModule, u"InitContactFolder"}, false, [](bool& result) {
        auto& inUse = app.organizer.GlobalContactFolder;
        inUse.reset();
        OutlookContactFolder();
        trace(u"Debug: GlobalContactFolder: " + decimal(app.organizer.GlobalFolderCount));
        if (app.organizer.GlobalFolderCount < 1) {
            rememberFolder({});
        }
        inUse = openFolder(app.settings.FolderEntryID, app.settings.FolderStoreID);
        if (!inUse) {
            inUse = firstThatOpens(app.organizer.GlobalFolderList);
        }
        result = inUse.has_value();
    });
}

bool PreSetFolderArray() {
    return trapped({kModule, u"PreSetFolderArray"}, true, [](bool&) {
        app.organizer.GlobalFolderCount = 0;
        app.organizer.GlobalFolderList.assign(1, {});
        if (const auto& folder = app.organizer.GlobalContactFolder) {
            app.organizer.GlobalFolderList.front() = alone(*folder);
        }
    });
}

bool BuildOutlookContactFolderList(const std::vector<FolderRecord>& list, SettingsForm& form) {
    return trapped({kModule, u"BuildOutlookContactFolderList"}, true, [&](bool&) {
        if (!app.organizer.OrganizerPresent) {
            return;
        }
        form.folders.clear();
        for (const FolderRecord& folder : list) {
            if (folder.EntryID.empty()) {
                continue; // the list is made with an empty record; it is no folder
            }
            form.folders.push_back(shownFolder(folder));
            const auto& inUse = app.organizer.GlobalContactFolder;
            if (inUse && isSameFolder(folder, *inUse)) {
                form.FolderComboBox = form.folders.back();
            }
        }
    });
}

} // namespace tandolin
