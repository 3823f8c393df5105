#include "apps/program/list_folders.h"

#include "apps/organizer_check.h"
#include "apps/program/json_rows.h"
#include "apps/program/stores.h"
#include "apps/program/wiring.h"
#include "apps/start_up.h"
#include "core/state.h"
#include "core/trap.h"
#include "organizer/calendar_reading.h"
#include "organizer/contact_folders.h"

#include <ostream>

namespace tandolin::program {

namespace {

bool isInUse(const FolderRecord& folder) {
    const auto& inUse = app.organizer.GlobalContactFolder;
    return inUse && isSameFolder(folder, *inUse);
}

bool walkFolders() {
    return Check4Outlook() && TestOLCalFolder() && OutlookContactFolder();
}

/// Settings, words and organizer as a run of the contacts finds them; then all folders.
void readFolders() {
    app.core.commandLine = u"VCARD";
    const bool started = trapped({u"Main_Modul", u"readFolders"}, false,
                                 [](bool& result) { result = startWithSettings(); });
    if (started) {
        app.run.organizerFailed = !walkFolders();
    } else if (exitStatus() <= ExitStatus::incomplete) {
        app.run.startFailed = true; // a start that ended has a cause, whatever step it was
    }
}

void writeJson(std::ostream& out, ExitStatus exit) {
    Json rows = Json::array();
    for (const FolderRecord& folder : app.organizer.GlobalFolderList) {
        rows.push_back({{"parent", toUtf8(folder.Parent)},
                        {"name", toUtf8(folder.Name)},
                        {"entryId", toUtf8(folder.EntryID)},
                        {"storeId", toUtf8(folder.StoreID)},
                        {"inUse", isInUse(folder)}});
    }
    writeDocument(out, {{"exit", static_cast<int>(exit)},
                        {"errors", failureRows(reportedFailures())},
                        {"folders", rows}});
}

void writeText(std::ostream& out, bool withPaths) {
    for (const FolderRecord& folder : app.organizer.GlobalFolderList) {
        out << (isInUse(folder) ? "* " : "  ") << toUtf8(onOneLine(shownFolder(folder)));
        out << (withPaths ? "  (" + toUtf8(onOneLine(folder.EntryID)) + ")\n" : "\n");
    }
}

} // namespace

int listFolders(const Options& options, std::ostream& out, std::ostream& errors,
                const Around& around) {
    Options looking = options;
    looking.dryRun = true;
    Wiring wiring(looking, errors);
    const bool loaded = wiring.loadSettings();
    const auto organizer = wiring.connection(options.organizer, u"organizer");
    const Stores stores = openStores(std::nullopt, organizer, looking.dryRun, wiring.clock());
    if (stores.problem) {
        errors << *stores.problem << '\n';
        return static_cast<int>(ExitStatus::usage);
    }
    if (options.verbose) {
        errors << "organizer " << organizer.value_or("-") << '\n';
    }
    if (loaded) {
        app.ports.makeOrganizer = madeAround(stores.makeOrganizer, around.organizer);
        readFolders();
    }
    wiring.closeScreen();
    const ExitStatus exit = exitStatus();
    if (exit != ExitStatus::done && exit != ExitStatus::incomplete) {
        app.organizer.GlobalFolderList.clear(); // what was not read completely is told by no list
    }
    if (options.json) {
        writeJson(out, exit);
    } else if (!options.quiet) {
        writeText(out, options.verbose);
    }
    return static_cast<int>(exit);
}

} // namespace tandolin::program
