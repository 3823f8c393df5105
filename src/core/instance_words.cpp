#include "core/instance_words.h"

#include "core/state.h"

namespace tandolin {

namespace {

/// The caller that may end the instance it started.
constexpr TextView kOwningCaller = u"OL";

void endThisInstance() {
    app.run.cancelled = true;
    app.ports.screen.window->unload(Form::Main_Form);
}

} // namespace

bool Form_LinkExecute(TextView command) {
    const Text word = upper(command);
    if (word == u"IsTDL") { // Wanted: never equal to an upper-case word
        return true;
    }
    if (word != kKillWord) {
        return false;
    }
    if (app.core.GlobalCallerName == kOwningCaller) {
        endThisInstance();
    }
    return true;
}

void hearOtherInstances() {
    if (app.ports.instance == nullptr) {
        return;
    }
    while (const auto word = app.ports.instance->received()) {
        if (*word == kActivateWord) {
            app.ports.screen.window->focusMain();
        } else {
            Form_LinkExecute(*word);
        }
    }
}

} // namespace tandolin
