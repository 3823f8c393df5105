#include "support/fake_system.h"
#include "support/fresh_program.h"
#include "support/reports.h"

#include <set>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

struct Speaking : FreshProgram {
    FakeLanguages library;

    Speaking() {
        app.ports.languages = &library;
        app.settings.HomeDir = u"/home/me";
    }
};

} // namespace

TEST_CASE("the built-in set is complete and in order") {
    std::set<int> unused{472, 548, 725, 745, 756, 757, 758, 760, 762, 763};
    int expected = kFirstStringId;
    for (const GermanText& row : kGermanTexts) {
        while (unused.contains(expected)) {
            ++expected;
        }
        REQUIRE(row.id == expected++);
        CAPTURE(row.id);
        CHECK_FALSE(row.text.empty());
    }
    CHECK(expected == kLastStringId + 1);
    // Blanks at the ends are part of the text.
    CHECK(tr(ids::kFreeEntriesReset) == u" zurückgesetzt werden?");
    CHECK(tr(ids::kFreeEntriesTo) == u"auf ");
}

TEST_CASE("the language comes from the locale where the setting has none") {
    for (const auto& [code, file] : {std::pair{Text{}, u"/home/me\\Lng\\TDLRES0407.dll"},
                                     {u"9", u"/home/me\\Lng\\TDLRES0407.dll"},
                                     {u"0809", u"/home/me\\Lng\\TDLRES0809.dll"}}) {
        Speaking program;
        app.settings.Sprache = code;
        setStartLanguage();
        CHECK(app.core.GlobalLanguageFile == file);
    }
}

TEST_CASE("texts before a missing id are new, the others keep what they were") {
    Speaking program;
    keepReports();
    program.library.path = u"/home/me\\Lng\\TDLRES0407.dll";
    for (const GermanText& row : kGermanTexts) {
        program.library.texts[row.id] = u"T" + decimal(row.id) + Text(u"\0rest", 5);
    }
    setStartLanguage();
    CHECK(reports.empty());
    CHECK(tr({949}) == u"T949");

    program.library.texts.erase(500);
    app.strings.loadGerman();
    LoadLanguageStrings();
    CHECK(reports.size() == 1);
    CHECK(tr({499}) == u"T499");
    CHECK(tr({500}) == u"Straße");
    CHECK(program.library.freed == 7);
}
