#include "organizer/contact_folders.h"

#include "organizer/organizer_world.h"

using namespace tandolin;
using namespace tandolin::testing;

namespace {

FolderRecord folder(TextView name, int type, std::vector<FolderRecord> below = {}) {
    return {u"top", Text(name), u"id-" + Text(name), Text(100, u's'), type, std::move(below)};
}

} // namespace

TEST_CASE("Contact folders are found at any depth, below folders of other kinds too") {
    OrganizerWorld world;
    world.organizer.topFolders = {folder(u"Mail", 0, {folder(u"Freunde", 2, {folder(u"Alte", 2)})}),
                                  folder(u"Kontakte", 2)};
    OutlookContactFolder();
    REQUIRE(app.organizer.GlobalFolderCount == 3);
    CHECK(app.organizer.GlobalFolderList[0].Name == u"Freunde");
    CHECK(app.organizer.GlobalFolderList[1].Name == u"Alte");
    CHECK(app.organizer.GlobalFolderList[2].Name == u"Kontakte");
    CHECK(app.organizer.GlobalFolderList[0].Folders.empty());
}

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
        CHECK(app.settings.FolderStoreID.size() == 100);
    }
    SUBCASE("none at all") {
        world.organizer.topFolders.clear();
        rememberFolder(folder(u"Weg", 2));
        CHECK_FALSE(InitContactFolder());
        CHECK(app.settings.FolderName.empty());
        CHECK(app.settings.FolderEntryID.empty());
    }
    SUBCASE("an organizer that fails") {
        world.organizer.fault = {1, {failure_number::kServerFailed, u"gone"}, true};
        CHECK_FALSE(InitContactFolder());
        CHECK(app.core.GlobalProgramFehler == 1);
    }
}
