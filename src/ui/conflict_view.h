#pragma once

// The dialog `EntryShow` without its window: the two versions of one contact side by side, and the
// user's choice. One row for each field that both versions fill:
//
//     Nachname:   Müller        Mueller       differs
//     Vorname:    Jörg          Jörg

#include "core/language_strings.h"
#include "store/contact_layout.h"
#include "store/grid_columns.h"

#include <array>
#include <cstdint>
#include <vector>

namespace tandolin {

/// A row of the dialog's table.
struct ShownField {
    static constexpr std::array<FieldSpec, 4> fields{{
        {u"Label", CellType::text},
        {u"PIM", CellType::text},
        {u"Mobile", CellType::text},
        {u"Found", CellType::boolean},
    }};
};

namespace shown {
inline constexpr Field<ShownField, Text> Label{u"Label"};
inline constexpr Field<ShownField, Text> PIM{u"PIM"};
inline constexpr Field<ShownField, Text> Mobile{u"Mobile"};
inline constexpr Field<ShownField, bool> Found{u"Found"}; ///< the sides disagree
} // namespace shown

/// The grid of the dialog.
struct ShowGrid {
    bool groupByBox = true;
    bool readOnly = false;
    std::vector<GridColumn> columns;
};

/// What the dialog holds. It is used once: made, loaded, shown, asked for its result.
struct EntryShow {
    /// What the user chose: 0 nothing, else the number of the button.
    std::int16_t EntryShowResult = 0;
    bool closed = false;
    Text caption;
    Text Bu_MobileoverPIM;
    Text Bu_PIMoverMobile;
    Text Bu_MobandPIM;
    /// The labels, in the order of the contact's fields.
    std::array<Text, 14> Eigenschaften;
    Table<ShownField> ShowGridRS;
    ShowGrid grid;
    /// Numbers from 1 of the rows that differ; the grid highlights them.
    std::vector<std::size_t> differing;
};

/// Loads the dialog: no choice yet, captions, labels, an empty table.
void InitForm(EntryShow& form);

/// The 14 labels in the language in force.
void InitEigenschaftenArray(EntryShow& form);

/// Makes the table empty.
void InitShowGridRS(EntryShow& form);

/// Adds a row for each field, `LastName` to `URL`, that neither version leaves empty. Both are rows
/// of contacts; of each the field itself counts, whatever its twin holds.
void FillShowGridRS(EntryShow& form, const Row& organizersRow, const Row& phonesRow);

/// Three columns, each a third of the grid's `gridTwips`; nothing can be edited.
void InitGrid(EntryShow& form, int gridTwips);

/// Fills and shows the table: marks the rows that differ and returns to the first row.
void WriteGrid(EntryShow& form, const Row& organizersRow, const Row& phonesRow, int gridTwips);

void Bu_MobileoverPIM_Click(EntryShow& form);
void Bu_PIMoverMobile_Click(EntryShow& form);
void Bu_MobandPIM_Click(EntryShow& form);

} // namespace tandolin
