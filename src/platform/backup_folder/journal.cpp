#include "platform/backup_folder/journal.h"

#include "core/failure.h"
#include "platform/backup_folder/entry_names.h"
#include "platform/backup_folder/manifest.h"
#include "platform/system_posix/atomic_file.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <utility>

namespace tandolin::platform {

namespace {

constexpr unsigned kPrivate = 0600;
constexpr const char* kNoFile = "-";

const char* wordOf(StoreSide side) {
    return side == StoreSide::phone ? "phone" : "organizer";
}

std::string fieldOf(const Content& content) {
    return content.value_or(kNoFile);
}

std::vector<std::string_view> fieldsOf(std::string_view line) {
    std::vector<std::string_view> fields;
    for (;;) {
        const std::size_t tab = line.find('\t');
        fields.push_back(line.substr(0, tab));
        if (tab == std::string_view::npos) {
            return fields;
        }
        line.remove_prefix(tab + 1);
    }
}

[[noreturn]] void refuse(std::string_view line) {
    throw damagedCopy(u"its journal holds what no run writes: " +
                      fromUtf8(escapedName(line.substr(0, 100))));
}

/// Reads the lines one by one into changes.
class Reader {
public:
    void take(std::string_view line) {
        const auto fields = fieldsOf(line);
        if (fields.size() < 3 || (fields[1] != "phone" && fields[1] != "organizer")) {
            refuse(line);
        }
        line_ = line;
        side_ = fields[1] == "phone" ? StoreSide::phone : StoreSide::organizer;
        if (fields[0] == "C" && fields.size() == 5) {
            begin(name(fields[4]), content(fields[2]), content(fields[3]));
        } else if (fields[0] == "U" && fields.size() == 3) {
            makeUncertain(known(name(fields[2])));
        } else if (fields[0] == "B" && fields.size() == 5) {
            become(name(fields[2]), content(fields[3]), name(fields[4]));
        } else {
            refuse(line);
        }
    }

    /// The last change may not have been made.
    void endEarly() {
        if (last_ < entries_.size() && !sureOfLast_) {
            makeUncertain(entries_[last_]);
        }
    }

    std::vector<Change> result() && {
        std::vector<Change> changes;
        for (Entry& entry : entries_) {
            if (!entry.change.name.empty()) {
                changes.push_back(std::move(entry.change));
            }
        }
        return changes;
    }

private:
    struct Entry {
        Change change;
        std::vector<Content> history; ///< what it held before, then each content it was given
    };

    std::string name(std::string_view field) const {
        auto name = unescapedName(field);
        if (!name || !staysBelow(*name)) {
            refuse(line_);
        }
        return *std::move(name);
    }

    Content content(std::string_view field) const {
        if (field == kNoFile) {
            return std::nullopt;
        }
        if (!isContentHash(field)) {
            refuse(line_);
        }
        return std::string(field);
    }

    Entry& known(const std::string& name) {
        const auto place = places_.find({side_, name});
        if (place == places_.end()) {
            refuse(line_);
        }
        return entries_[place->second];
    }

    void begin(std::string name, Content before, Content after) {
        const auto [place, isFirst] = places_.try_emplace({side_, name}, entries_.size());
        const bool isNew = isFirst || isWishForName(name);
        if (isNew) {
            place->second = entries_.size(); // a wish whose name was never learnt stays beside it
            entries_.push_back({{side_, std::move(name), before, {}}, {before}});
        }
        Entry& entry = entries_[place->second];
        entry.history.push_back(after);
        entry.change.left = {std::move(after)};
        last_ = place->second;
        sureOfLast_ = false;
    }

    void makeUncertain(Entry& entry) {
        entry.change.left = entry.history;
        sureOfLast_ = true;
    }

    void become(const std::string& name, Content content, const std::string& newName) {
        if (name != newName) {
            giveName(name, newName);
        }
        Entry& entry = known(newName);
        entry.history.push_back(content);
        entry.change.left = {std::move(content)};
        sureOfLast_ = true;
    }

    /// What the store named was no entry of its own, only the wish for one.
    void giveName(const std::string& name, const std::string& newName) {
        Entry& wish = known(name);
        const std::size_t place = places_.at({side_, name});
        places_.erase({side_, name});
        const bool isNew = places_.try_emplace({side_, newName}, place).second;
        wish.history.resize(1);
        wish.change.name = isNew ? newName : std::string();
    }

    std::string_view line_;
    StoreSide side_ = StoreSide::phone;
    std::vector<Entry> entries_;
    std::map<std::pair<StoreSide, std::string>, std::size_t> places_;
    std::size_t last_ = 0;
    bool sureOfLast_ = true;
};

} // namespace

bool isWishForName(std::string_view name) {
    return name.ends_with("/new.vcf");
}

Journal::Journal(std::filesystem::path path)
    : path_(std::move(path)), file_(uninterrupted([this] {
          return ::open(path_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_APPEND | O_CLOEXEC,
                        kPrivate);
      })) {
    if (!file_.isOpen()) {
        throw failureOfErrno(errno, path_, u"cannot write");
    }
}

void Journal::change(StoreSide side, const std::string& name, const Content& before,
                     const Content& after) {
    add(std::string("C\t") + wordOf(side) + '\t' + fieldOf(before) + '\t' + fieldOf(after) + '\t' +
        escapedName(name));
}

void Journal::uncertain(StoreSide side, const std::string& name) {
    add(std::string("U\t") + wordOf(side) + '\t' + escapedName(name));
}

void Journal::became(StoreSide side, const std::string& name, const std::string& newName,
                     const std::string& content) {
    add(std::string("B\t") + wordOf(side) + '\t' + escapedName(name) + '\t' + content + '\t' +
        escapedName(newName));
}

void Journal::add(const std::string& line) {
    // One call a line: a process that is killed leaves whole lines, but for a torn last one.
    writeAll(file_.get(), line + '\n', path_);
}

void Journal::flush() {
    if (uninterrupted([this] { return ::fdatasync(file_.get()); }) != 0) {
        throw failureOfErrno(errno, path_, u"cannot write");
    }
}

std::vector<Change> changesOf(std::string_view journal, bool finished) {
    Reader reader;
    while (!journal.empty()) {
        const std::size_t end = journal.find('\n');
        if (end == std::string_view::npos) {
            if (finished) {
                refuse(journal);
            }
            break; // torn off: the change behind it was never begun
        }
        reader.take(journal.substr(0, end));
        journal.remove_prefix(end + 1);
    }
    if (!finished) {
        reader.endEarly();
    }
    return std::move(reader).result();
}

} // namespace tandolin::platform
