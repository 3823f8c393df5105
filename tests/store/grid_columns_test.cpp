#include "store/grid_columns.h"

#include "store/tables.h"
#include "support/fresh_program.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

TEST_CASE("every value of the calendar's lists names its text and its picture") {
    const FreshProgram program;
    const GridLayout layout = gridLayout(Grid::GridEXCal);
    std::string values;
    for (const std::size_t column : {5U, 7U}) {
        for (const ValueItem& item : layout.columns[column].values) {
            values += toUtf8(item.value) + "=" + toUtf8(tr(item.text)) + "/" +
                      toUtf8(layout.images[static_cast<std::size_t>(item.image - 1)]) + " ";
        }
    }
    CHECK(values == "=Notiz/Memo 1=Besprechung/Meeting 2=Geburtstag/Anniversary "
                    "3=Anruf/Phonecall =einmalig/Once D=täglich/Daily W=wöchentlich/Weekly "
                    "M=monatlich/Monthly Y=jährlich/yearly ");
    CHECK(layout.columns[3].format == u"dd.mm.yyyy");
}

TEST_CASE("the organizer's column is shown with an organizer, of contacts with a folder too") {
    const FreshProgram program;
    const auto shown = [](Grid grid) { return gridLayout(grid).columns.front().visible; };
    app.organizer.OrganizerPresent = kTrue;
    CHECK(shown(Grid::GridEXCal));
    CHECK_FALSE(shown(Grid::GridEXCard));
    app.organizer.GlobalContactFolder.emplace();
    CHECK(shown(Grid::GridEXCard));
    app.organizer.OrganizerPresent = kFalse;
    CHECK_FALSE(shown(Grid::GridEXCard));
    CHECK_FALSE(shown(Grid::GridEXCal));
}

TEST_CASE("one column takes the rest of the grid, 800 at least") {
    const FreshProgram program; // without an organizer: the first column is hidden
    const GridLayout calendar = gridLayout(Grid::GridEXCal);
    const std::vector<int> widths{320, 320, 320, 1000, 500, 1200, 7777, 1100};
    // The calendar counts the hidden column, the contacts do not.
    CHECK(restWidth(calendar, widths, 10000) == 10000 - 4760 - 150);
    CHECK(restWidth(calendar, widths, 4760 + 150 + 801) == 801);
    CHECK(restWidth(calendar, widths, 4760 + 950) == 800);
    const std::vector<int> cards{320, 320, 7777, 1000, 1000, 1600, 1600, 800, 1000, 400};
    CHECK(restWidth(gridLayout(Grid::GridEXCard), cards, 12000) == 12000 - 7720 - 200);
}
