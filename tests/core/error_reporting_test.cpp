#include "support/fake_phone.h"
#include "support/fresh_program.h"
#include "support/reports.h"

#include "core/trap.h"

#include <limits>
#include <stdexcept>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

struct Talking : FreshProgram {
    Talking() {
        app.core.GlobalSilentMode = kFalse;
        keepReports();
    }

    static void report(std::int32_t number, TextView description, TextView extra = {}) {
        Failure failure(number, Text(description), u"source");
        ReportError(failure, {u"Mobile", u"TestMobile"}, extra);
        CHECK(failure.Number == 0);
        CHECK(failure.Description.empty());
    }
};

} // namespace

TEST_CASE("the sentence of a failure number") {
    FreshProgram program;

    constexpr std::int32_t kSmallest = std::numeric_limits<std::int32_t>::min();
    for (const auto& [name, number, module, begin, lines] :
         std::to_array<std::tuple<const char*, std::int32_t, TextView, Text, int>>({
             {"organizer", -1987, u"", u"Fehler beim Zugriff auf die PIM", 3},
             {"the other counted one", -1526464227, u"", u"Fehler beim Zugriff", 3},
             {"server gone", 462, u"", u"Fehler bei der Prozesskommunikation zwischen", 3},
             {"last of the server's", -2147023844, u"", u"Der PXD-Server hat einen Fehler", 2},
             {"timed out", -2147418111, u"", u"Das Mobiltelefon hat innerhalb", 2},
             {"refused by the phone", -2147024891, u"PXD", u"Das Mobiltelefon hat den Zugriff", 2},
             {"unknown, at the edge", -2001, u"", u"Fehler bei der Prozesskommunikation.", 1},
             {"one above the edge", -2000, u"", u"", 0},
             {"the smallest number", kSmallest, u"", u"", 0},
         })) {
        CAPTURE(name);
        const Text sentence = failureSentence(number, module);
        CHECK(sentence.starts_with(begin));
        CHECK(sentence.empty() == (lines == 0));
        CHECK(split(sentence, u"\r\n").size() == static_cast<std::size_t>(std::max(lines, 1)));
    }
}

TEST_CASE("a failure is shown, reports and cleared") {
    Talking program;
    Talking::report(-1000, u"broken", u"17.vcs");
    REQUIRE(program.screen.boxesShown.size() == 1);
    CHECK(program.screen.boxesShown.front() ==
          u"Beschreibung: \r\n17.vcs\r\n\r\nNummer: -1000\r\nbroken\r\n");
    REQUIRE(reports.size() == 1);
    CHECK(reports.front().failure.Number == -1000);
    CHECK(reports.front().proc == u"TestMobile");
}

TEST_CASE("what is not shown is reported all the same") {
    Talking program;
    Talking::report(0, u"no failure at all");
    CHECK(reports.empty());
    Talking::report(-1000, u"a ~ inside");
    app.core.GlobalSilentMode = kTrue;
    Talking::report(-1000, u"silent");
    app.core.GlobalSilentMode = kFalse;
    Talking::report(-1526464227, u"organizer");
    Talking::report(-1000, u"no box is shown behind an organizer failure");
    CHECK(app.core.GlobalPIMErrorCount == 1);
    CHECK(reports.size() == 4);
    CHECK(program.screen.boxesShown.empty());
}

TEST_CASE("a lost server is released, a full disk is remembered") {
    Talking program;
    app.phone.PXDServer = std::make_unique<FakePhone>();
    Talking::report(failure_number::kCallRejected, u"slow");
    CHECK(app.phone.PXDServer != nullptr);
    Talking::report(failure_number::kServerGone, u"gone");
    CHECK(app.phone.PXDServer == nullptr);
    CHECK_FALSE(app.run.diskFull);
    Talking::report(failure_number::kDiskFull, u"full");
    CHECK(app.run.diskFull);
}

TEST_CASE("a trapped procedure ends by its normal exit with the result it had") {
    Talking program;
    CHECK(trapped({u"M", u"proc"}, 1, [](int& value) {
              value = 2;
              throw std::bad_alloc();
          }) == 2);
    CHECK(reports.back().failure.Number == failure_number::kOutOfMemory);
    trapped({u"M", u"proc"}, [] { throw std::runtime_error("unforeseen"); });
    CHECK(reports.back().failure.Number == failure_number::kInternal);
    CHECK(reports.back().failure.Description == u"unforeseen");
}
