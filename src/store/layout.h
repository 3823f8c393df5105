#pragma once

#include "core/date.h"
#include "core/text.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

namespace tandolin {

/// What a cell holds.
enum class CellType : std::uint8_t { boolean, date, text, int32, int64 };

/// One field of a layout: declared name and type. The position in the layout's list is its number.
struct FieldSpec {
    TextView name;
    CellType type;
};

template <class T>
consteval CellType cellTypeOf() {
    if constexpr (std::is_same_v<T, bool>) {
        return CellType::boolean;
    } else if constexpr (std::is_same_v<T, Date>) {
        return CellType::date;
    } else if constexpr (std::is_same_v<T, Text>) {
        return CellType::text;
    } else if constexpr (std::is_same_v<T, std::int32_t>) {
        return CellType::int32;
    } else {
        static_assert(std::is_same_v<T, std::int64_t>);
        return CellType::int64;
    }
}

/// Compile-time id of a field of `Layout` holding a `T`: an unknown name, another type or another
/// layout does not compile.
template <class Layout, class T>
class Field {
public:
    consteval explicit Field(TextView name) {
        for (std::size_t i = 0; i < Layout::fields.size(); ++i) {
            if (Layout::fields[i].name == name && Layout::fields[i].type == cellTypeOf<T>()) {
                index_ = i;
                return;
            }
        }
        throw "no field of this name and type in the layout";
    }

    [[nodiscard]] constexpr std::size_t index() const { return index_; }

private:
    std::size_t index_ = 0;
};

} // namespace tandolin
