#include "platform/screen_terminal/signals.h"

#include <csignal>

namespace tandolin::platform {

namespace {

volatile std::sig_atomic_t interrupts = 0;
volatile std::sig_atomic_t terminations = 0;

extern "C" void noteSignal(int number) {
    if (number == SIGINT) {
        interrupts = interrupts + 1;
    } else {
        terminations = 1;
    }
}

} // namespace

void catchSignals() {
    struct sigaction action = {};
    action.sa_handler = noteSignal;
    sigemptyset(&action.sa_mask);
    // Without SA_RESTART: a question that waits for an answer ends when the next signal comes.
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    // A reader that goes away must not end a run in the middle; the failed write is seen instead.
    std::signal(SIGPIPE, SIG_IGN);
}

int interruptCount() {
    return interrupts;
}

bool terminated() {
    return terminations != 0;
}

} // namespace tandolin::platform
