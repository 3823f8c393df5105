// bench_measure COMMAND...: runs a command and prints "WALL CPU KILOBYTES": wall and processor
// time in milliseconds from its start to its end, and the most memory that it held. Its standard
// output goes nowhere.

#include <chrono>
#include <cstdio>
#include <fcntl.h>
#include <iomanip>
#include <iostream>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

int main(int argc, char** argv) {
    if (argc < 2) {
        std::cerr << "bench_measure COMMAND...\n";
        return 2;
    }
    const auto begin = std::chrono::steady_clock::now();
    const pid_t child = ::fork();
    if (child == 0) {
        const int nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
        ::dup2(nowhere, STDOUT_FILENO);
        ::execvp(argv[1], argv + 1);
        ::_exit(127);
    }
    int status = 0;

    struct rusage usage {};

    if (child < 0 || ::wait4(child, &status, 0, &usage) != child) {
        std::perror("bench_measure");
        return 1;
    }
    const std::chrono::duration<double, std::milli> taken =
        std::chrono::steady_clock::now() - begin;
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        std::cerr << argv[1] << " failed, status " << status << '\n';
        return 1;
    }
    const auto milliseconds = [](const timeval& time) {
        return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_usec) / 1e3;
    };
    std::cout << std::fixed << std::setprecision(2) << taken.count() << ' '
              << milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime) << ' '
              << usage.ru_maxrss << '\n';
    return 0;
}
