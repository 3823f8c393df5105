#pragma once

// Both sides of a run as files, and who is told of every change to them. Copies before the first
// write and the way back rest on these two; the logic knows of neither.

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tandolin {

enum class StoreSide { phone, organizer };

/// The kinds of entries that a run works on.
struct EntryKinds {
    bool calendar = false;
    bool contacts = false;
};

/// One side as files under names with slashes ("telecom/cal/17.vcs", "calendar/x.ics"), whatever it
/// is made of. Every call reports by throwing a Failure; a name that leaves the side is refused.
class StoreFiles {
public:
    virtual ~StoreFiles() = default;
    /// The names of all entries of these kinds, one file each.
    virtual std::vector<std::string> entries(EntryKinds kinds) = 0;
    /// The bytes of an entry or status file as they are stored; nothing when it is not there.
    virtual std::optional<std::string> read(const std::string& name) = 0;
    /// Stores an entry under its name, replacing atomically.
    virtual void write(const std::string& name, std::string_view bytes) = 0;
    /// Removes an entry; an absent one is a success.
    virtual void remove(const std::string& name) = 0;
    /// What was written is on disk afterwards.
    virtual void flush() = 0;

    /// The names of what a store keeps about its entries by itself, such as counters.
    virtual std::vector<std::string> statusFiles() { return {}; }

    /// Takes a status file back as it was, nothing when there was none. Called after `flush` for a
    /// side whose entries are all back. A store that does not let them be written ignores it.
    virtual void restoreStatus(const std::string& /*name*/,
                               const std::optional<std::string>& /*bytes*/) {}
};

/// Is told before an entry changes, and afterwards what became of it.
class ChangeObserver {
public:
    virtual ~ChangeObserver() = default;
    /// The entry is about to hold `after`; nothing: it is about to be removed. By throwing a
    /// Failure the observer forbids the change.
    virtual void beforeChange(StoreSide side, const std::string& name,
                              std::optional<std::string_view> after) = 0;
    /// The change failed, or was taken back: the entry may hold either content.
    virtual void changeUncertain(StoreSide side, const std::string& name) = 0;
    /// The store chose another name for an entry, or keeps another content of it than was sent.
    virtual void changeBecame(StoreSide side, const std::string& name, const std::string& newName,
                              std::string_view bytes) = 0;
};

/// Makes a change with the observer told of it; without an observer it is only made.
template <class Change>
void observed(ChangeObserver* observer, StoreSide side, const std::string& name,
              std::optional<std::string_view> after, Change&& change) {
    if (observer == nullptr) {
        std::forward<Change>(change)();
        return;
    }
    observer->beforeChange(side, name, after);
    try {
        std::forward<Change>(change)();
    } catch (...) {
        observer->changeUncertain(side, name);
        throw;
    }
}

} // namespace tandolin
