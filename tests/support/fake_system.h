#pragma once

// Files of the home directory, other instances and language libraries, in memory.

#include "core/failure.h"
#include "core/ports/language_library.h"
#include "core/ports/system.h"

#include <deque>
#include <map>
#include <optional>
#include <vector>

namespace tandolin::testing {

struct FakeFiles : HomeFiles {
    std::vector<Text> paths; ///< of the files written
    Text content;            ///< of the last one
    bool unwritable = false;

    void ensureWritable(TextView) override {
        if (unwritable) {
            throw Failure(failure_number::kPermission, u"read-only");
        }
    }

    void write(TextView path, TextView text) override {
        ensureWritable(path);
        paths.emplace_back(path);
        content = text;
    }

    void openTrace(TextView) override {}

    void append(TextView) override {}

    void closeTrace() override {}
};

struct FakeInstances : InstanceLink {
    bool previous = false;
    bool fails = false;
    int kills = 0;
    int activations = 0;
    std::deque<Text> words; ///< that another instance sent

    bool previousInstance() override {
        if (fails) {
            throw Failure(failure_number::kPermission, u"no lock");
        }
        return previous;
    }

    void activate() override { ++activations; }

    void kill() override { ++kills; }

    std::optional<Text> received() override {
        if (words.empty()) {
            return std::nullopt;
        }
        const Text word = words.front();
        words.pop_front();
        return word;
    }
};

/// One library under one path; as it is made there is none.
struct FakeLanguages : LanguageLibrary {
    Text path;
    std::map<int, Text> texts;
    int freed = -1;

    int open(TextView asked) override { return asked == path ? 7 : 0; }

    [[nodiscard]] int lastError() const override { return 2; }

    Text string(int, int id) override { return texts.contains(id) ? texts.at(id) : Text{}; }

    void free(int handle) override { freed = handle; }
};

} // namespace tandolin::testing
