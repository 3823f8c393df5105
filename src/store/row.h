#pragma once

#include "store/layout.h"
#include "store/shared_text.h"

#include <array>
#include <memory>

namespace tandolin {

/// Where the values of a layout's fields lie in a row: texts first, so that they can be shared and
/// released in one go, then what takes eight bytes, then what takes four. Booleans are bits.
class RowShape {
public:
    explicit RowShape(std::span<const FieldSpec> fields);

    [[nodiscard]] std::span<const FieldSpec> fields() const { return fields_; }

    [[nodiscard]] CellType typeOf(std::size_t field) const { return fields_[field].type; }

    /// Distance of a value from the beginning of the row's memory, in bytes.
    [[nodiscard]] std::size_t offsetOf(std::size_t field) const { return offsets_[field]; }

    [[nodiscard]] std::size_t textCount() const { return textCount_; }

    /// What a row takes, in bytes.
    [[nodiscard]] std::size_t size() const { return size_; }

private:
    std::span<const FieldSpec> fields_;
    std::array<std::uint16_t, 64> offsets_{};
    std::size_t textCount_ = 0;
    std::size_t size_ = 0;
};

/// The values of one row, in one piece of memory. Copies share their texts.
class Row {
public:
    /// All fields null.
    explicit Row(const RowShape& shape);
    Row(const Row& other);
    Row(Row&& other) noexcept = default;
    Row& operator=(Row other) noexcept;
    ~Row();

    /// False once the row was moved from or deleted.
    [[nodiscard]] bool exists() const { return cells_ != nullptr; }

    [[nodiscard]] bool isNull(std::size_t field) const { return (bits().set >> field & 1U) == 0; }

    /// A boolean (1 or 0), an int32 or an int64.
    [[nodiscard]] std::int64_t number(std::size_t field) const {
        switch (shape_->typeOf(field)) {
        case CellType::boolean:
            return static_cast<std::int64_t>(bits().yes >> field & 1U);
        case CellType::int32:
            return at<std::int32_t>(field);
        default:
            return at<std::int64_t>(field);
        }
    }

    [[nodiscard]] double real(std::size_t field) const { return at<double>(field); }

    [[nodiscard]] TextView text(std::size_t field) const { return at<SharedText>(field).view(); }

    void setNull(std::size_t field);
    void setNumber(std::size_t field, std::int64_t value);
    void setReal(std::size_t field, double value);
    void setText(std::size_t field, TextView value);

    /// The cell as the other row holds it, null included. Both rows have one layout.
    void copyCell(std::size_t field, const Row& other);

    /// Do both rows show the same in this field? A null cell shows 0 or nothing.
    [[nodiscard]] bool sameCell(std::size_t field, const Row& other) const;

    /// The values before the recorded edit, null without one. Copies of a row share them.
    [[nodiscard]] const std::shared_ptr<const Row>& before() const { return before_; }

    void setBefore(std::shared_ptr<const Row> before) { before_ = std::move(before); }

private:
    /// Head of the memory: which fields are set, which booleans are true.
    struct Bits {
        std::uint64_t set = 0;
        std::uint64_t yes = 0;
    };

    friend class RowShape;

    [[nodiscard]] const Bits& bits() const { return *reinterpret_cast<const Bits*>(cells_.get()); }

    [[nodiscard]] Bits& bits() { return *reinterpret_cast<Bits*>(cells_.get()); }

    template <class T>
    [[nodiscard]] const T& at(std::size_t field) const {
        return *reinterpret_cast<const T*>(cells_.get() + shape_->offsetOf(field));
    }

    template <class T>
    [[nodiscard]] T& at(std::size_t field) {
        return *reinterpret_cast<T*>(cells_.get() + shape_->offsetOf(field));
    }

    [[nodiscard]] SharedText* texts() const {
        return reinterpret_cast<SharedText*>(cells_.get() + sizeof(Bits));
    }

    const RowShape* shape_;
    std::unique_ptr<std::byte[]> cells_;
    std::shared_ptr<const Row> before_;
};

} // namespace tandolin
