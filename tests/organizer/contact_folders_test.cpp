#include "organizer/contact_folders.h"

#include "organizer/organizer_world.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

FolderRecord folder(TextView parent, TextView name, TextView path) {
    return {Text(parent), Text(name), Text(path), Text(100, u's'), 2, {}};
}

const std::vector<FolderRecord> kFolders{folder(u"pim", u"Kontakte", u"Kontakte"),
                                         folder(u"pim", u"Arbeit", u"Arbeit"),
                                         folder(u"Arbeit", u"Freunde", u"Arbeit/Freunde"),
                                         folder(u"pim", u"Freunde", u"Freunde"),
                                         folder(u"pim", u"freunde", u"freunde"),
                                         folder(u"Arbeit", u"Kunden Süd", u"Arbeit/sued")};

FolderRecord folder(TextView name, int type, std::vector<FolderRecord> below = {}) {
    return {u"top", Text(name), u"id-" + Text(name), Text(100, u's'), type, std::move(below)};
}

} // namespace

TEST_CASE("InitContactFolder: the stored folder, else the first that opens") {
    OrganizerWorld world;
    world.organizer.topFolders = {folder(u"Erster", 2), folder(u"Zweiter", 2)};
    SUBCASE("the stored one") {
        rememberFolder(world.organizer.topFolders[1]);
        CHECK(InitContactFolder());
        CHECK(app.organizer.GlobalContactFolder->Name == u"Zweiter");
    }
    SUBCASE("one that is gone") {
        rememberFolder(folder(u"Weg", 2));
        CHECK(InitContactFolder());
        CHECK(app.organizer.GlobalContactFolder->Name == u"Erster");
        CHECK(app.settings.FolderName == u"Erster");
    }
    SUBCASE("none at all") {
        world.organizer.topFolders.clear();
        rememberFolder(folder(u"Weg", 2));
        CHECK_FALSE(InitContactFolder());
        CHECK(app.settings.FolderName.empty());
        CHECK(app.settings.FolderEntryID.empty());
    }
}

TEST_CASE("Which folders a name stands for") {
    struct Case {
        const char* what;
        Text name;
        Text paths;
    };

    for (const Case& c : std::to_array<Case>(
             {{"a name, whatever its case", u"KONTAKTE", u"Kontakte "},
              {"the name that is shown, not the directory's", u"kunden süd", u"Arbeit/sued "},
              {"several of one name", u"Freunde", u"Arbeit/Freunde Freunde freunde "},
              {"parent and name", u"arbeit\\freunde", u"Arbeit/Freunde "},
              {"the path", u"arbeit/SUED", u"Arbeit/sued "},
              {"only the spelling tells them apart", u"pim\\freunde", u"freunde "},
              {"a part of a name is none", u"Kontakt", u""},
              {"a parent alone is none", u"pim", u""}})) {
        CAPTURE(c.what);
        Text paths;
        for (const FolderRecord& found : foldersNamed(kFolders, c.name)) {
            paths += found.EntryID + u' ';
        }
        CHECK(paths == c.paths);
    }
}

TEST_CASE("No folder opens: the settings hold none") {
    OrganizerWorld world;
    world.organizer.topFolders = {kFolders[0], kFolders[1]};
    rememberFolder(kFolders[1]);
    SUBCASE("all but the list fails") {
        world.organizer.fault = {2, {failure_number::kOrganizer, u"closed"}, true};
        CHECK_FALSE(InitContactFolder());
        CHECK(world.organizer.callsOf(u"GetFolderFromID") == 3); // the stored one, then each
    }
    SUBCASE("the list fails") {
        Failure unread(failure_number::kServerFailed, u"no access");
        unread.File = u"Arbeit";
        world.organizer.fault = {1, unread, true};
        static Failure told;
        app.core.failureListener = [](const Failure& failure, TextView, Place) { told = failure; };
        CHECK_FALSE(InitContactFolder());
        CHECK(told.Number == failure_number::kOrganizer);
        CHECK(told.Description == u"no access\r\nFolder: Arbeit");
        CHECK(told.Source == u"MSOutlook:OutlookContactFolderList");
    }
    CHECK(app.settings.FolderName.empty());
    CHECK(app.settings.FolderStoreID.empty());
}
