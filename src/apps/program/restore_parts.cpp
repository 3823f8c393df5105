#include "apps/program/restore_parts.h"

#include "core/text.h"

#include <algorithm>
#include <set>

namespace tandolin::program {

namespace {

std::string lastPart(const std::string& name) {
    return name.substr(name.rfind('/') + 1);
}

/// The folder of a kind within the phone's names.
const char* folderOf(EntryKinds kind) {
    return kind.calendar ? "/cal/" : "/pb/";
}

/// The lines as they are meant: ended by LF, those that go on behind a blank put together.
std::string unfolded(std::string_view bytes) {
    std::string text;
    for (const char c : bytes) {
        if ((c == ' ' || c == '\t') && text.ends_with('\n')) {
            text.pop_back();
        } else if (c != '\r') {
            text += c;
        }
    }
    return text;
}

bool holdsAsBefore(StoreSide side, StoreFiles& files, const platform::StoredRun& run,
                   EntryKinds kind) {
    const auto present = files.entries(kind);
    const EntryKinds& copied = run.manifest.kinds;
    if ((kind.calendar && !copied.calendar) || (kind.contacts && !copied.contacts)) {
        return present.empty();
    }
    std::set<std::string> before;
    for (const std::string& name : run.copiedNames(side)) {
        if (name.find(folderOf(kind)) != std::string::npos && lastPart(name) != "info.log") {
            before.insert(name);
        }
    }
    return before == std::set<std::string>(present.begin(), present.end());
}

} // namespace

bool namesEntry(const std::string& only) {
    const Text text = fromUtf8(only);
    return !text.empty() && !sameText(text, u"phone") && !sameText(text, u"organizer");
}

bool bearsName(const platform::Change& change, const std::string& name) {
    const std::string file = lastPart(change.name);
    if (change.side == StoreSide::phone) {
        // A phone knows one object of a number, however its ending is written.
        return lowerAscii(change.name) == lowerAscii(name) || lowerAscii(file) == lowerAscii(name);
    }
    return change.name == name || file == name || file.substr(0, file.rfind('.')) == name;
}

bool holdsLine(std::string_view bytes, const std::string& line) {
    const std::string text = unfolded(bytes);
    for (std::size_t at = text.find(line); at != std::string::npos; at = text.find(line, at + 1)) {
        const std::size_t end = at + line.size();
        if ((at == 0 || text[at - 1] == '\n') && (end == text.size() || text[end] == '\n')) {
            return true;
        }
    }
    return false;
}

void restoreStatusFiles(StoreSide side, StoreFiles& files, const platform::StoredRun& run) {
    const std::vector<std::string> status = files.statusFiles();
    if (status.empty()) {
        return;
    }
    for (const EntryKinds kind : {EntryKinds{true, false}, EntryKinds{false, true}}) {
        if (!holdsAsBefore(side, files, run, kind)) {
            continue;
        }
        for (const std::string& name : status) {
            const bool ofWholeStore = std::ranges::count(name, '/') == 1;
            if (ofWholeStore || name.find(folderOf(kind)) != std::string::npos) {
                files.restoreStatus(name, run.copied(side, name));
            }
        }
    }
}

} // namespace tandolin::program
