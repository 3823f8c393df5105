#include "apps/contact_folder_choice.h"

#include "core/state.h"
#include "core/trap.h"
#include "organizer/contact_folders.h"

namespace tandolin {

namespace {

constexpr TextView kModule = u"Main_Modul";

Failure noSuchFolder(TextView name) {
    return {failure_number::kOrganizer,
            u"There is no contact folder \"" + Text(name) +
                u"\"; --list-folders shows those there are",
            u"Main_Modul:Check4Outlook"};
}

Text severalInWords(TextView name, const std::vector<FolderRecord>& folders) {
    Text words = u"There are several contact folders \"" + Text(name) +
                 u"\"; give Parent\\Name, or the path that --list-folders --verbose shows";
    TextView before = u": ";
    for (const FolderRecord& folder : folders) {
        words += Text(before) + shownFolder(folder);
        before = u", ";
    }
    return onOneLine(words);
}

/// The choice is made for good: a run that cannot keep it must not begin.
void choose(const FolderRecord& folder) {
    app.organizer.GlobalContactFolder = folder;
    rememberFolder(folder);
    PreSetFolderArray();
    if (const auto failure = attempt(RegFolderSet)) {
        app.run.startFailed = true;
        throw Failure(*failure);
    }
}

} // namespace

bool useChosenFolder() {
    const Text& name = app.run.contactFolder;
    if (name.empty() || !app.organizer.OrganizerPresent) {
        return true;
    }
    return trapped({kModule, u"useChosenFolder"}, false, [&name](bool& result) {
        if (!OutlookContactFolder()) {
            return;
        }
        const auto found = foldersNamed(app.organizer.GlobalFolderList, name);
        if (found.empty()) {
            throw noSuchFolder(name);
        }
        if (found.size() > 1) {
            app.run.usage = true;
            app.run.usageReason = severalInWords(name, found);
            return;
        }
        choose(found.front());
        result = true;
    });
}

} // namespace tandolin
