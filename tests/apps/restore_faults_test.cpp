// The k-th call of a restore goes wrong. Every file is then as the run left it or as it was before
// the run, and a second restore brings all of it back.

#include "apps/fault_sweep.h"
#include "support/fault_sum.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

namespace fs = std::filesystem;

class FaultyFiles : public StoreFiles {
public:
    FaultyFiles(bool phone, std::unique_ptr<StoreFiles> files, FaultScript& script)
        : phone_(phone), files_(std::move(files)), script_(script) {}

    std::vector<std::string> entries(EntryKinds kinds) override {
        const auto list = [&] { return files_->entries(kinds); };
        return script_.read(phone_, "entries", list, [](std::vector<std::string> names) {
            names.resize(names.size() / 2);
            return names;
        });
    }

    std::optional<std::string> read(const std::string& name) override {
        const auto bytes = [&] { return files_->read(name); };
        return script_.read(phone_, "read " + name, bytes, [&](std::optional<std::string> whole) {
            if (script_.kind == FaultKind::staleAnswer || !whole) {
                return std::optional<std::string>();
            }
            return std::optional(whole->substr(0, whole->size() / 2));
        });
    }

    void write(const std::string& name, std::string_view bytes) override {
        script_.write(phone_, "write " + name, [&] { files_->write(name, bytes); });
    }

    void remove(const std::string& name) override {
        script_.write(phone_, "remove " + name, [&] { files_->remove(name); });
    }

    void flush() override {
        script_.other(phone_, "flush", [&] { files_->flush(); });
    }

    std::vector<std::string> statusFiles() override { return files_->statusFiles(); }

    void restoreStatus(const std::string& name, const std::optional<std::string>& bytes) override {
        script_.write(phone_, "restoreStatus " + name, [&] { files_->restoreStatus(name, bytes); });
    }

private:
    bool phone_;
    std::unique_ptr<StoreFiles> files_;
    FaultScript& script_;
};

program::Around filesWith(FaultScript& script) {
    return {{},
            {},
            [&script](StoreSide side,
                      std::unique_ptr<StoreFiles> files) -> std::unique_ptr<StoreFiles> {
                return std::make_unique<FaultyFiles>(side == StoreSide::phone, std::move(files),
                                                     script);
            }};
}

Tree bothSides(const RunFolder& folder) {
    Tree all = folder.tree("phone");
    all.merge(folder.tree("organizer"));
    return all;
}

/// A world on which a run was made, and its copy; each try works on the files of this one.
struct Written {
    RunFolder folder;
    Tree before;
    Tree after;
    std::string copy;

    explicit Written(int mode) : folder(maximumFor(mode)) {
        fill(folder);
        before = bothSides(folder);
        CHECK(folder.run({"--set", "SyncTyp=" + std::to_string(mode), "--json", "BOTH"}).exit == 0);
        after = bothSides(folder);
        const fs::path backups = folder.scratch.path / "state/halverntandolin/backups";
        copy = fs::directory_iterator(backups)->path().filename().string();
    }

    void layOut(const RunFolder& fresh) const {
        for (const char* name : {"phone", "organizer", "state"}) {
            fs::remove_all(fresh.scratch.path / name);
            fs::copy(folder.scratch.path / name, fresh.scratch.path / name,
                     fs::copy_options::recursive);
        }
    }

    [[nodiscard]] int restore(const RunFolder& on, const program::Around& around = {}) const {
        return on.run({"--restore", copy, "--json"}, around).exit;
    }
};

/// Do both trees hold the same under this name, be it nothing?
bool sameIn(const Tree& one, const std::string& path, const Tree& other) {
    const auto a = one.find(path);
    const auto b = other.find(path);
    return a == one.end() ? b == other.end() : b != other.end() && a->second == b->second;
}

/// An entry that could not be read is left alone; the others are put back all the same.
bool wroteUnread(const Written& written, const FaultScript& script, const Tree& now) {
    constexpr std::string_view kRead = "read ";
    const bool failedRead = script.faultyCall.starts_with(kRead) && !spoilsAnswers(script.kind);
    return failedRead && !sameIn(written.after, script.faultyCall.substr(kRead.size()), now);
}

int filesThatAreNeither(const Written& written, const Tree& now) {
    Tree known = written.before;
    known.insert(written.after.begin(), written.after.end());
    int lost = 0;
    for (const auto& [path, bytes] : known) {
        const bool counted = path.ends_with("info.log");
        lost += counted || sameIn(written.before, path, now) || sameIn(written.after, path, now)
                    ? 0
                    : 1;
    }
    return lost;
}

void tryFault(FaultSum& sum, const Written& written, FaultScript script) {
    const RunFolder folder;
    written.layOut(folder);
    const int exit = written.restore(folder, filesWith(script));
    CAPTURE(nameOf(script.kind));
    CAPTURE(script.onPhone);
    CAPTURE(script.failAt);
    CAPTURE(script.faultyCall);
    CAPTURE(exit);
    CHECK(script.faultyCall != "");
    CHECK((exit != 0 || spoilsAnswers(script.kind)));
    const Tree now = bothSides(folder);
    const bool unread = wroteUnread(written, script, now);
    CHECK_FALSE(unread);
    const int lost = filesThatAreNeither(written, now);
    CHECK(lost == 0);
    CHECK(written.restore(folder) <= 1);
    const Tree end = bothSides(folder);
    CHECK(end == written.before);
    sum.lost += lost;
    sum.writtenAfterFailedRead += unread ? 1 : 0;
    ++sum.tried;
}

} // namespace

TEST_CASE("A fault at every call of a restore") {
    if (fs::is_directory("/dev/shm")) {
        ::setenv("TMPDIR", "/dev/shm", 0);
    }
    FaultSum sum;
    for (const int mode : {1, 4}) {
        const Written written(mode);
        FaultScript counting;
        {
            const RunFolder folder;
            written.layOut(folder);
            CHECK(written.restore(folder, filesWith(counting)) == 0);
            const Tree end = bothSides(folder);
            CHECK(end == written.before);
        }
        for (const bool onPhone : {true, false}) {
            forEachFault(onPhone, counting.calls[onPhone ? 1 : 0],
                         [&](const FaultScript& script) { tryFault(sum, written, script); });
        }
    }
    sum.tell("restore");
    CHECK(sum.tried > 100);
    CHECK(sum.nothingBad());
}
