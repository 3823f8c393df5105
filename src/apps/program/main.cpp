#include "apps/exit_status.h"
#include "apps/program/run.h"
#include "platform/screen_terminal/signals.h"

#include <malloc.h>

#include <exception>
#include <iostream>

int main(int argc, char** argv) {
    // Thousands of small texts come and go: lists of them that are merged again and again cost more
    // than they save.
    mallopt(M_MXFAST, 0);
    try {
        tandolin::platform::catchSignals();
        return tandolin::program::runProgram(argv[0], {argv + 1, argv + argc}, std::cout,
                                             std::cerr);
    } catch (const std::exception& failure) {
        std::cerr << "halverntandolin: " << failure.what() << '\n';
        return static_cast<int>(tandolin::ExitStatus::startFailed);
    }
}
