#include "platform/organizer_folder/calendar_index.h"

#include <algorithm>
#include <iterator>

namespace tandolin::ical {

namespace {

// How far the clock may be changed at a time; a start in the gap moves by as much.
constexpr Seconds kGap = 2 * kHour;
// Ranges from here on hold every time of day.
constexpr Seconds kAllTimes = 18 * kHour;
// What is told of one series in one search.
constexpr std::uint32_t kMostOccurrences = 100'000;

Seconds timeOfDay(Seconds wall) {
    return wall - floorDiv(wall, kDay) * kDay;
}

} // namespace

void CalendarIndex::clear() {
    places_.clear();
    fixed_.clear();
    timetables_.clear();
    otherSeries_.clear();
    seriesByDay_.clear();
    items_.clear();
}

template <class Each>
void CalendarIndex::eachFixed(std::uint32_t place, Each each) const {
    const StoredItem& item = items_[place];
    if (!item.series || item.series->startsItself) {
        each(Fixed{item.event.start, place, 0});
    }
    if (!item.series) {
        return;
    }
    std::int32_t part = 0;
    for (const EventFacts& event : item.series->overrides) {
        each(Fixed{event.start, place, ++part});
    }
    part = 0;
    for (const Stamp& extra : item.series->extraStarts) {
        each(Fixed{localSpan(zones_, extra, item.series->length).start, place, --part});
    }
}

void CalendarIndex::add(ReadItem item, std::uint32_t file) {
    const auto place = static_cast<std::uint32_t>(items_.size());
    items_.push_back(
        {std::move(item.id), std::move(item.event), std::move(item.series), file, false});
    const StoredItem& stored = items_.back();
    places_.emplace(stored.id, place);
    eachFixed(place, [this](const Fixed& fixed) { fixed_.insert(fixed); });
    if (stored.series && !stored.series->rules.empty()) {
        if (stored.series->keepsTimeOfDay()) {
            timetableOf(*stored.series).series.emplace(timeOfDay(stored.series->start.wall), place);
        } else {
            otherSeries_.insert(place);
        }
    }
    if (stored.series) {
        seriesByDay_.emplace(stored.series->pattern.PatternStartDate.seconds(), place);
    }
}

void CalendarIndex::remove(std::string_view id) {
    const auto found = places_.find(id);
    if (found == places_.end()) {
        return;
    }
    const std::uint32_t place = found->second;
    eachFixed(place, [this](const Fixed& fixed) { fixed_.erase(fixed); });
    StoredItem& item = items_[place];
    if (item.series) {
        timetableOf(*item.series).series.erase({timeOfDay(item.series->start.wall), place});
        otherSeries_.erase(place);
        seriesByDay_.erase({item.series->pattern.PatternStartDate.seconds(), place});
    }
    places_.erase(found);
    item = StoredItem{};
    item.removed = true;
}

std::optional<std::uint32_t> CalendarIndex::find(std::string_view id) const {
    const auto found = places_.find(id);
    return found == places_.end() ? std::nullopt : std::optional(found->second);
}

std::vector<std::uint32_t> CalendarIndex::seriesOf(Date day) const {
    std::vector<std::uint32_t> result;
    for (auto it = seriesByDay_.lower_bound({day.seconds(), 0});
         it != seriesByDay_.end() && it->first == day.seconds(); ++it) {
        result.push_back(it->second);
    }
    return result;
}

std::vector<CalendarIndex::Fixed> CalendarIndex::fixedWithin(Seconds from, Seconds to) const {
    std::vector<Fixed> result;
    for (auto it = fixed_.lower_bound(Fixed{from, 0, INT32_MIN});
         it != fixed_.end() && it->start <= to; ++it) {
        result.push_back(*it);
    }
    return result;
}

CalendarIndex::Timetable& CalendarIndex::timetableOf(const Series& series) {
    const TimeZone* zone = series.start.isDate ? &zones_.local() : series.start.zone;
    const auto known = std::ranges::find(timetables_, zone, &Timetable::zone);
    return known == timetables_.end() ? timetables_.emplace_back(Timetable{zone, {}}) : *known;
}

std::vector<std::uint32_t> CalendarIndex::seriesFor(Seconds from, Seconds to) const {
    if (to < from) {
        return {};
    }
    std::vector<std::uint32_t> result(otherSeries_.begin(), otherSeries_.end());
    for (const Timetable& table : timetables_) {
        lookUp(table, from, to, result);
    }
    return result;
}

void CalendarIndex::lookUp(const Timetable& table, Seconds from, Seconds to,
                           std::vector<std::uint32_t>& result) const {
    const auto take = [&](Seconds low, Seconds high) {
        for (auto it = table.series.lower_bound({low, 0});
             it != table.series.end() && it->first <= high; ++it) {
            result.push_back(it->second);
        }
    };
    const Seconds fromUtc = zones_.local().utcOf(from);
    Seconds low = table.zone->wallOf(fromUtc);
    Seconds high = table.zone->wallOf(zones_.local().utcOf(to));
    if (high - low >= kAllTimes) {
        take(0, kDay);
        return;
    }
    // Near a change of either clock a start may stand an hour beside its usual time.
    const auto changes = [&](const TimeZone& zone) {
        return zone.offsetAt(fromUtc - kDay) != zone.offsetAt(fromUtc + 2 * kDay);
    };
    if (changes(zones_.local()) || changes(*table.zone)) {
        low -= kGap;
        high += kGap;
    }
    high = timeOfDay(low) + (high - low);
    low = timeOfDay(low);
    take(low, std::min(high, kDay));
    if (high >= kDay) {
        take(0, std::min(high - kDay, low - 1));
    }
}

Search::Search(CalendarIndex& index, const Zones& zones, Seconds from, Seconds to, bool seriesToo)
    : index_(index), zones_(zones), from_(from), to_(to), fixed_(index.fixedWithin(from, to)) {
    std::ranges::sort(fixed_, [this](const auto& a, const auto& b) {
        return later(b.start, b.item, a.start, a.item);
    });
    if (!seriesToo) {
        return;
    }
    for (const std::uint32_t item : index.seriesFor(from, to)) {
        open(item);
    }
}

bool Search::later(Seconds startA, std::uint32_t a, Seconds startB, std::uint32_t b) const {
    return startA != startB ? startA > startB
                            : a != b && index_.items()[a].id > index_.items()[b].id;
}

void Search::push(const Cursor& cursor) {
    cursors_.push_back(cursor);
    std::ranges::push_heap(cursors_, [this](const Cursor& a, const Cursor& b) {
        return later(a.start, a.item, b.start, b.item);
    });
}

Search::Cursor Search::pop() {
    std::ranges::pop_heap(cursors_, [this](const Cursor& a, const Cursor& b) {
        return later(a.start, a.item, b.start, b.item);
    });
    const Cursor cursor = cursors_.back();
    cursors_.pop_back();
    return cursor;
}

void Search::open(std::uint32_t item) {
    const Series& series = *index_.items()[item].series;
    // The search begins early enough for a start that the change of clocks moves into the range.
    const bool sameClock = series.start.isDate || series.start.zone == &zones_.local();
    const Seconds wall = sameClock ? from_ : series.start.zone->wallOf(zones_.local().utcOf(from_));
    Cursor cursor;
    cursor.item = item;
    if (advance(cursor, wall - (series.start.isDate ? 0 : kGap))) {
        push(cursor);
    }
}

bool Search::advance(Cursor& cursor, Seconds wall) {
    StoredItem& item = index_.items()[cursor.item];
    if (item.removed || !item.series || cursor.made >= kMostOccurrences) {
        return false;
    }
    Series& series = *item.series;
    const bool sameClock = series.start.isDate || series.start.zone == &zones_.local();
    const Seconds limit =
        (sameClock ? to_ : series.start.zone->wallOf(zones_.local().utcOf(to_))) + kGap;
    for (auto next = series.atOrAfter(wall, limit); next;
         next = series.atOrAfter(*next + 1, limit)) {
        Stamp start = series.start;
        start.wall = *next;
        const Span span = localSpan(zones_, start, series.length);
        if (span.start >= from_) {
            cursor.start = span.start;
            cursor.end = span.end;
            cursor.wall = *next;
            ++cursor.made;
            return span.start <= to_;
        }
    }
    return false;
}

Search::Hit Search::hitOf(const CalendarIndex::Fixed& fixed) const {
    const StoredItem& item = index_.items()[fixed.item];
    Hit hit{fixed.item, fixed.part, {}};
    if (fixed.part == 0) {
        hit.span = {item.event.start, item.event.end};
    } else if (fixed.part > 0) {
        const EventFacts& event = item.series->overrides[static_cast<std::size_t>(fixed.part) - 1];
        hit.span = {event.start, event.end};
    } else {
        const Stamp& extra = item.series->extraStarts[static_cast<std::size_t>(-fixed.part) - 1];
        hit.span = localSpan(zones_, extra, item.series->length);
    }
    return hit;
}

std::optional<Search::Hit> Search::next() {
    // A cursor is moved on only when it is asked again: until then `skipItem` may drop it.
    if (current_ && advance(*current_, current_->wall + 1)) {
        push(*current_);
    }
    current_.reset();
    // What was removed or skipped meanwhile is passed over.
    while (nextFixed_ < fixed_.size() && (index_.items()[fixed_[nextFixed_].item].removed ||
                                          skipped_.contains(fixed_[nextFixed_].item))) {
        ++nextFixed_;
    }
    while (!cursors_.empty() && (index_.items()[cursors_.front().item].removed ||
                                 skipped_.contains(cursors_.front().item))) {
        pop();
    }
    const bool fixedLeft = nextFixed_ < fixed_.size();
    if (!fixedLeft && cursors_.empty()) {
        return std::nullopt;
    }
    const bool takeFixed =
        fixedLeft && (cursors_.empty() || !later(fixed_[nextFixed_].start, fixed_[nextFixed_].item,
                                                 cursors_.front().start, cursors_.front().item));
    if (takeFixed) {
        const Hit hit = hitOf(fixed_[nextFixed_++]);
        last_ = hit.item;
        return hit;
    }
    current_ = pop();
    last_ = current_->item;
    return Hit{current_->item, 0, {current_->start, current_->end}};
}

void Search::skipItem() {
    if (last_) {
        skipped_.insert(*last_);
        current_.reset();
    }
}

} // namespace tandolin::ical
