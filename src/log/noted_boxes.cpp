#include "log/noted_boxes.h"

#include "core/state.h"

namespace tandolin {

namespace {

/// A box with one button has no answer worth telling.
TextView answerInWords(Answer answer, Buttons buttons) {
    if (buttons == Buttons::ok) {
        return {};
    }
    switch (answer) {
    case Answer::ok:
        return u"OK";
    case Answer::cancel:
        return u"Cancel";
    case Answer::yes:
        return u"Yes";
    case Answer::no:
        return u"No";
    }
    return {};
}

} // namespace

Answer NotedBoxes::ask(TextView caption, TextView text, Icon icon, Buttons buttons) {
    const Answer answer = screen_.ask(caption, text, icon, buttons);
    app.log.boxes.push_back(
        {app.ports.clock->now(), Text(text), Text(answerInWords(answer, buttons))});
    return answer;
}

} // namespace tandolin
