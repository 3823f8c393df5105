#pragma once

#include "core/language_strings.h"
#include "core/ports/screen.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace tandolin {

// The two grids as data: which columns they show, with which words, pictures and widths. A window
// turns it into its own control. Widths are in twips, 1440 an inch.

enum class CellContent : std::uint8_t { checkBox, date, text, valueList };

/// One value of a list: what the field holds, what the grid shows. `image` is the number of a
/// picture of the grid.
struct ValueItem {
    TextView value;
    StringId text;
    int image = 0;
};

/// How wide a column is.
struct ColumnWidth {
    /// Where there is no sample: the width itself.
    int twips = 0;
    /// The column is as wide as this text in the grid's font, and `twips` more.
    Text sample;
    /// The column takes what the others leave.
    bool rest = false;
};

/// A column that is set up. Its place in the grid is that of its field; all other fields of the
/// table are hidden columns, and none is sorted but those of `GridLayout::sortedBy`.
struct GridColumn {
    /// Position in the table's layout, from 0.
    std::size_t field = 0;
    /// Empty where the header shows a picture.
    Text caption;
    int headerImage = 0;
    Text tip;
    ColumnWidth width;
    bool visible = true;
    CellContent content = CellContent::text;
    /// Of a date.
    Text format;
    std::span<const ValueItem> values;
};

struct GridLayout {
    /// Colour of marked text, 0xBBGGRR.
    std::uint32_t markColour = 0;
    /// Keys of the pictures, numbered from 1; the first is that of the tool `TDLReadOrganizer`.
    std::span<const TextView> images;
    std::vector<GridColumn> columns;
    int rowHeight = 285;
    /// Columns that the grid is sorted by, ascending.
    std::vector<int> sortedBy;
    /// Left free beside the columns when the one that takes the rest is sized.
    int margin = 0;
    /// Hidden columns take part in that sum.
    bool hiddenCount = false;
    /// The calendar's remaining properties: label, two numbers, two flags, caption of the grid.
    Text label;
    std::array<int, 2> numbers{};
    std::array<bool, 2> flags{};
    Text caption;
};

/// The layout of a grid in the language and formats in force.
GridLayout gridLayout(Grid grid);

/// Width of the column that takes the rest of a grid of `gridTwips`, never below 800. `widths` are
/// those of the layout's columns as they stand, in their order.
int restWidth(const GridLayout& layout, std::span<const int> widths, int gridTwips);

/// Configures `GridEXCal`: the window takes the layout anew.
void SetvCalColCaption();

/// Configures `GridEXCard`.
void vCardSetColCaption();

/// Both, at the start and when the language changes.
void SetGridCaptions();

} // namespace tandolin
