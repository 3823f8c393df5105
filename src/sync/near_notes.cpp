#include "sync/near_notes.h"

#include "core/state.h"
#include "organizer/calendar_reading.h"
#include "sync/autosync_frame.h"
#include "sync/calendar_rules.h"
#include "sync/loss_notes.h"

#include <algorithm>
#include <cstdlib>
#include <tuple>
#include <vector>

namespace tandolin {

namespace {

constexpr std::int64_t kDay = 86400;

/// Where an entry stands: a series at its beginning.
std::int64_t placeOf(const Table<Calendar>& row) {
    const Date anchor = row[cal::PIMRecPatt];
    const Date start = row[cal::Start];
    return (row[cal::IsRecurring] && anchor != Date{0} ? atTime(anchor, start) : start).seconds();
}

std::size_t hashOf(TextView text) {
    return std::hash<Text>{}(upper(text));
}

/// Texts that the rules call equal have equal keys. The phone's calls are compared in another
/// length than its other texts.
std::size_t textKey(const Table<Calendar>& phone) {
    const TextView text = phone[cal::Text];
    return hashOf(text.substr(0, phone[cal::Typ] == u"3"
                                     ? static_cast<std::size_t>(Phonecall_Len(text))
                                     : kPhoneTextLength));
}

std::size_t commonLength(TextView a, TextView b) {
    std::size_t length = 0;
    while (length < a.size() && length < b.size() &&
           sameText(a.substr(length, 1), b.substr(length, 1))) {
        ++length;
    }
    return length;
}

Text whyTwo(const Table<Calendar>& organizer, const Table<Calendar>& phone) {
    // Rows are looked for by their start before any rule is asked.
    const TextView rule =
        placeOf(organizer) == placeOf(phone) ? firstFailedRule(organizer, phone) : TextView();
    return Text(rule.empty() ? u"the starts differ" : rule);
}

Text described(TextView text, Date start, TextView file) {
    return u"\"" + Text(text) + u"\" of " + split(isoDateTime(start), u"T").front() + u' ' +
           isoTime(start).substr(0, 5) + (file.empty() ? u"" : u" (" + Text(file) + u')');
}

Text described(const Table<Calendar>& organizer) {
    const auto item = calendarFolderInUse().FactsOf(organizer[cal::UID]);
    return described(organizer[cal::Text], dateFromSeconds(placeOf(organizer)),
                     item ? TextView(item->File) : TextView());
}

void put(const Table<Calendar>& phone, Text reason) {
    app.run.nearMatches[{phone[cal::SubType], {}}] = {u"nearMatch", u"phone", phoneObject(phone),
                                                      Text(phone[cal::Text]), std::move(reason)};
}

/// The organizer-only rows of the run by place and by text.
class OrganizerRows {
public:
    struct Entry {
        std::int64_t place = 0;
        std::size_t text = 0;
        Bookmark row;
    };

    explicit OrganizerRows(Table<Calendar>& table) : table_(table) {}

    void add() {
        const TextView text = table_[cal::Text];
        const std::int64_t place = placeOf(table_);
        const Bookmark row = table_.bookmark();
        byPlace_.push_back({place, 0, row});
        if (text.empty()) {
            return;
        }
        byText_.push_back({place, hashOf(text.substr(0, kPhoneTextLength)), row});
        if (text.size() > kPhoneTextLength) {
            const auto length = static_cast<std::size_t>(Phonecall_Len(text));
            byText_.push_back({place, hashOf(text.substr(0, length)), row});
        }
    }

    void sort() {
        std::ranges::sort(byPlace_, {}, &Entry::place);
        std::ranges::sort(byText_, {}, [](const Entry& e) { return std::tuple(e.text, e.place); });
    }

    /// Puts the table on the best row for an entry of the phone; false where there is none.
    bool moveToBest(const Table<Calendar>& phone) {
        const Entry* sameText = nearestOfText(phone);
        const std::int64_t place = placeOf(phone);
        const std::int64_t away = sameText == nullptr ? 0 : std::abs(sameText->place - place);
        const Entry* best = sameText;
        if (sameText == nullptr || away >= kDay) {
            const Entry* samePlace = likestAt(phone, place);
            best = samePlace == nullptr ? sameText : samePlace;
        }
        if (best != nullptr) {
            table_.goTo(best->row);
        }
        return best != nullptr;
    }

private:
    [[nodiscard]] Text uidOf(const Entry& entry) {
        table_.goTo(entry.row);
        return Text(table_[cal::UID]);
    }

