#include "store/table.h"

#include <algorithm>
#include <functional>
#include <limits>
#include <new>

namespace tandolin {

/// Head of the one piece of memory that a text takes; its characters follow.
struct SharedText::Block {
    std::uint32_t holders;
    std::uint32_t length;

    [[nodiscard]] char16_t* characters() { return reinterpret_cast<char16_t*>(this + 1); }
};

SharedText::SharedText(TextView text) {
    if (text.empty()) {
        return;
    }
    if (text.size() > std::numeric_limits<std::uint32_t>::max()) {
        throw overflowFailure();
    }
    void* memory = ::operator new(sizeof(Block) + text.size() * sizeof(char16_t));
    block_ = new (memory) Block{1, static_cast<std::uint32_t>(text.size())};
    std::ranges::copy(text, block_->characters());
}

TextView SharedText::view() const {
    return block_ == nullptr ? TextView{} : TextView(block_->characters(), block_->length);
}

void SharedText::hold() const {
    if (block_ != nullptr) {
        ++block_->holders;
    }
}

void SharedText::release() {
    if (block_ != nullptr && --block_->holders == 0) {
        ::operator delete(block_);
    }
}

// A cell is a text exactly where the layout says so; the union's member is chosen by that alone.
Row::Row(std::span<const FieldSpec> fields)
    : fields_(fields), cells_(std::make_unique<Cell[]>(fields.size())) {
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        if (fields_[i].type == CellType::text) {
            new (&cells_[i].text) SharedText;
        }
    }
}

Row::Row(const Row& other) : Row(other.fields_) {
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        copyCell(i, other);
    }
}

Row::~Row() {
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        if (fields_[i].type == CellType::text) {
            cells_[i].text.~SharedText();
        }
    }
}

void Row::setNull(std::size_t field) {
    if (fields_[field].type == CellType::text) {
        cells_[field].text = SharedText();
    } else {
        cells_[field].number = 0;
    }
    set_ &= ~(std::uint64_t{1} << field);
}

void Row::setNumber(std::size_t field, std::int64_t value) {
    cells_[field].number = value;
    set_ |= std::uint64_t{1} << field;
}

void Row::setReal(std::size_t field, double value) {
    cells_[field].real = value;
    set_ |= std::uint64_t{1} << field;
}

void Row::setText(std::size_t field, TextView value) {
    cells_[field].text = SharedText(value);
    set_ |= std::uint64_t{1} << field;
}

void Row::copyCell(std::size_t field, const Row& other) {
    if (fields_[field].type == CellType::text) {
        cells_[field].text = other.cells_[field].text;
    } else if (fields_[field].type == CellType::date) {
        cells_[field].real = other.cells_[field].real;
    } else {
        cells_[field].number = other.cells_[field].number;
    }
    const std::uint64_t bit = std::uint64_t{1} << field;
    set_ = (set_ & ~bit) | (other.set_ & bit);
}

namespace {

std::size_t hashOfText(TextView text, Compare compare) {
    return compare == Compare::exact ? std::hash<TextView>{}(text) : std::hash<Text>{}(upper(text));
}

bool equalTexts(TextView a, TextView b, Compare compare) {
    return compare == Compare::exact ? a == b : sameText(a, b);
}

} // namespace

bool TableCore::shown(std::size_t slot) const {
    return rows_[slot] != nullptr && (!filter_ || filter_(*rows_[slot]));
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
    rows_.push_back(std::make_unique<Row>(fields_));
    cursor_ = rows_.size() - 1;
    ++live_;
    enterAll(cursor_, true);
}

void TableCore::AddCopy(const Row& source) {
    if (live_ == 0) {
        clear();
    }
    rows_.push_back(std::make_unique<Row>(source));
    cursor_ = rows_.size() - 1;
    ++live_;
    enterAll(cursor_, true);
}

void TableCore::Delete() {
    static_cast<void>(row());
    enterAll(cursor_, false);
    rows_[cursor_].reset();
    --live_;
}

void TableCore::clear() {
    rows_.clear();
    live_ = 0;
    cursor_ = 0;
    for (Index& index : indexes_) {
        index.slots.clear();
    }
    for (TrueCount& count : counts_) {
        count.count = 0;
    }
    numbers_.clear();
}

