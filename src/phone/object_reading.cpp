#include "phone/object_reading.h"

#include "core/state.h"
#include "core/trap.h"
#include "phone/object_store.h"

#include <limits>

namespace tandolin {

namespace {

constexpr int kMostEntries = std::numeric_limits<std::int16_t>::max();

const Text& directoryOf(const ObjectKind& kind) {
    const MobilePaths& paths = app.phone.GlobalMobilePaths;
    return kind.store == StoreDirectory::calendar ? paths.calendarDirectory
                                                  : paths.phoneBookDirectory;
}

std::int16_t totalRecords(const ObjectKind& kind) {
    return kind.store == StoreDirectory::calendar ? app.phone.vCalTotalRecords
                                                  : app.phone.vCardTotalRecords;
}

void reportObject(Place place, TextView fileName, TextView what) {
    Failure failure(failure_number::kServerFailed, Text(what));
    failure.File = fileName;
    ReportError(failure, place, fileName);
}

bool isCutShort(const ObjectKind& kind, TextView object) {
    return holdsText(object, kind.begin) && !holdsText(object, kind.end);
}

/// One object; false ends the read. An empty object is passed over, and the count then tells.
bool readOne(const ObjectKind& kind, Place place, TextView fileName, const TakeObject& take) {
    Text object;
    bool codePage = false;
    const std::int16_t failuresBefore = app.core.GlobalProgramFehler;
    if (!GetSingleMobileEntry(app.phone.PXDServer, directoryOf(kind), object, fileName,
                              &codePage)) {
        if (app.core.GlobalProgramFehler == failuresBefore) {
            // an absent file alone is no failure
            reportObject(place, fileName, u"The object is gone");
        }
        return false;
    }
    if (object.empty()) {
        reportObject(place, fileName, u"The object is empty");
        return true;
    }
    if (object.find(u':') == Text::npos) {
        // The reader passes over what it does not know, and would make an empty entry of this.
        reportObject(place, fileName, u"The file holds no object");
        return false;
    }
    if (isCutShort(kind, object)) {
        // The reader takes what is there; what is missing would look like another entry.
        reportObject(place, fileName, u"The object has no end: it was not read whole");
        return false;
    }
    return take(object, fileName, codePage);
}

void readListed(const ObjectKind& kind, Place place, const std::vector<Text>& names,
                const TakeObject& take, ObjectsRead& read) {
    const Text count = decimal(read.listed);
    for (int i = 0; i < read.listed; ++i) {
        read.cancelled = !app.status.GetState();
        if (read.cancelled) {
            return;
        }
        const TextView name = names[static_cast<std::size_t>(i)];
        if (kind.checksNames && !holdsText(name, kind.extension)) {
            reportObject(place, name,
                         u"The phone lists a file that is none of its " + Text(kind.entries));
            continue; // the count then fails the read
        }
        app.status.SetText(tr(ids::kSearchEntry) + u" " + decimal(i + 1) + Text(kind.between) +
                           count);
        if (!readOne(kind, place, name, take)) {
            return;
        }
    }
    read.complete = entryCount(kind) == read.listed;
}

} // namespace

std::int16_t& entryCount(const ObjectKind& kind) {
    return kind.store == StoreDirectory::calendar ? app.phone.vCalEntryCount
                                                  : app.phone.vCardEntryCount;
}

ObjectsRead readObjects(const ObjectKind& kind, Place place, const TakeObject& take) {
    entryCount(kind) = 0;
    return trapped(place, ObjectsRead{}, [&](ObjectsRead& read) {
        std::vector<Text> names;
        const std::int32_t failuresBefore = app.run.failures;
        read.listed = DirMobileEntryFiles(app.phone.PXDServer, directoryOf(kind),
                                          u"*" + Text(kind.extension), names);
        read.listingFailed = app.run.failures != failuresBefore;
        if (read.listed > kMostEntries) {
            throw overflowFailure();
        }
        if (read.listed != -1) {
            readListed(kind, place, names, take, read);
        }
    });
}

bool emptyStoreAccepted(const ObjectKind& kind, Place place, const ObjectsRead& read) {
    if (read.listed != -1) {
        return false;
    }
    if (app.phone.acceptEmptyPhone) {
        return totalRecordsNow(kind.store) == 0;
    }
    if (totalRecords(kind) == 0 && !read.listingFailed) {
        Failure failure(failure_number::kServerFailed,
                        u"The phone holds no " + Text(kind.entries) +
                            u". If that is right, run again with --accept-empty-phone");
        ReportError(failure, place);
    }
    return false;
}

} // namespace tandolin
