#include "core/debug_trace.h"

#include "core/state.h"

namespace tandolin {

namespace {

/// One record of a delimited text file: quoted, quotes within doubled.
Text quoted(TextView text) {
    Text record = u"\"";
    for (const char16_t c : text) {
        record += c;
        if (c == u'"') {
            record += c;
        }
    }
    return record + u"\"\r\n";
}

} // namespace

void trace(TextView boxText, TextView fileText) {
    if (!app.core.GlobalCommandDebug) {
        return;
    }
    app.ports.screen.boxes->ask(app.core.applicationTitle, boxText, Icon::none, Buttons::ok);
    if (!app.core.traceOpen) {
        return;
    }
    const Date now = app.ports.clock->now();
    app.ports.files->append(quoted(formatDate(now) + u" " + isoTime(now) + u"\r\n" +
                                   Text(fileText.empty() ? boxText : fileText)));
}

void openDebugFile() {
    if (app.run.dryRun) {
        return;
    }
    app.ports.files->openTrace(app.settings.HomeDir + u"\\TDLDebug.txt");
    app.core.traceOpen = true;
}

void closeDebugFile() {
    app.core.traceOpen = false;
    app.ports.files->closeTrace();
}

} // namespace tandolin
