#include "apps/command_line.h"

#include "core/debug_trace.h"
#include "core/state.h"
#include "core/trap.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace tandolin {

namespace {

constexpr TextView kCaller = u"CALLER=";
constexpr TextView kTimer = u"TIMER=";

struct Word {
    TextView word;
    void (*effect)();
};

constexpr std::array kWords{
    Word{u"D", [] { app.core.GlobalCommandShowText = kTrue; }},
    Word{u"KILL", [] { app.core.GlobalCommandKill = kTrue; }},
    Word{u"DEBUG", [] { app.core.GlobalCommandDebug = kTrue; }},
    Word{u"NOORG",
         [] {
             app.organizer.OrganizerPresent = kFalse;
             app.core.GlobalCommandNoOrg = kTrue;
         }},
    Word{u"BOTH", [] { app.core.GlobalSilentMode = app.core.GlobalCommandBoth = kTrue; }},
    Word{u"VCAL", [] { app.core.GlobalSilentMode = app.core.GlobalCommandvCal = kTrue; }},
    Word{u"VCARD", [] { app.core.GlobalSilentMode = app.core.GlobalCommandvCard = kTrue; }},
    Word{u"OPTIONS", [] { app.core.GlobalSilentMode = app.core.GlobalCommandOptions = kTrue; }},
};

bool contains(TextView word, TextView part) {
    return word.find(part) != TextView::npos;
}

TextView behindEquals(TextView word) {
    return word.substr(word.find(u'=') + 1);
}

void warnOfTimer(const Text& value, StringId reason) {
    const Text text = tr(ids::kTimerValue) + value + u"\r\n" + tr(reason) +
                      u"\r\nz.B. TIMER=1000 fuer 1000 ms.\r\nDas Intervall wird auf 0 gesetzt!";
    app.ports.screen.boxes->ask(app.core.applicationTitle, text, Icon::exclamation, Buttons::ok);
    app.core.GlobalCommandTimer = 0;
}

void takeTimer(TextView value) {
    const auto number = decimalNumber(value);
    if (!number) {
        warnOfTimer(Text(value), ids::kTimerNotNumeric);
        return;
    }
    constexpr double kFarBeyond = 1e6;
    app.core.GlobalCommandTimer =
        int16Of(std::llrint(std::clamp(*number, -kFarBeyond, kFarBeyond)));
    if (app.core.GlobalCommandTimer < 0) {
        warnOfTimer(decimal(app.core.GlobalCommandTimer), ids::kTimerRange);
    }
}

void takeWord(TextView word) {
    const auto known = std::ranges::find(kWords, word, &Word::word);
    if (known != kWords.end()) {
        known->effect();
    } else if (contains(word, kCaller)) {
        app.core.GlobalCommandCaller = kTrue;
        app.core.GlobalCallerName = behindEquals(word);
    } else if (contains(word, kTimer)) {
        takeTimer(behindEquals(word));
    }
}

void clearCommandLineState() {
    CoreState& core = app.core;
    for (Flag* flag :
         {&core.GlobalCommandShowText, &core.GlobalCommandKill, &core.GlobalCommandNoOrg,
          &core.GlobalCommandCaller, &core.GlobalCommandDebug, &core.GlobalSilentMode,
          &core.GlobalCommandBoth, &core.GlobalCommandvCal, &core.GlobalCommandvCard,
          &core.GlobalCommandOptions}) {
        *flag = kFalse;
    }
    core.GlobalCallerName.clear();
    core.GlobalCommandTimer = 0;
}

void startTrace() {
    if (!app.core.GlobalCommandDebug) {
        return;
    }
    openDebugFile();
    trace(u"Debug: Aufrufstring = " + app.core.programPath + u" " + app.core.callLine);
}

} // namespace

void TDLCommandLine() {
    trapped({u"Main_Modul", u"TDLCommandLine"}, [] {
        clearCommandLineState();
        for (const Text& word : split(upper(app.core.commandLine), u" ")) {
            takeWord(word);
        }
        startTrace();
    });
}

std::vector<Text> unknownWords(const std::vector<Text>& words) {
    std::vector<Text> unknown;
    for (const Text& word : words) {
        const Text w = upper(word);
        const bool known = std::ranges::find(kWords, w, &Word::word) != kWords.end() ||
                           contains(w, kCaller) || contains(w, kTimer);
        if (!known) {
            unknown.push_back(word);
        }
    }
    return unknown;
}

} // namespace tandolin
