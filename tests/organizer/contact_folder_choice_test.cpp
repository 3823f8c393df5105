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

} // namespace

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

TEST_CASE("The box of the settings lists the folders and shows the one in use") {
    OrganizerWorld world;
    SettingsForm form;
    form.FolderComboBox = u"of\\yore";
    app.organizer.GlobalContactFolder = kFolders[2];
    SUBCASE("with an organizer") {
        for (int opened = 0; opened < 2; ++opened) {
            CHECK(BuildOutlookContactFolderList(kFolders, form));
        }
        REQUIRE(form.folders.size() == kFolders.size());
        CHECK(form.folders[0] == u"pim\\Kontakte");
        CHECK(form.FolderComboBox == u"Arbeit\\Freunde");
    }
    SUBCASE("without one") {
        app.organizer.OrganizerPresent = kFalse;
        CHECK(BuildOutlookContactFolderList(kFolders, form));
        CHECK(form.folders.empty());
        CHECK(form.FolderComboBox == u"of\\yore");
    }
    SUBCASE("the record that stands for no folder") {
        app.organizer.GlobalContactFolder.reset();
        PreSetFolderArray();
        CHECK(BuildOutlookContactFolderList(app.organizer.GlobalFolderList, form));
        CHECK(form.folders.empty());
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
