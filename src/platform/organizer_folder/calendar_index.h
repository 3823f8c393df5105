#pragma once

// All appointments of the folder in memory, found by identifier and by start.
//
// A first run asks for a small range once per phone entry. Starts that stand alone (single entries,
// extra and moved occurrences) are kept in order; the rules of series are asked, and those with one
// time of day only when the range holds that time.

#include "platform/organizer_folder/occurrences.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace tandolin::ical {

/// One appointment as the index keeps it. A removed one stays in its place, without identifier.
struct StoredItem {
    std::string id;
    EventFacts event;
    std::unique_ptr<Series> series;
    std::uint32_t file = 0;
    bool removed = false;
};

class CalendarIndex {
public:
    explicit CalendarIndex(const Zones& zones) : zones_(zones) {}

    void clear();

    /// About as many items will be added.
    void reserve(std::size_t count) { places_.reserve(count); }

    /// Adds an appointment; its identifier must be new.
    void add(ReadItem item, std::uint32_t file);
    void remove(std::string_view id);
    /// The place of an identifier in `items`.
    [[nodiscard]] std::optional<std::uint32_t> find(std::string_view id) const;

    [[nodiscard]] const std::deque<StoredItem>& items() const { return items_; }

    [[nodiscard]] std::deque<StoredItem>& items() { return items_; }

    /// The series whose pattern begins on this day.
    [[nodiscard]] std::vector<std::uint32_t> seriesOf(Date day) const;

    /// A start that no rule gives.
    struct Fixed {
        Seconds start = 0;
        std::uint32_t item = 0;
        /// 0 the item itself, n its nth override, -n its nth extra start.
        std::int32_t part = 0;

        friend auto operator<=>(const Fixed&, const Fixed&) = default;
    };

    /// All fixed starts within the range, both ends included.
    [[nodiscard]] std::vector<Fixed> fixedWithin(Seconds from, Seconds to) const;
    /// The series whose rule may give a start within the range.
    [[nodiscard]] std::vector<std::uint32_t> seriesFor(Seconds from, Seconds to) const;

private:
    /// Series of one clock by their time of day.
    struct Timetable {
        const TimeZone* zone = nullptr;
        std::set<std::pair<Seconds, std::uint32_t>> series;
    };

    template <class Each>
    void eachFixed(std::uint32_t place, Each each) const;
    Timetable& timetableOf(const Series& series);
    void lookUp(const Timetable& table, Seconds from, Seconds to,
                std::vector<std::uint32_t>& result) const;

    const Zones& zones_;
    std::deque<StoredItem> items_; ///< a deque, so that the keys of `places_` stay where they are
    std::unordered_map<std::string_view, std::uint32_t> places_;
    std::set<Fixed> fixed_;
    std::vector<Timetable> timetables_;
    std::set<std::uint32_t> otherSeries_;
    std::set<std::pair<std::int64_t, std::uint32_t>> seriesByDay_; ///< first day, place
};

/// One search in order of start, then identifier. Starts of series are made while it goes on, so
/// that a rule without an end costs nothing for a range of a century.
class Search {
public:
    Search(CalendarIndex& index, const Zones& zones, Seconds from, Seconds to, bool seriesToo);

    struct Hit {
        std::uint32_t item = 0;
        std::int32_t part = 0; ///< as in `Fixed`
        Span span;
    };

    std::optional<Hit> next();
    /// Leaves out what is still to come of the item found last.
    void skipItem();

private:
    struct Cursor {
        Seconds start = 0; ///< local
        Seconds end = 0;
        Seconds wall = 0; ///< in the series' zone
        std::uint32_t item = 0;
        std::uint32_t made = 0;
    };

    void open(std::uint32_t item);
    bool advance(Cursor& cursor, Seconds wall);
    [[nodiscard]] bool later(Seconds startA, std::uint32_t a, Seconds startB,
                             std::uint32_t b) const;
    [[nodiscard]] Hit hitOf(const CalendarIndex::Fixed& fixed) const;
    void push(const Cursor& cursor);
    Cursor pop();

    CalendarIndex& index_;
    const Zones& zones_;
    Seconds from_;
    Seconds to_;
    std::vector<CalendarIndex::Fixed> fixed_;
    std::size_t nextFixed_ = 0;
    std::vector<Cursor> cursors_; ///< a heap, the earliest on top
    std::optional<Cursor> current_;
    std::optional<std::uint32_t> last_;
    std::set<std::uint32_t> skipped_;
};

} // namespace tandolin::ical
