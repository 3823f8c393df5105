#include "store/row_index.h"

#include <functional>

namespace tandolin {

namespace {

std::uint32_t folded(std::size_t hash) {
    return static_cast<std::uint32_t>(hash ^ hash >> 32U);
}

} // namespace

std::uint32_t RowIndex::hashOf(TextView value) const {
    return folded(compare_ == Compare::exact ? std::hash<TextView>{}(value)
                                             : std::hash<Text>{}(upper(value)));
}

std::uint32_t RowIndex::hashOf(std::int64_t value) const {
    return folded(std::hash<std::int64_t>{}(value));
}

std::uint32_t RowIndex::hashOf(const Row& row, CellType type) const {
    return type == CellType::text ? hashOf(row.text(field_)) : hashOf(row.number(field_));
}

void RowIndex::insert(std::size_t row, std::uint32_t hash) {
    if (count_ >= chains_.size()) {
        grow();
    }
    if (row >= links_.size()) {
        links_.resize(row + 1);
    }
    links_[row].hash = hash;
    links_[row].present = true;
    enchain(static_cast<std::uint32_t>(row));
    ++count_;
}

// Rows are mostly added in their order, so the place is looked for from the end.
void RowIndex::enchain(std::uint32_t row) {
    Link& link = links_[row];
    Chain& chain = chainOf(link.hash);
    link.before = chain.last;
    while (link.before != kNone && link.before > row) {
        link.before = links_[link.before].before;
    }
    link.behind = link.before == kNone ? chain.first : links_[link.before].behind;
    (link.before == kNone ? chain.first : links_[link.before].behind) = row;
    (link.behind == kNone ? chain.last : links_[link.behind].before) = row;
}

void RowIndex::erase(std::size_t row) {
    if (row >= links_.size() || !links_[row].present) {
        return;
    }
    const Link link = links_[row];
    Chain& chain = chainOf(link.hash);
    (link.before == kNone ? chain.first : links_[link.before].behind) = link.behind;
    (link.behind == kNone ? chain.last : links_[link.behind].before) = link.before;
    links_[row] = Link{};
    --count_;
}

void RowIndex::clear() {
    chains_.clear();
    links_.clear();
    count_ = 0;
    lastFound_ = kNone;
}

void RowIndex::grow() {
    chains_.assign(chains_.empty() ? 16 : chains_.size() * 2, Chain{});
    for (std::size_t row = 0; row < links_.size(); ++row) {
        if (links_[row].present) {
            enchain(static_cast<std::uint32_t>(row));
        }
    }
}

std::uint32_t RowIndex::firstFrom(std::size_t from, std::uint32_t hash) {
    if (chains_.empty()) {
        return kNone;
    }
    // A search that goes on behind its last hit need not pass all the earlier ones again.
    const bool goesOn = lastFound_ < from && lastFound_ < links_.size() &&
                        links_[lastFound_].present && links_[lastFound_].hash == hash;
    std::uint32_t row = goesOn ? lastFound_ : chainOf(hash).first;
    while (row != kNone && (row < from || links_[row].hash != hash)) {
        row = links_[row].behind;
    }
    if (row != kNone) {
        lastFound_ = row;
    }
    return row;
}

std::uint32_t RowIndex::next(std::uint32_t row) const {
    const std::uint32_t hash = links_[row].hash;
    do {
        row = links_[row].behind;
    } while (row != kNone && links_[row].hash != hash);
    return row;
}

} // namespace tandolin
