#include "support/fresh_program.h"

using namespace tandolin;
using tandolin::testing::FreshProgram;

TEST_CASE("texts reach the dialog only while it is open") {
    FreshProgram program;
    app.status.SetText(u"too early");
    app.status.Start(u"AutoSync");
    CHECK(program.screen.statusOpen);
    app.status.SetText(u"reading");
    app.status.Quit();
    CHECK_FALSE(program.screen.statusOpen);
    app.status.SetText(u"too late");
    CHECK(program.screen.statusTexts == std::vector<Text>{u"", u"reading"});
    CHECK(app.status.GetState());
}

TEST_CASE("cancel asks, and only Yes ends the work") {
    FreshProgram program;
    app.status.Start(u"AutoSync");
    program.screen.cancelNow = true;
    program.screen.answers = {Answer::no};
    CHECK(app.status.GetState());
    CHECK(program.screen.boxesShown == std::vector<Text>{u"Wollen Sie wirklich abbrechen?"});
    CHECK(app.status.GetState()); // No: it goes on as if nothing had happened
    CHECK(program.screen.boxesShown.size() == 1);

    program.screen.cancelNow = true;
    program.screen.answers = {Answer::yes};
    app.status.SetText(u"the press falls between two questions");
    CHECK_FALSE(app.status.GetState());
}

TEST_CASE("a press on a former dialog does not cancel the next one") {
    FreshProgram program;
    app.status.Start(u"first");
    program.screen.cancelNow = true;
    app.status.SetText(u"pressed");
    app.status.Quit();
    app.status.Start(u"second");
    CHECK(app.status.GetState());
}
