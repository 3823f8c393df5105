#include "store/row.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace tandolin {

namespace {

std::size_t sizeOf(CellType type) {
    switch (type) {
    case CellType::boolean:
        return 0;
    case CellType::int32:
        return sizeof(std::int32_t);
    default:
        return sizeof(std::int64_t);
    }
}

static_assert(sizeof(SharedText) == sizeof(std::int64_t) && sizeof(double) == sizeof(std::int64_t));

} // namespace

RowShape::RowShape(std::span<const FieldSpec> fields) : fields_(fields), size_(sizeof(Row::Bits)) {
    if (fields.size() > offsets_.size()) {
        throw std::length_error("a row has at most 64 fields");
    }
    const auto place = [this](auto wanted) {
        for (std::size_t i = 0; i < fields_.size(); ++i) {
            if (wanted(fields_[i].type)) {
                offsets_.at(i) = static_cast<std::uint16_t>(size_);
                size_ += sizeOf(fields_[i].type);
            }
        }
    };
    place([](CellType type) { return type == CellType::text; });
    textCount_ = (size_ - sizeof(Row::Bits)) / sizeof(SharedText);
    place([](CellType type) { return type == CellType::date || type == CellType::int64; });
    place([](CellType type) { return type == CellType::int32; });
}

// Zero bytes are an empty text, the number 0 and the date 0 alike.
Row::Row(const RowShape& shape)
    : shape_(&shape), cells_(std::make_unique<std::byte[]>(shape.size())) {
    new (cells_.get()) Bits;
    std::uninitialized_default_construct_n(texts(), shape.textCount());
}

Row::Row(const Row& other) : shape_(other.shape_), before_(other.before_) {
    if (!other.exists()) {
        return;
    }
    cells_ = std::make_unique_for_overwrite<std::byte[]>(shape_->size());
    std::memcpy(cells_.get(), other.cells_.get(), shape_->size());
    std::uninitialized_copy_n(other.texts(), shape_->textCount(), texts());
}

Row& Row::operator=(Row other) noexcept {
    std::swap(shape_, other.shape_);
    std::swap(cells_, other.cells_);
    std::swap(before_, other.before_);
    return *this;
}

Row::~Row() {
    if (exists()) {
        std::destroy_n(texts(), shape_->textCount());
    }
}

bool Row::sameCell(std::size_t field, const Row& other) const {
    switch (shape_->typeOf(field)) {
    case CellType::text:
        return text(field) == other.text(field);
    case CellType::date:
        return Date{real(field)} == Date{other.real(field)};
    default:
        return number(field) == other.number(field);
    }
}

void Row::setNull(std::size_t field) {
    const std::uint64_t bit = std::uint64_t{1} << field;
    switch (shape_->typeOf(field)) {
    case CellType::text:
        at<SharedText>(field) = SharedText();
        break;
    case CellType::date:
        at<double>(field) = 0;
        break;
    default:
        setNumber(field, 0);
    }
    bits().set &= ~bit;
}

void Row::setNumber(std::size_t field, std::int64_t value) {
    const std::uint64_t bit = std::uint64_t{1} << field;
    switch (shape_->typeOf(field)) {
    case CellType::boolean:
        bits().yes = value != 0 ? bits().yes | bit : bits().yes & ~bit;
        break;
    case CellType::int32:
        at<std::int32_t>(field) = static_cast<std::int32_t>(value);
        break;
    default:
        at<std::int64_t>(field) = value;
    }
    bits().set |= bit;
}

void Row::setReal(std::size_t field, double value) {
    at<double>(field) = value;
    bits().set |= std::uint64_t{1} << field;
}

void Row::setText(std::size_t field, TextView value) {
    SharedText& cell = at<SharedText>(field);
    if (cell.view() != value) {
        cell = SharedText(value);
    }
    bits().set |= std::uint64_t{1} << field;
}

void Row::copyCell(std::size_t field, const Row& other) {
    switch (shape_->typeOf(field)) {
    case CellType::text:
        at<SharedText>(field) = other.at<SharedText>(field);
        break;
    case CellType::date:
        at<double>(field) = other.at<double>(field);
        break;
    default:
        setNumber(field, other.number(field));
    }
    const std::uint64_t bit = std::uint64_t{1} << field;
    bits().set = (bits().set & ~bit) | (other.bits().set & bit);
}

} // namespace tandolin
