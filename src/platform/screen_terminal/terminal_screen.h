#pragma once

#include "core/ports/screen.h"

#include <chrono>
#include <iosfwd>
#include <string>

namespace tandolin::platform {

/// How much the terminal is told.
enum class Chatter { quiet, normal, verbose };

/// The screen of a run without a window: boxes, progress and questions go to the error stream and
/// never wait, except for the question whether to stop that a user at a terminal asked for.
class TerminalScreen final : public MessageBoxes, public StatusView, public MainWindow {
public:
    /// `answer` is given to every question; without one the answer is the one that changes nothing.
    /// The stream must outlive the object.
    TerminalScreen(std::ostream& errors, Chatter chatter, const std::string& answer);

    Answer ask(TextView caption, TextView text, Icon icon, Buttons buttons) override;

    void open(TextView title) override;
    void text(TextView text) override;

    void buttons(bool, bool) override {}

    /// A signal that came since the last call.
    bool cancelPressed() override;
    void close() override;

    // There is no window: what the logic tells it has no effect.
    void toolEnabled(TextView, TextView, bool) override {}

    void toolVisible(TextView, TextView, bool) override {}

    void pane(Pane, TextView) override {}

    void columnCaptions(Grid) override {}

    void refresh(Grid) override {}

    void busy(bool) override {}

    void EntryBackround(double, double) override {}

    void startTimer(int) override {}

    void show(Form) override {}

    void unload(Form) override {}

    void runModal(Form) override {}

    void TDLInitForm(bool) override {}

    void focusMain() override {}

private:
    [[nodiscard]] Answer answerTo(Buttons buttons) const;
    Answer askWhetherToStop(TextView text);
    void endLine();

    std::ostream& errors_;
    Chatter chatter_;
    std::string answer_;
    bool terminal_;
    bool lineOpen_ = false;
    std::string shown_;
    std::chrono::steady_clock::time_point shownAt_;
    int interruptsSeen_ = 0;
    bool terminationSeen_ = false;
    bool cancelAsked_ = false;
};

} // namespace tandolin::platform
