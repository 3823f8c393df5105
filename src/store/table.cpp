#include "store/table.h"

#include <algorithm>

namespace tandolin {

bool TableCore::shown(std::size_t slot) const {
    return rows_[slot].exists() && (!filter_ || filter_(rows_[slot]));
}

void TableCore::skipToShown() {
    while (cursor_ < rows_.size() && !shown(cursor_)) {
        ++cursor_;
    }
}

void TableCore::MoveFirst() {
    cursor_ = 0;
    skipToShown();
}

void TableCore::MoveNext() {
    if (!atEnd()) {
        ++cursor_;
        skipToShown();
    }
}

void TableCore::AddNew() {
    if (live_ == 0) {
        clear(); // the slots of rows that are gone need not be kept
    }
    rows_.emplace_back(shape_);
    cursor_ = rows_.size() - 1;
    ++live_;
    enterAll(cursor_, true);
}

void TableCore::AddCopy(const Row& source) {
    Row copy(source); // before the rows move: it may be one of them
    if (live_ == 0) {
        clear();
    }
    rows_.push_back(std::move(copy));
    cursor_ = rows_.size() - 1;
    ++live_;
    enterAll(cursor_, true);
}

void TableCore::Delete() {
    static_cast<void>(row());
    enterAll(cursor_, false);
    const Row gone(std::move(rows_[cursor_]));
    --live_;
}

void TableCore::clear() {
    rows_.clear();
    live_ = 0;
    cursor_ = 0;
    for (RowIndex& index : indexes_) {
        index.clear();
    }
    for (TrueCount& count : counts_) {
        count.count = 0;
    }
    numbers_.clear();
}

std::size_t TableCore::AbsolutePosition() const {
    if (atEnd() || !rows_[cursor_].exists()) {
        return 0;
    }
    std::size_t position = 0;
    for (std::size_t slot = 0; slot <= cursor_; ++slot) {
        position += shown(slot) ? 1 : 0;
    }
    return position;
}

void TableCore::setAbsolutePosition(std::size_t position) {
    MoveFirst();
    while (position > 1 && !atEnd()) {
        MoveNext();
        --position;
    }
}

void TableCore::goTo(Bookmark mark) {
    cursor_ = mark.atEnd ? rows_.size() : mark.slot;
}

const Row& TableCore::row() const {
    if (atEnd() || !rows_[cursor_].exists()) {
        throw Failure(failure_number::kNoItem, u"The table stands on no row");
    }
    return rows_[cursor_];
}

Row& TableCore::current() {
    static_cast<void>(row());
    return rows_[cursor_];
}

RowIndex& TableCore::indexFor(std::size_t field, Compare compare) {
    for (RowIndex& index : indexes_) {
        if (index.field() == field && index.compare() == compare) {
            return index;
        }
    }
    RowIndex& index = indexes_.emplace_back(field, compare);
    watch(field);
    for (std::size_t slot = 0; slot < rows_.size(); ++slot) {
        if (rows_[slot].exists() && !rows_[slot].isNull(field)) {
            index.insert(slot, index.hashOf(rows_[slot], shape_.typeOf(field)));
        }
    }
    return index;
}

template <class Value, class Equal>
bool TableCore::findFrom(RowIndex& index, Value value, Equal equal) {
    for (std::uint32_t slot = index.firstFrom(cursor_, index.hashOf(value));
         slot != RowIndex::kNone; slot = index.next(slot)) {
        if (equal(rows_[slot]) && shown(slot)) {
            cursor_ = slot;
            return true;
        }
    }
    cursor_ = rows_.size();
    return false;
}

bool TableCore::Find(std::size_t field, TextView value, Compare compare) {
    return findFrom(indexFor(field, compare), value, [&](const Row& row) {
        return compare == Compare::exact ? row.text(field) == value
                                         : sameText(row.text(field), value);
    });
}

bool TableCore::Find(std::size_t field, std::int64_t value) {
    return findFrom(indexFor(field, Compare::exact), value,
                    [&](const Row& row) { return row.number(field) == value; });
}

std::size_t TableCore::countTrue(std::size_t field) {
    for (const TrueCount& count : counts_) {
        if (count.field == field) {
            return count.count;
        }
    }
    const auto isTrue = [field](const Row& row) { return row.exists() && row.number(field) != 0; };
    watch(field);
    counts_.push_back({field, static_cast<std::size_t>(std::ranges::count_if(rows_, isTrue))});
    return counts_.back().count;
}

void TableCore::NumberUse::count(TextView text, bool add) {
    const auto number = wholeNumber(text);
    if (!number || *number < 1 || *number > 65535 || decimal(*number) != text) {
        return;
    }
    const auto at = static_cast<std::size_t>(*number);
    holders.resize(std::max(holders.size(), at + 1));
    if (add) {
        ++holders[at];
    } else if (--holders[at] == 0) {
        allHeldBelow = std::min(allHeldBelow, at);
    }
}

std::optional<int> TableCore::lowestUnused(std::size_t field, int first, int last) {
    auto use = std::ranges::find(numbers_, field, &NumberUse::field);
    if (use == numbers_.end()) {
        use = numbers_.insert(numbers_.end(), NumberUse{field, {}});
        watch(field);
        for (const Row& row : rows_) {
            if (row.exists() && !row.isNull(field)) {
                use->count(row.text(field), true);
            }
        }
    }
    const auto held = [&](std::size_t n) { return n < use->holders.size() && use->holders[n] > 0; };
    while (held(use->allHeldBelow)) {
        ++use->allHeldBelow;
    }
    std::size_t number = std::max(static_cast<std::size_t>(first), use->allHeldBelow);
    while (held(number)) {
        ++number;
    }
    return number > static_cast<std::size_t>(last) ? std::nullopt
                                                   : std::optional(static_cast<int>(number));
}

void TableCore::setFilter(std::function<bool(const Row&)> filter) {
    filter_ = std::move(filter);
    MoveFirst();
}

void TableCore::Sort(const std::function<bool(const Row&, const Row&)>& before) {
    std::erase_if(rows_, [](const Row& row) { return !row.exists(); });
    std::ranges::stable_sort(rows_, before);
    indexes_.clear();
    MoveFirst();
}

void TableCore::assignRow(const Row& source) {
    Row& target = current();
    if (&target == &source) {
        return;
    }
    enterAll(cursor_, false);
    for (std::size_t i = 0; i < shape_.fields().size(); ++i) {
        target.copyCell(i, source);
    }
    target.setBefore(source.before());
    enterAll(cursor_, true);
}

void TableCore::beginEdit() {
    if (!isEdited()) {
        current().setBefore(std::make_shared<const Row>(row()));
    }
}

void TableCore::endEdit() {
    current().setBefore(nullptr);
}

// What the indexes and counts hold about one cell goes out before a change and in after it.
void TableCore::enter(std::size_t slot, std::size_t field, bool add) {
    const Row& row = rows_[slot];
    if (row.isNull(field)) {
        return;
    }
    for (RowIndex& index : indexes_) {
        if (index.field() == field) {
            add ? index.insert(slot, index.hashOf(row, shape_.typeOf(field))) : index.erase(slot);
        }
    }
    for (TrueCount& count : counts_) {
        if (count.field == field && row.number(field) != 0) {
            add ? ++count.count : --count.count;
        }
    }
    for (NumberUse& use : numbers_) {
        if (use.field == field) {
            use.count(row.text(field), add);
        }
    }
}

void TableCore::enterAll(std::size_t slot, bool add) {
    // A field can have more than one index or count; each field enters all of its own once.
    for (std::size_t field = 0; watched_ >> field != 0; ++field) {
        if (isWatched(field)) {
            enter(slot, field, add);
        }
    }
}

template <class Change>
void TableCore::change(std::size_t field, Change makeChange) {
    Row& target = current();
    if (!isWatched(field)) {
        makeChange(target);
        return;
    }
    enter(cursor_, field, false);
    makeChange(target);
    enter(cursor_, field, true);
}

void TableCore::setNull(std::size_t field) {
    change(field, [&](Row& row) { row.setNull(field); });
}

void TableCore::setNumber(std::size_t field, std::int64_t value) {
    change(field, [&](Row& row) { row.setNumber(field, value); });
}

void TableCore::setReal(std::size_t field, double value) {
    current().setReal(field, value);
}

void TableCore::setText(std::size_t field, TextView value) {
    if (row().isNull(field) || row().text(field) != value) {
        change(field, [&](Row& row) { row.setText(field, value); });
    }
}

} // namespace tandolin
