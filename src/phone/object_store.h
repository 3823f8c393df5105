#pragma once

// The phone's object store as the program uses it: file names, texts and counters over the phone
// server's four operations. Every procedure reports its failures itself under the module "PXD" and
// answers false, or -1 for a count.
//
// The server object is handed over as the variable that owns it, since a report of a lost link
// releases it in the middle of a longer action: what follows then finds it empty.

#include "core/failure.h"
#include "core/ports/phone_server.h"
#include "core/state.h"

#include <memory>
#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace tandolin {

/// The run's server object, created where there is none. Throws the Failure of its creation.
std::unique_ptr<PhoneServer>& phoneServer();

/// Makes sure that the server object can be created; failing that, a report of -1990 and false.
bool PXDTest(std::unique_ptr<PhoneServer>& server);

/// Runs `body`; a failure leaves with the name of the object that it is about.
template <class Body>
void aboutFile(TextView fileName, Body&& body) {
    try {
        std::forward<Body>(body)();
    } catch (...) {
        Failure failure = currentFailure();
        if (failure.File.empty()) {
            failure.File = fileName;
        }
        throw Failure(std::move(failure));
    }
}

/// The text of one object; empty and false when it is absent or cannot be read. `codePage` takes
/// whether its bytes were no UTF-8 and were read by the code page.
bool GetSingleMobileEntry(std::unique_ptr<PhoneServer>& server, TextView path, Text& text,
                          TextView fileName, bool* codePage = nullptr);

/// The same for a caller with a trap of its own: `text` is set when the result is true, an absent
/// file is false, every failure is thrown with the file's name. `server` is not empty.
bool readObjectText(PhoneServer& server, TextView path, TextView fileName, Text& text,
                    bool* codePage = nullptr);

/// The names of the files that match the pattern; their number, or -1 for an empty listing as for
/// a failed one. `names` keeps its content then.
int DirMobileEntryFiles(std::unique_ptr<PhoneServer>& server, TextView path, TextView pattern,
                        std::vector<Text>& names);

/// Stores an object. A contact, and a calendar entry whose row is marked as changed (the row that
/// `RSCalendar` stands on), is removed first; if the store then fails its old bytes are put back.
/// `path` ends in a backslash.
bool PXDWriteStream(std::unique_ptr<PhoneServer>& server, TextView text, TextView path,
                    TextView fileName, Date timestamp);

/// The numbers of the calendar objects on the phone, from one listing. Nothing when it failed; an
/// empty calendar is an empty set. Asks the phone whether or not it counts as connected.
std::optional<std::set<int>> calendarNumbersOnPhone();

/// The text without every character that occurs in `unwanted`.
Text Cleanit(TextView text, TextView unwanted);

/// True when the phone is reached through the object store. Opens nothing.
bool InitComm();

/// Ends what `InitComm` began, which is nothing.
void DeinitComm();

} // namespace tandolin
