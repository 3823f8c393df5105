#include "phone/object_store.h"

#include "core/trap.h"
#include "formats/ansi.h"
#include "store/tables.h"

#include <algorithm>
#include <iterator>
#include <limits>

namespace tandolin {

namespace {

constexpr TextView kModule = u"PXD";
constexpr TextView kLineBreak = u"\r\n";

Text fullPath(TextView path, TextView fileName) {
    Text full(path);
    if (!full.ends_with(u'\\')) {
        full += u'\\';
    }
    return full += fileName;
}

/// Wanted: the row is the one that the table stands on, whichever entry is being sent.
bool currentRowIsChanged() {
    const Table<Calendar>& table = tables.RSCalendar;
    if (table.isEmpty() || table.atEnd()) {
        return false;
    }
    try {
        return table[cal::IsChanged];
    } catch (const Failure& failure) {
        if (failure.Number == failure_number::kNoItem) {
            return false; // it stands on a deleted row
        }
        throw;
    }
}

/// The phone has no overwrite: what is to be replaced is removed first.
bool isRemovedFirst(TextView fileName) {
    return holdsText(fileName, u"vcs") ? currentRowIsChanged() : !sameText(fileName, u"new.vcf");
}

void replaceObject(PhoneServer& server, const Text& full, TextView fileName, TextView text,
                   Date timestamp) {
    // Before the removal: a text that has no bytes must not cost the old object.
    std::string bytes = bytesOfText(text);
    const bool removedFirst = isRemovedFirst(fileName);
    bool removed = false;
    auto failure = attempt([&] {
        if (removedFirst) {
            server.PXDDelete(full);
            removed = true;
        }
        server.PXDWrite(full, CreateStream(std::move(bytes), timestamp, timestamp, timestamp), 0);
    });
    if (!failure) {
        return;
    }
    // A link that dies between the two calls must not cost the entry. One that was removed on
    // purpose, and whose number a new entry got, stays away.
    bool restored = false;
    if (removedFirst) {
        static_cast<void>(attempt([&] { restored = server.restoreDeleted(full); }));
    }
    if (removed && !restored) {
        failure->Description += u" (the former object is removed and could not be put back)";
    }
    throw Failure(*failure);
}

} // namespace

std::unique_ptr<PhoneServer>& phoneServer() {
    if (!app.phone.PXDServer && app.ports.makePhoneServer) {
        app.phone.PXDServer = app.ports.makePhoneServer();
    }
    return app.phone.PXDServer;
}

bool PXDTest(std::unique_ptr<PhoneServer>& server) {
    static constexpr Place here{kModule, u"PXDTest"};
    return trapped(here, false, [&](bool& created) {
        const std::optional<Failure> failure = attempt([&] {
            if (!server && app.ports.makePhoneServer) {
                server = app.ports.makePhoneServer();
            }
        });
        if (failure || !server) {
            Text text = failure ? failure->Description + Text(kLineBreak) : Text();
            text += tr(ids::kNoPhoneServer);
            text += kLineBreak;
            text += tr(ids::kInstallPhoneServer);
            throw Failure(failure_number::kNoPhoneServer, std::move(text), u"PXDTEST");
        }
        created = true;
    });
}

bool readObjectText(PhoneServer& server, TextView path, TextView fileName, Text& text,
                    bool* codePage) {
    bool found = false;
    aboutFile(fileName, [&] {
        PXDStream stream = server.PXDRead(fullPath(path, fileName));
        if (!stream.found) {
            return; // before every new object its place is looked at, so absence must cost little
        }
        const std::string bytes = CreateArray(std::move(stream));
        text = textOfBytes(bytes);
        if (codePage != nullptr) {
            *codePage = !isUtf8(bytes);
        }
        found = true;
    });
    return found;
}

bool GetSingleMobileEntry(std::unique_ptr<PhoneServer>& server, TextView path, Text& text,
                          TextView fileName, bool* codePage) {
    static constexpr Place here{kModule, u"GetSingleMobileEntry"};
    return trapped(
        here, false,
        [&](bool& read) {
            text.clear();
            read = server && readObjectText(*server, path, fileName, text, codePage);
        },
        fileName);
}

int DirMobileEntryFiles(std::unique_ptr<PhoneServer>& server, TextView path, TextView pattern,
                        std::vector<Text>& names) {
    static constexpr Place here{kModule, u"DirMobileEntryFiles"};
    // Wanted: nothing found, no server and a failure are one and the same to the caller.
    return trapped(here, -1, [&](int& count) {
        if (!server) {
            return;
        }
        std::vector<Text> found = server->PXDList(fullPath(path, pattern), 0);
        if (!found.empty()) {
            names = std::move(found);
            count = static_cast<int>(names.size());
        }
    });
}

bool PXDWriteStream(std::unique_ptr<PhoneServer>& server, TextView text, TextView path,
                    TextView fileName, Date timestamp) {
    static constexpr Place here{kModule, u"PXDWriteStream"};
    return trapped(here, false, [&](bool& written) {
        if (!server) {
            return;
        }
        aboutFile(fileName, [&] {
            replaceObject(*server, Text(path) + Text(fileName), fileName, text, timestamp);
        });
        written = true;
    });
}

std::optional<std::set<int>> calendarNumbersOnPhone() {
    static constexpr Place here{kModule, u"calendarNumbersOnPhone"};
    using Numbers = std::optional<std::set<int>>;
    return trapped(here, Numbers(), [&](Numbers& result) {
        if (!phoneServer()) {
            return;
        }
        std::set<int> numbers;
        for (const Text& name : app.phone.PXDServer->PXDList(
                 fullPath(app.phone.GlobalMobilePaths.calendarDirectory, u"*.vcs"), 0)) {
            const auto number = wholeNumber(TextView(name).substr(0, name.find(u'.')));
            if (number && *number >= 0 && *number <= std::numeric_limits<int>::max()) {
                numbers.insert(static_cast<int>(*number));
            }
        }
        result = std::move(numbers);
    });
}

Text Cleanit(TextView text, TextView unwanted) {
    static constexpr Place here{u"Globals", u"Cleanit"};
    return trapped(here, Text(), [&](Text& cleaned) {
        std::ranges::copy_if(text, std::back_inserter(cleaned),
                             [&](char16_t c) { return unwanted.find(c) == TextView::npos; });
    });
}

bool InitComm() {
    return static_cast<bool>(app.core.GlobalUsePXD);
}

void DeinitComm() {}

} // namespace tandolin
