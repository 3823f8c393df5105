#include "organizer/contact_folders.h"

#include "core/debug_trace.h"
#include "core/state.h"
#include "core/trap.h"

namespace tandolin {

namespace {

constexpr TextView kModule = u"QELOutlook";

std::optional<FolderRecord> openFolder(TextView entryID, TextView storeID) {
    std::optional<FolderRecord> folder;
    attempt([&] { folder = app.organizer.MOL->GetFolderFromID(entryID, storeID); });
    return folder;
}

} // namespace

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
        if (folder.DefaultItemType == 2) {
            FolderRecord found = folder;
            found.Folders.clear();
            list.push_back(std::move(found));
            ++app.organizer.GlobalFolderCount;
        }
        if (!folder.Folders.empty()) {
            OutlookContactFolderList(folder.Folders, list);
        }
    }
    return true;
}

void OutlookContactFolder() {
    trapped({kModule, u"OutlookContactFolder"}, [] {
        app.organizer.GlobalFolderList.clear();
        app.organizer.GlobalFolderCount = 0;
        std::vector<FolderRecord> top;
        if (const auto failure = attempt([&] { top = app.organizer.MOL->Folders(); })) {
            throw Failure(failure_number::kOrganizer,
                          failure->Description + u"\r\n" + tr(ids::kFolder),
                          u"MSOutlook:OutlookContactFolderList");
        }
        OutlookContactFolderList(top, app.organizer.GlobalFolderList);
    });
}

bool InitContactFolder() {
    return trapped({kModule, u"InitContactFolder"}, false, [](bool& result) {
        app.organizer.GlobalContactFolder.reset();
        OutlookContactFolder();
        trace(u"Debug: GlobalContactFolder: " + decimal(app.organizer.GlobalFolderCount));
        if (app.organizer.GlobalFolderCount < 1) {
            rememberFolder({});
        }
        app.organizer.GlobalContactFolder =
            openFolder(app.settings.FolderEntryID, app.settings.FolderStoreID);
        for (const FolderRecord& folder : app.organizer.GlobalFolderList) {
            if (app.organizer.GlobalContactFolder) {
                break;
            }
            rememberFolder(folder);
            app.organizer.GlobalContactFolder = openFolder(folder.EntryID, folder.StoreID);
        }
        result = app.organizer.GlobalContactFolder.has_value();
    });
}

bool PreSetFolderArray() {
    return trapped({kModule, u"PreSetFolderArray"}, true, [](bool&) {
        app.organizer.GlobalFolderCount = 0;
        app.organizer.GlobalFolderList.assign(1, {});
        if (const auto& folder = app.organizer.GlobalContactFolder) {
            FolderRecord& record = app.organizer.GlobalFolderList.front();
            record = *folder;
            record.Folders.clear();
        }
    });
}

} // namespace tandolin
