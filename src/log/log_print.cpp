#include "log/log_print.h"

#include "core/state.h"
#include "core/trap.h"
#include "log/log_text.h"

namespace tandolin {

namespace {

constexpr TextView kModule = u"logModul";
constexpr TextView kTwoLineBreaks = u"\r\n\r\n";

/// The blocks that have rows.
Text joined(const LogBlocks& blocks) {
    Text text;
    for (const Text* block : {&blocks.calendar, &blocks.contacts, &blocks.errors}) {
        if (!block->empty()) {
            text.append(text.empty() ? TextView{} : kTwoLineBreaks).append(*block);
        }
    }
    return text;
}

void print(Text text) {
    if (app.ports.printer == nullptr) {
        throw Failure(failure_number::kFileFailed, u"there is no printer");
    }
    app.ports.printer->print({.text = std::move(text),
                              .font = u"Arial",
                              .points = 12,
                              .tabStops = {15, 30, 65, 85, 110, 130, 150, 160}});
}

} // namespace

void logPrint(TextView what) {
    trapped({kModule, u"logPrint"}, [what] {
        const LogBlocks blocks = logGridZusammensetzung();
        const bool all = what == u"all";
        // Wanted: program errors alone are nothing to print, while three empty blocks are a page.
        if (!all && blocks.calendar.empty() && blocks.contacts.empty() && !blocks.errors.empty()) {
            app.ports.screen.boxes->ask(app.core.applicationTitle, tr(ids::kNothingToPrint),
                                        Icon::none, Buttons::ok);
            return;
        }
        print((all ? app.log.summary + Text(kTwoLineBreaks) : Text()) + joined(blocks));
    });
}

void printLogSummary() {
    trapped({kModule, u"logPrint"}, [] { print(app.log.summary); });
}

} // namespace tandolin
