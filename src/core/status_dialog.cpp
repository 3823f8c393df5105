#include "core/status_dialog.h"

#include "core/instance_words.h"
#include "core/language_strings.h"
#include "core/state.h"

namespace tandolin {

void Status_Anzeige::Start(TextView title, bool noShow) {
    if (!finished_) {
        return;
    }
    finished_ = noShow;
    if (noShow) {
        return;
    }
    goOn_ = true;
    if (!app.core.GlobalSilentMode) {
        app.run.cancelled = false; // a cancel ends one action of a dialog run, not all that follow
    }
    app.ports.screen.status->open(title);
    app.ports.screen.status->text({});
}

void Status_Anzeige::letInputIn() {
    hearOtherInstances();
    goOn_ = !app.ports.screen.status->cancelPressed() && goOn_;
}

void Status_Anzeige::SetText(TextView text) {
    letInputIn();
    if (!finished_) {
        app.ports.screen.status->text(text);
    }
}

bool Status_Anzeige::GetState() {
    letInputIn();
    if (app.run.cancelled && (app.core.GlobalSilentMode || !finished_)) {
        return false; // confirmed once: run or action is on its way out
    }
    if (finished_ || goOn_) {
        return true;
    }
    const Answer answer = app.ports.screen.boxes->ask(
        tr(ids::kProgramTitle), tr(ids::kReallyCancel), Icon::question, Buttons::yesNo);
    goOn_ = answer != Answer::yes;
    app.run.cancelled = app.run.cancelled || !goOn_;
    return goOn_;
}

void Status_Anzeige::Quit() {
    if (finished_) {
        return;
    }
    finished_ = true;
    app.ports.screen.status->buttons(true, false);
    app.ports.screen.status->close();
}

void Status_Anzeige::showButtons(bool cancelShown, bool okShown) {
    app.ports.screen.status->buttons(cancelShown, okShown);
}

StatusDialog::StatusDialog() : own_(!app.status.isOpen()) {
    if (own_) {
        app.status.Start(tr(ids::kProgramTitle));
    }
}

StatusDialog::~StatusDialog() {
    if (own_) {
        app.status.Quit();
    }
}

} // namespace tandolin