std::size_t TableCore::AbsolutePosition() const {
    if (atEnd() || rows_[cursor_] == nullptr) {
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
    if (atEnd() || rows_[cursor_] == nullptr) {
        throw Failure(failure_number::kNoItem, u"The table stands on no row");
    }
    return *rows_[cursor_];
}

Row& TableCore::current() {
    static_cast<void>(row());
    return *rows_[cursor_];
}

std::size_t TableCore::hashOf(const Row& row, const Index& index) const {
    return fields_[index.field].type == CellType::text
               ? hashOfText(row.text(index.field), index.compare)
               : std::hash<std::int64_t>{}(row.number(index.field));
}

TableCore::Index& TableCore::indexFor(std::size_t field, Compare compare) {
    for (Index& index : indexes_) {
        if (index.field == field && index.compare == compare) {
            return index;
        }
    }
    Index& index = indexes_.emplace_back(Index{field, compare, {}});
    for (std::size_t slot = 0; slot < rows_.size(); ++slot) {
        if (rows_[slot] != nullptr && !rows_[slot]->isNull(field)) {
            index.slots.emplace(hashOf(*rows_[slot], index), slot);
        }
    }
    return index;
}

bool TableCore::findFrom(const Index& index, std::size_t hash,
                         const std::function<bool(const Row&)>& equal) {
    for (auto at = index.slots.lower_bound({hash, cursor_});
         at != index.slots.end() && at->first == hash; ++at) {
        if (equal(*rows_[at->second]) && shown(at->second)) {
            cursor_ = at->second;
            return true;
        }
    }
    cursor_ = rows_.size();
    return false;
}

bool TableCore::Find(std::size_t field, TextView value, Compare compare) {
    return findFrom(indexFor(field, compare), hashOfText(value, compare),
                    [&](const Row& row) { return equalTexts(row.text(field), value, compare); });
}

bool TableCore::Find(std::size_t field, std::int64_t value) {
    return findFrom(indexFor(field, Compare::exact), std::hash<std::int64_t>{}(value),
                    [&](const Row& row) { return row.number(field) == value; });
}

std::size_t TableCore::countTrue(std::size_t field) {
    for (const TrueCount& count : counts_) {
        if (count.field == field) {
            return count.count;
        }
    }
    const auto isTrue = [field](const auto& row) {
        return row != nullptr && row->number(field) != 0;
    };
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
        for (const auto& row : rows_) {
            if (row != nullptr && !row->isNull(field)) {
                use->count(row->text(field), true);
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
    std::erase(rows_, nullptr);
    std::ranges::stable_sort(rows_, [&](const auto& a, const auto& b) { return before(*a, *b); });
    indexes_.clear();
    MoveFirst();
}

void TableCore::assignRow(const Row& source) {
    Row& target = current();
    if (&target == &source) {
        return;
    }
    enterAll(cursor_, false);
    for (std::size_t i = 0; i < fields_.size(); ++i) {
        target.copyCell(i, source);
    }
    enterAll(cursor_, true);
}

// What the indexes and counts hold about one cell goes out before a change and in after it.
void TableCore::enter(std::size_t slot, std::size_t field, bool add) {
    const Row& row = *rows_[slot];
    if (row.isNull(field)) {
        return;
    }
    for (Index& index : indexes_) {
        if (index.field == field) {
            const std::pair entry{hashOf(row, index), slot};
            add ? static_cast<void>(index.slots.insert(entry))
                : static_cast<void>(index.slots.erase(entry));
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
    std::uint64_t watched = 0;
    for (const Index& index : indexes_) {
        watched |= std::uint64_t{1} << index.field;
    }
    for (const TrueCount& count : counts_) {
        watched |= std::uint64_t{1} << count.field;
    }
    for (const NumberUse& use : numbers_) {
        watched |= std::uint64_t{1} << use.field;
    }
    for (std::size_t field = 0; watched >> field != 0; ++field) {
        if ((watched >> field & 1U) != 0) {
            enter(slot, field, add);
        }
    }
}

void TableCore::setNull(std::size_t field) {
    Row& target = current();
    enter(cursor_, field, false);
    target.setNull(field);
}

void TableCore::setNumber(std::size_t field, std::int64_t value) {
    Row& target = current();
    enter(cursor_, field, false);
    target.setNumber(field, value);
    enter(cursor_, field, true);
}

void TableCore::setReal(std::size_t field, double value) {
    current().setReal(field, value);
}

void TableCore::setText(std::size_t field, TextView value) {
    Row& target = current();
    enter(cursor_, field, false);
    target.setText(field, value);
    enter(cursor_, field, true);
}

} // namespace tandolin
