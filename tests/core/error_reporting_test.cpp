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

struct SilentServer : PhoneServer {
    void PXDDelete(TextView) override {}

    std::vector<Text> PXDList(TextView, int) override { return {}; }

    PXDStream PXDRead(TextView) override { return {}; }

    void PXDWrite(TextView, const PXDStream&, int) override {}

    bool restoreDeleted(TextView) override { return false; }

    void flush() override {}
};

} // namespace

TEST_CASE("the sentence of a failure number") {
    FreshProgram program;

    struct Case {
        const char* name;
        std::int32_t number;
        TextView module;
        Text begin;
        int lines;
    };

    constexpr std::int32_t kSmallest = std::numeric_limits<std::int32_t>::min();
    for (const Case& c : {
             Case{"organizer", -1987, u"", u"Fehler beim Zugriff auf die PIM", 3},
             {"the other counted one", -1526464227, u"", u"Fehler beim Zugriff", 3},
             {"organizer's own", -764149489, u"", u"Fehler beim Zugriff", 2},
             {"server gone", 462, u"", u"Fehler bei der Prozesskommunikation zwischen", 3},
             {"server reported", -2147467259, u"", u"Der PXD-Server hat einen Fehler", 2},
             {"last of the server's", -2147023844, u"", u"Der PXD-Server hat einen Fehler", 2},
             {"timed out", -2147418111, u"", u"Das Mobiltelefon hat innerhalb", 2},
             {"refused by the phone", -2147024891, u"PXD", u"Das Mobiltelefon hat den Zugriff", 2},
             {"refused elsewhere", -2147024891, u"pxd", u"Zugriff verweigert!", 1},
             {"not found", -2147024894, u"", u"Das Mobiltelefon hat nicht reagiert.", 2},
             {"unknown, at the edge", -2001, u"", u"Fehler bei der Prozesskommunikation.", 1},
             {"one above the edge", -2000, u"", u"", 0},
             {"the smallest number", kSmallest, u"", u"", 0},
             {"own failure", -1993, u"", u"", 0},
         }) {
        CAPTURE(c.name);
        const Text sentence = failureSentence(c.number, c.module);
        CHECK(sentence.starts_with(c.begin));
        CHECK(sentence.empty() == (c.lines == 0));
        CHECK(split(sentence, u"\r\n").size() == static_cast<std::size_t>(std::max(c.lines, 1)));
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

TEST_CASE("what is not shown is reports all the same") {
    Talking program;
    Talking::report(0, u"no failure at all");
    CHECK(reports.empty());
    Talking::report(-1000, u"a ~ inside");
    CHECK(reports.size() == 1);
    app.core.GlobalSilentMode = kTrue;
    Talking::report(-1000, u"silent");
    CHECK(reports.size() == 2);
    CHECK(program.screen.boxesShown.empty());
}

TEST_CASE("after an organizer failure no box is shown any more") {
    Talking program;
    Talking::report(-1734082275, u"organizer");
    Talking::report(-1526464227, u"again");
    Talking::report(-1000, u"something else");
    CHECK(app.core.GlobalPIMErrorCount == 2);
    CHECK(program.screen.boxesShown.empty());
    CHECK(reports.size() == 3);
}

TEST_CASE("a lost server is released, a full disk is remembered") {
    Talking program;
    app.phone.PXDServer = std::make_unique<SilentServer>();
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
    const int result = trapped({u"M", u"proc"}, 1, [](int& value) {
        value = 2;
        throw std::runtime_error("unforeseen");
    });
    CHECK(result == 2);
    REQUIRE(reports.size() == 1);
    CHECK(reports.front().failure.Number == failure_number::kInternal);
    CHECK(reports.front().failure.Description == u"unforeseen");
    trapped({u"M", u"proc"}, [] { throw std::bad_alloc(); });
    CHECK(reports.back().failure.Number == failure_number::kOutOfMemory);
}
