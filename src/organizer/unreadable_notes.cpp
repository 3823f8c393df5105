#include "organizer/unreadable_notes.h"

#include "core/state.h"

#include <algorithm>

namespace tandolin {

namespace {

bool alreadyNoted(TextView file) {
    return std::ranges::any_of(app.run.notes, [file](const Note& note) {
        return note.kind == u"unreadable" && note.file == file;
    });
}

} // namespace

void noteUnreadable(Place place) {
    for (const UnreadableItem& item : app.organizer.MOL->unreadable()) {
        if (alreadyNoted(item.File)) {
            continue;
        }
        app.run.notes.push_back({u"unreadable", u"organizer", item.File, u"", item.Reason});
        Failure failure(failure_number::kTypeMismatch,
                        item.File + u" does not parse and was left alone: " + item.Reason);
        failure.File = item.File;
        ReportError(failure, place);
    }
}

} // namespace tandolin
