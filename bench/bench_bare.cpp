// bench_bare first WORLD AFTER | bench_bare copied WORLD AFTER COPY | bench_bare again WORLD: what
// a run cannot do without. It lists and reads every file of both sides of WORLD; with `copied` it
// writes each file that it read to COPY; with `first` and `copied` it then writes the files that
// AFTER, the world after a run of the program, has more, in the program's way: under a temporary
// name, renamed, and one flush of the file system at the end. Prints the milliseconds of that; the
// bytes to write are fetched before the clock starts.

#include <chrono>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <iomanip>
#include <iostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/stat.h>
#include <unistd.h>
#include <unordered_map>
#include <utility>
#include <vector>

namespace {

constexpr const char* kFolders[] = {"/phone/telecom/cal", "/phone/telecom/pb",
                                    "/organizer/calendar", "/organizer/contacts/Kontakte"};

[[noreturn]] void stop(const std::string& what) {
    throw std::runtime_error(what + ": " + std::strerror(errno));
}

std::vector<std::string> list(const std::string& folder) {
    DIR* directory = ::opendir(folder.c_str());
    if (directory == nullptr) {
        stop(folder);
    }
    std::vector<std::string> names;
    while (const dirent* entry = ::readdir(directory)) {
        if (entry->d_name[0] != '.') {
            names.emplace_back(entry->d_name);
        }
    }
    ::closedir(directory);
    return names;
}

std::string read(const std::string& file) {
    const int descriptor = ::open(file.c_str(), O_RDONLY | O_CLOEXEC);

    struct stat facts {};

    if (descriptor < 0 || ::fstat(descriptor, &facts) != 0) {
        stop(file);
    }
    std::string bytes(static_cast<std::size_t>(facts.st_size), '\0');
    if (::read(descriptor, bytes.data(), bytes.size()) != facts.st_size) {
        stop(file);
    }
    ::close(descriptor);
    return bytes;
}

void write(const std::string& folder, const std::string& name, std::string_view bytes) {
    const std::string temporary = folder + "/." + name + ".new";
    const int descriptor = ::open(temporary.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (descriptor < 0 ||
        ::write(descriptor, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) {
        stop(temporary);
    }
    ::close(descriptor);
    if (::rename(temporary.c_str(), (folder + '/' + name).c_str()) != 0) {
        stop(temporary);
    }
}

void makeFolders(const std::string& path) {
    for (std::size_t end = path.find('/', 1); end != std::string::npos;
         end = path.find('/', end + 1)) {
        ::mkdir(path.substr(0, end).c_str(), 0700);
    }
    if (::mkdir(path.c_str(), 0700) != 0 && errno != EEXIST) {
        stop(path);
    }
}

void writeCopy(const std::string& file, std::string_view bytes) {
    const int descriptor = ::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
    if (descriptor < 0 ||
        ::write(descriptor, bytes.data(), bytes.size()) != static_cast<ssize_t>(bytes.size())) {
        stop(file);
    }
    ::close(descriptor);
}

using Files = std::vector<std::pair<std::string, std::string>>;

/// What `after` has more than `before`, with its bytes.
Files newFiles(const std::string& before, const std::string& after) {
    std::unordered_map<std::string, bool> known;
    for (const std::string& name : list(before)) {
        known[name] = true;
    }
    Files files;
    for (const std::string& name : list(after)) {
        if (!known[name]) {
            files.emplace_back(name, read(after + '/' + name));
        }
    }
    return files;
}

void flush(const std::string& folder) {
    const int descriptor = ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (descriptor < 0 || ::syncfs(descriptor) != 0) {
        stop(folder);
    }
    ::close(descriptor);
}

double processorTime() {
    timespec time{};
    ::clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &time);
    return static_cast<double>(time.tv_sec) * 1e3 + static_cast<double>(time.tv_nsec) / 1e6;
}

/// Returns the number of bytes read, so that reading cannot be left out.
std::size_t bareRun(const std::string& world, const std::vector<Files>& toWrite,
                    const std::string& copy) {
    std::size_t bytes = 0;
    for (const char* folder : kFolders) {
        if (!copy.empty()) {
            makeFolders(copy + folder);
        }
        for (const std::string& name : list(world + folder)) {
            const std::string content = read(world + folder + '/' + name);
            bytes += content.size();
            if (!copy.empty()) {
                writeCopy(copy + folder + '/' + name, content);
            }
        }
    }
    if (!copy.empty()) {
        flush(copy);
    }
    for (std::size_t side = 0; side < toWrite.size(); ++side) {
        for (const auto& [name, content] : toWrite[side]) {
            write(world + kFolders[side], name, content);
        }
        flush(world + kFolders[side]);
    }
    return bytes;
}

} // namespace

int main(int argc, char** argv) {
    const std::string_view kind = argc > 1 ? argv[1] : "";
    const bool writes = (kind == "first" && argc == 4) || (kind == "copied" && argc == 5);
    if (!writes && !(kind == "again" && argc == 3)) {
        std::cerr << "bench_bare first WORLD AFTER | copied WORLD AFTER COPY | again WORLD\n";
        return 2;
    }
    try {
        const std::string world = argv[2];
        std::vector<Files> toWrite;
        if (writes) {
            for (const char* folder : kFolders) {
                toWrite.push_back(newFiles(world + folder, argv[3] + std::string(folder)));
            }
        }
        const auto begin = std::chrono::steady_clock::now();
        const double cpuBegin = processorTime();
        const std::size_t bytes = bareRun(world, toWrite, argc > 4 ? argv[4] : "");
        const double cpu = processorTime() - cpuBegin;
        const std::chrono::duration<double, std::milli> taken =
            std::chrono::steady_clock::now() - begin;
        std::cerr << bytes << " bytes read\n";
        std::cout << std::fixed << std::setprecision(2) << taken.count() << ' ' << cpu << '\n';
    } catch (const std::exception& failure) {
        std::cerr << failure.what() << '\n';
        return 1;
    }
    return 0;
}
