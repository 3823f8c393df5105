#pragma once

#include "store/row.h"

#include <cstdint>
#include <vector>

namespace tandolin {

/// How two texts of a search are compared.
enum class Compare : std::uint8_t { exact, text };

/// Which rows of a table hold which value of one field: a hash table whose chains are in the order
/// of the rows, so that a search finds the first row from the cursor on.
///
/// It keeps hashes and row numbers alone; whether a row that it names holds the value is for the
/// table to see.
class RowIndex {
public:
    static constexpr std::uint32_t kNone = UINT32_MAX;

    RowIndex(std::size_t field, Compare compare) : field_(field), compare_(compare) {}

    [[nodiscard]] std::size_t field() const { return field_; }

    [[nodiscard]] Compare compare() const { return compare_; }

    [[nodiscard]] std::uint32_t hashOf(TextView value) const;
    [[nodiscard]] std::uint32_t hashOf(std::int64_t value) const;
    /// The hash of the row's value of this field.
    [[nodiscard]] std::uint32_t hashOf(const Row& row, CellType type) const;

    void insert(std::size_t row, std::uint32_t hash);
    void erase(std::size_t row);
    void clear();

    /// The first row from `from` on whose value has this hash; kNone when there is none.
    [[nodiscard]] std::uint32_t firstFrom(std::size_t from, std::uint32_t hash);
    /// The next one behind a row that was found.
    [[nodiscard]] std::uint32_t next(std::uint32_t row) const;

private:
    struct Link {
        std::uint32_t hash = 0;
        std::uint32_t before = kNone;
        std::uint32_t behind = kNone;
        bool present = false;
    };

    struct Chain {
        std::uint32_t first = kNone;
        std::uint32_t last = kNone;
    };

    [[nodiscard]] Chain& chainOf(std::uint32_t hash) {
        return chains_[hash & (chains_.size() - 1)];
    }

    void grow();
    void enchain(std::uint32_t row);

    std::size_t field_;
    Compare compare_;
    std::vector<Chain> chains_; // a power of two
    std::vector<Link> links_;   // by row
    std::size_t count_ = 0;
    std::uint32_t lastFound_ = kNone; // where the next search of the same value goes on
};

} // namespace tandolin
