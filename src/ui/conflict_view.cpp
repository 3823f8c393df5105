#include "ui/conflict_view.h"

#include "core/state.h"
#include "core/trap.h"

namespace tandolin {

namespace {

constexpr TextView kModule = u"EntryShow";

// Texts of the set that have no other use than this dialog and the contact's editor.
constexpr StringId kPimOverMobile{632};
constexpr std::array kLabels{StringId{566}, StringId{567}, StringId{568}, StringId{574},
                             StringId{569}, StringId{571}, StringId{570}, StringId{579},
                             StringId{573}, StringId{576}, StringId{575}, StringId{577},
                             StringId{572}, StringId{578}};
constexpr std::size_t kFirstField = con::LastName.index();
static_assert(kFirstField + kLabels.size() - 1 == con::URL.index());

/// A field as the grid shows it; empty where it was never set.
Text shownValue(const Row& row, std::size_t field) {
    if (row.isNull(field)) {
        return {};
    }
    if (Contact::fields[field].type == CellType::boolean) {
        return row.number(field) != 0 ? tr(ids::kYes) : tr(ids::kNo);
    }
    return Text(row.text(field));
}

void markDifferences(EntryShow& form) {
    Table<ShownField>& table = form.ShowGridRS;
    form.differing.clear();
    for (table.MoveFirst(); !table.atEnd(); table.MoveNext()) {
        const bool differs = table[shown::PIM] != table[shown::Mobile];
        table.set(shown::Found, differs);
        if (differs) {
            form.differing.push_back(table.AbsolutePosition());
        }
    }
    table.MoveFirst();
}

void choose(EntryShow& form, std::int16_t result) {
    form.EntryShowResult = result;
    form.closed = true;
}

} // namespace

void InitForm(EntryShow& form) {
    trapped({kModule, u"InitForm"}, [&form] {
        form.EntryShowResult = 0;
        form.closed = false;
        form.caption = tr(ids::kProgramTitle);
        form.Bu_MobileoverPIM = u"Mobile überschreibt PIM";
        form.Bu_PIMoverMobile = tr(kPimOverMobile);
        form.Bu_MobandPIM = u"Beide Einträge übernehmen";
        InitEigenschaftenArray(form);
        InitShowGridRS(form);
    });
}

void InitEigenschaftenArray(EntryShow& form) {
    trapped({kModule, u"InitEigenschaftenArray"}, [&form] {
        for (std::size_t i = 0; i < kLabels.size(); ++i) {
            form.Eigenschaften[i] = tr(kLabels[i]);
        }
    });
}

void InitShowGridRS(EntryShow& form) {
    trapped({kModule, u"InitShowGridRS"}, [&form] {
        form.ShowGridRS.clear();
        form.differing.clear();
    });
}

void FillShowGridRS(EntryShow& form, const Row& organizersRow, const Row& phonesRow) {
    trapped({kModule, u"FillShowGridRS"}, [&] {
        for (std::size_t i = 0; i < kLabels.size(); ++i) {
            const Text organizers = shownValue(organizersRow, kFirstField + i);
            const Text phones = shownValue(phonesRow, kFirstField + i);
            if (organizers.empty() || phones.empty()) {
                continue;
            }
            form.ShowGridRS.AddNew();
            form.ShowGridRS.set(shown::Label, form.Eigenschaften[i]);
            form.ShowGridRS.set(shown::PIM, organizers);
            form.ShowGridRS.set(shown::Mobile, phones);
            form.ShowGridRS.set(shown::Found, false);
        }
    });
}

void InitGrid(EntryShow& form, int gridTwips) {
    trapped({kModule, u"InitGrid"}, [&form, gridTwips] {
        const auto column = [gridTwips](std::size_t field, Text caption) {
            GridColumn made;
            made.field = field;
            made.caption = std::move(caption);
            made.width.twips = gridTwips / 3;
            return made;
        };
        form.grid.groupByBox = false;
        form.grid.readOnly = true;
        form.grid.columns = {column(shown::Label.index(), {}),
                             column(shown::PIM.index(), tr(ids::kPIM)),
                             column(shown::Mobile.index(), tr(ids::kMobile))};
    });
}

void WriteGrid(EntryShow& form, const Row& organizersRow, const Row& phonesRow, int gridTwips) {
    trapped({kModule, u"WriteGrid"}, [&] {
        InitShowGridRS(form);
        FillShowGridRS(form, organizersRow, phonesRow);
        InitGrid(form, gridTwips);
        markDifferences(form);
    });
}

void Bu_MobileoverPIM_Click(EntryShow& form) {
    choose(form, 1);
}

void Bu_PIMoverMobile_Click(EntryShow& form) {
    choose(form, 2);
}

void Bu_MobandPIM_Click(EntryShow& form) {
    choose(form, 3);
}

} // namespace tandolin
