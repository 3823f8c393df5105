#include "apps/command_line.h"

#include "log/log_model.h"
#include "support/fresh_program.h"

#include <array>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

/// The flags that are set, by their first letters, in the order of the words.
std::string flagsOf(const CoreState& core) {
    std::string set;
    for (const auto& [flag, name] :
         std::to_array<std::tuple<Flag, const char*>>({{core.GlobalCommandShowText, "show "},
                                                       {core.GlobalCommandKill, "kill "},
                                                       {core.GlobalCommandDebug, "debug "},
                                                       {core.GlobalCommandNoOrg, "noorg "},
                                                       {core.GlobalSilentMode, "silent "},
                                                       {core.GlobalCommandBoth, "both "},
                                                       {core.GlobalCommandvCal, "vcal "},
                                                       {core.GlobalCommandvCard, "vcard "},
                                                       {core.GlobalCommandOptions, "options "},
                                                       {core.GlobalCommandCaller, "caller "}})) {
        set += flag ? name : "";
    }
    return set;
}

} // namespace

TEST_CASE("The words of the command line") {
    for (const auto& [line, flags, caller] :
         std::to_array<std::tuple<TextView, const char*, TextView>>({
             {u"", "", u""},
             {u"d", "show ", u""},
             {u"vcal vcard", "silent vcal vcard ", u""},
             {u"Both Options", "silent both options ", u""},
             {u"VCALX XVCAL V CAL", "", u""},
             {u"  VCAL   KILL  ", "kill silent vcal ", u""},
             {u"caller=ol", "caller ", u"OL"},
             {u"xCALLER=a=b", "caller ", u"A=B"},
             {u"CALLER=", "caller ", u""},
         })) {
        CAPTURE(toUtf8(line));
        const FreshProgram program;
        app.core.GlobalCommandKill = kTrue; // of an earlier run
        app.core.commandLine = line;
        TDLCommandLine();
        CHECK(flagsOf(app.core) == flags);
        CHECK(app.core.GlobalCallerName == caller);
    }
}

TEST_CASE("TIMER") {
    constexpr TextView kRange = u"Nur Werte zwischen 0 und 65000";
    constexpr TextView kNumeric = u"kein numerischer Wert";

    for (const auto& [line, value, secondLine, failure] :
         std::to_array<std::tuple<TextView, int, TextView, bool>>({
             {u"timer=0", 0, u"", false},
             {u"TIMER=32767", 32767, u"", false},
             {u"TIMER=32768", 0, u"", true},
             {u"TIMER=65001", 0, u"", true},
             {u"TIMER=99999999999999999999", 0, u"", true},
             {u"TIMER=-5", 0, kRange, false},
             {u"TIMER=abc", 0, kNumeric, false},
             {u"TIMER=", 0, kNumeric, false},
         })) {
        CAPTURE(toUtf8(line));
        FreshProgram program;
        LogInit();
        app.core.GlobalADOAvailable = kTrue;
        app.core.commandLine = line;
        TDLCommandLine();
        CHECK(app.core.GlobalCommandTimer == value);
        CHECK(program.screen.boxesShown.size() == (secondLine.empty() && !failure ? 0U : 1U));
        if (!secondLine.empty()) {
            const Text& box = program.screen.boxesShown.front();
            CHECK(box.starts_with(u"Übergabewert: " + upper(line.substr(6))));
            CHECK(holdsText(box, secondLine));
            CHECK(box.ends_with(u"Das Intervall wird auf 0 gesetzt!"));
        }
        CHECK(app.core.GlobalProgramFehler == (failure ? 1 : 0));
    }
}

TEST_CASE("Words that are none are known as such") {
    CHECK(unknownWords({u"vcal", u"vcall", u"CALLER=x", u"timer=x", u"", u"--json"}) ==
          std::vector<Text>{u"vcall", u"", u"--json"});
}
