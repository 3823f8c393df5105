#include "platform/screen_terminal/terminal_screen.h"

#include "core/language_strings.h"
#include "platform/screen_terminal/signals.h"

#include <algorithm>
#include <ostream>

#include <unistd.h>

namespace tandolin::platform {

namespace {

/// A text of several lines as one, for a line of progress.
bool hasNumber(const std::string& line) {
    return std::ranges::any_of(line, [](char c) { return c >= '0' && c <= '9'; });
}

} // namespace

TerminalScreen::TerminalScreen(std::ostream& errors, Chatter chatter, const std::string& answer)
    : errors_(errors), chatter_(chatter), answer_(answer),
      terminal_(isatty(STDIN_FILENO) == 1 && isatty(STDERR_FILENO) == 1) {}

Answer TerminalScreen::ask(TextView, TextView text, Icon icon, Buttons buttons) {
    if (cancelAsked_ && text == tr(ids::kReallyCancel)) {
        cancelAsked_ = false;
        return askWhetherToStop(text);
    }
    endLine();
    std::string words = toUtf8(text);
    std::erase(words, '\r');
    if (chatter_ != Chatter::quiet || icon == Icon::exclamation) {
        errors_ << words << '\n' << std::flush;
    }
    return answerTo(buttons);
}

Answer TerminalScreen::answerTo(Buttons buttons) const {
    switch (buttons) {
    case Buttons::ok:
        return Answer::ok;
    case Buttons::okCancel:
        return answer_ == "yes" ? Answer::ok : Answer::cancel;
    case Buttons::yesNo:
        return answer_ == "yes" ? Answer::yes : Answer::no;
    case Buttons::yesNoCancel:
        return answer_ == "yes" ? Answer::yes : answer_ == "cancel" ? Answer::cancel : Answer::no;
    }
    return Answer::cancel;
}

/// Only the first interrupt of a user at a terminal is a question; everything else means it.
Answer TerminalScreen::askWhetherToStop(TextView text) {
    if (!terminal_ || terminated() || interruptCount() != 1) {
        return Answer::yes;
    }
    endLine();
    errors_ << toUtf8(text) << " [j/N] " << std::flush;
    std::string answer;
    char c = 0;
    for (;;) {
        const auto count = ::read(STDIN_FILENO, &c, 1);
        if (count < 0) {
            return Answer::yes; // the second signal came while the question stood
        }
        if (count == 0 || c == '\n') {
            break;
        }
        answer += c;
    }
    return !answer.empty() && std::string("jJyY").find(answer.front()) != std::string::npos
               ? Answer::yes
               : Answer::no;
}

void TerminalScreen::open(TextView) {
    shown_.clear();
}

/// Counts run by far faster than anybody reads: a step is shown at once, its counts ten times a
/// second on a terminal and every two seconds in a file.
void TerminalScreen::text(TextView text) {
    if (chatter_ == Chatter::quiet || text.empty()) {
        return;
    }
    const auto now = std::chrono::steady_clock::now();
    const auto pause = terminal_ ? std::chrono::milliseconds(100) : std::chrono::milliseconds(2000);
    if (now - shownAt_ < pause && text.find(u'/') != TextView::npos) {
        return; // by far the most calls: spared the conversion
    }
    const std::string line = toUtf8(onOneLine(text));
    if (line == shown_ || (hasNumber(line) && now - shownAt_ < pause)) {
        return;
    }
    if (terminal_) {
        errors_ << "\r\033[K" << line << std::flush;
        lineOpen_ = true;
    } else {
        errors_ << line << '\n' << std::flush;
    }
    shown_ = line;
    shownAt_ = now;
}

bool TerminalScreen::cancelPressed() {
    const bool pressed = interruptCount() > interruptsSeen_ || (terminated() && !terminationSeen_);
    interruptsSeen_ = interruptCount();
    terminationSeen_ = terminated();
    cancelAsked_ = cancelAsked_ || pressed;
    return pressed;
}

void TerminalScreen::close() {
    endLine();
}

void TerminalScreen::endLine() {
    if (lineOpen_) {
        errors_ << '\n' << std::flush;
        lineOpen_ = false;
    }
}

} // namespace tandolin::platform