    /// Of the rows with the entry's text the nearest, the earlier of two.
    const Entry* nearestOfText(const Table<Calendar>& phone) {
        if (phone[cal::Text].empty()) {
            return nullptr;
        }
        const std::int64_t place = placeOf(phone);
        const auto same = std::ranges::equal_range(byText_, textKey(phone), {}, &Entry::text);
        auto behind = std::ranges::lower_bound(same, place, {}, &Entry::place);
        auto before = behind;
        // Almost always the first row on either side is the one: equal keys are equal texts.
        while (before != same.begin() || behind != same.end()) {
            const bool takeBefore =
                before != same.begin() &&
                (behind == same.end() || place - (before - 1)->place <= behind->place - place);
            const Entry& entry = takeBefore ? *--before : *behind++;
            table_.goTo(entry.row);
            if (textsAgree(table_, phone)) {
                return firstTwin(entry, same);
            }
        }
        return nullptr;
    }

    /// Rows with one text and one place differ in nothing but their identifier.
    template <class Range>
    const Entry* firstTwin(const Entry& entry, const Range& same) {
        const Entry* first = &entry;
        for (const Entry& twin : std::ranges::equal_range(same, entry.place, {}, &Entry::place)) {
            first = uidOf(twin) < uidOf(*first) ? &twin : first;
        }
        return first;
    }

    /// Of the rows at this place the one whose text begins like the entry's for longest.
    const Entry* likestAt(const Table<Calendar>& phone, std::int64_t place) {
        const Entry* best = nullptr;
        std::tuple<std::ptrdiff_t, Text, Text> bestRank;
        for (const Entry& entry : std::ranges::equal_range(byPlace_, place, {}, &Entry::place)) {
            table_.goTo(entry.row);
            const TextView text = table_[cal::Text];
            const auto common = static_cast<std::ptrdiff_t>(commonLength(text, phone[cal::Text]));
            std::tuple rank(-common, Text(text), Text(table_[cal::UID]));
            if (best == nullptr || rank < bestRank) {
                best = &entry;
                bestRank = std::move(rank);
            }
        }
        return best;
    }

    Table<Calendar>& table_;
    std::vector<Entry> byPlace_;
    std::vector<Entry> byText_;
};

bool isWithin(const Table<Calendar>& row, DateFrame frame) {
    return row[cal::StartDate] >= frame.from && row[cal::StartDate] <= frame.to &&
           EntryTypeCheck(app.settings.SyncTermine, row);
}

/// Mode 3 takes the phone whole, all others the frame and the kinds of the settings.
template <class Each>
void eachRowOf(Table<Calendar>& table, std::int32_t entryType, Each each) {
    const bool all = app.settings.SyncTyp == 3;
    const DateFrame frame = all ? DateFrame{} : frameOfWalk();
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        if (table[cal::EntryType] == entryType && (all || isWithin(table, frame))) {
            each();
        }
    }
}

} // namespace

void collectNearMatches(Table<Calendar>& table) {
    const KeepPosition keep(table);
    OrganizerRows organizerRows(table);
    eachRowOf(table, CONST_ENTRY_vCAL_PIM, [&] { organizerRows.add(); });
    organizerRows.sort();
    Table<Calendar> phone;
    phone.AddNew();
    eachRowOf(table, CONST_ENTRY_vCAL_MOBILE, [&] {
        CopyFromRecordset(phone, table);
        const KeepPosition keepRow(table);
        if (organizerRows.moveToBest(phone)) {
            put(phone, u"the organizer's " + described(table) + u" stays another entry: " +
                           whyTwo(table, phone));
        }
    });
}

void noteHeldBack(const Table<Calendar>& phone, const Table<Calendar>& organizer) {
    put(phone, u"not copied, it is the organizer's " + described(organizer) +
                   u" as the phone holds it; they stay two: " + whyTwo(organizer, phone));
}

void noteHeldBack(const Table<Calendar>& phone, const AppointmentFacts& organizer) {
    put(phone, u"not copied, it is the organizer's " +
                   described(organizer.Subject, organizer.Start, organizer.File) +
                   u" as the phone holds it; they stay two: the texts differ");
}

void forgetNearMatch(const Table<Calendar>& phone) {
    app.run.nearMatches.erase({phone[cal::SubType], {}});
}

void tellNearMatches() {
    for (auto& [number, note] : app.run.nearMatches) {
        app.run.notes.push_back(std::move(note));
    }
    app.run.nearMatches.clear();
}

} // namespace tandolin
