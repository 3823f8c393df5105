#include "apps/command_line.h"

#include "log/log_model.h"
#include "support/fresh_program.h"

#include <array>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

/// The flags that are set, by their first letters, in the order of the words.
std::string flagsOf(const CoreState& core) {
    struct Named {
        Flag flag;
        const char* name;
    };

    std::string set;
    for (const Named& named : {Named{core.GlobalCommandShowText, "show "},
                               {core.GlobalCommandKill, "kill "},
                               {core.GlobalCommandDebug, "debug "},
                               {core.GlobalCommandNoOrg, "noorg "},
                               {core.GlobalSilentMode, "silent "},
                               {core.GlobalCommandBoth, "both "},
                               {core.GlobalCommandvCal, "vcal "},
                               {core.GlobalCommandvCard, "vcard "},
                               {core.GlobalCommandOptions, "options "},
                               {core.GlobalCommandCaller, "caller "}}) {
        set += named.flag ? named.name : "";
    }
    return set;
}

} // namespace

TEST_CASE("The words of the command line") {
    // clang-format off
    struct Case { TextView line; const char* flags; TextView caller; };
    for (const Case& c : std::to_array<Case>({
             {u"", "", u""},
             {u"d", "show ", u""},
             {u"VCAL", "silent vcal ", u""},
             {u"vcal vcard", "silent vcal vcard ", u""},
             {u"Both Options", "silent both options ", u""},
             {u"VCALX XVCAL V CAL", "", u""},
             {u"  VCAL   KILL  ", "kill silent vcal ", u""},
             {u"NOORG", "noorg ", u""},
             {u"caller=ol", "caller ", u"OL"},
             {u"xCALLER=a=b", "caller ", u"A=B"},
             {u"CALLER=", "caller ", u""},
         })) {
        // clang-format on
        CAPTURE(toUtf8(c.line));
        const FreshProgram program;
        app.core.GlobalCommandKill = kTrue; // of an earlier run
        app.core.commandLine = c.line;
        TDLCommandLine();
        CHECK(flagsOf(app.core) == c.flags);
        CHECK(app.core.GlobalCallerName == c.caller);
    }
}

TEST_CASE("TIMER") {
    constexpr TextView kRange = u"Nur Werte zwischen 0 und 65000";
    constexpr TextView kNumeric = u"kein numerischer Wert";

    // clang-format off
    struct Case { TextView line; int value; TextView secondLine; bool failure; };
    for (const Case& c : std::to_array<Case>({
             {u"timer=0", 0, u"", false}, {u"TIMER=32767", 32767, u"", false},
             {u"TIMER=32768", 0, u"", true}, {u"TIMER=65001", 0, u"", true},
             {u"TIMER=99999999999999999999", 0, u"", true}, {u"TIMER=-5", 0, kRange, false},
             {u"TIMER=abc", 0, kNumeric, false}, {u"TIMER=", 0, kNumeric, false},
         })) {
        // clang-format on
        CAPTURE(toUtf8(c.line));
        FreshProgram program;
        LogInit();
        app.core.GlobalADOAvailable = kTrue;
        app.core.commandLine = c.line;
        TDLCommandLine();
        CHECK(app.core.GlobalCommandTimer == c.value);
        CHECK(program.screen.boxesShown.size() == (c.secondLine.empty() && !c.failure ? 0U : 1U));
        if (!c.secondLine.empty()) {
            const Text& box = program.screen.boxesShown.front();
            CHECK(box.starts_with(u"Übergabewert: " + upper(c.line.substr(6))));
            CHECK(holdsText(box, c.secondLine));
            CHECK(box.ends_with(u"Das Intervall wird auf 0 gesetzt!"));
        }
        CHECK(app.core.GlobalProgramFehler == (c.failure ? 1 : 0));
    }
}

TEST_CASE("Words that are none are known as such") {
    CHECK(unknownWords({u"vcal", u"vcall", u"CALLER=x", u"timer=x", u"", u"--json"}) ==
          std::vector<Text>{u"vcall", u"", u"--json"});
}
