#include "store/grid_columns.h"

#include "store/tables.h"
#include "support/fresh_program.h"

#include <doctest/doctest.h>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

constexpr const char* kContents[] = {"box", "date", "text", "list"};

/// A column as one line: place, field, caption or picture, tip, width, content.
template <class Layout>
std::string lineOf(const GridColumn& column) {
    const auto& width = column.width;
    std::string text = std::to_string(column.field + 1) + " ";
    text += toUtf8(Layout::fields[column.field].name) + " ";
    text +=
        column.caption.empty() ? "#" + std::to_string(column.headerImage) : toUtf8(column.caption);
    text += " | " + toUtf8(column.tip) + " | ";
    text += width.rest             ? "rest"
            : width.sample.empty() ? std::to_string(width.twips)
                                   : toUtf8(width.sample) + "+" + std::to_string(width.twips);
    text += std::string(" ") + kContents[static_cast<int>(column.content)];
    return text + (column.visible ? "" : " hidden");
}

template <class Layout>
std::string linesOf(const GridLayout& layout) {
    std::string lines;
    for (const GridColumn& column : layout.columns) {
        lines += lineOf<Layout>(column) + "\n";
    }
    return lines;
}

struct Window : ScriptedScreen {
    std::vector<Grid> configured;

    void columnCaptions(Grid grid) override { configured.push_back(grid); }
};

} // namespace

TEST_CASE("the calendar's columns") {
    const FreshProgram program;
    app.organizer.OrganizerPresent = kTrue;
    const GridLayout layout = gridLayout(Grid::GridEXCal);
    CHECK(linesOf<Calendar>(layout) ==
          "1 PIM #1 | als PIM Termin setzen/löschen | 320 box\n"
          "2 Mobile #2 | als Mobiltelefon Termin setzen/löschen | 320 box\n"
          "3 Alarm #12 | Alarm des Termins aktivieren/deaktivieren | 320 box\n"
          "4 StartDate Datum | Datum des Termins eintragen | 12.12.2000+200 date\n"
          "5 StartTime Zeit | Uhrzeit des Termins eintragen | 00:30+100 text\n"
          "6 Typ Typ | Terminart einstellen | Besprechung+400 list\n"
          "7 Text Betreff | Termin Betreff eingeben | rest text\n"
          "8 Serie Serie | Termin Serie festlegen | wöchentlich+150 list\n");
    CHECK(layout.columns[3].format == u"dd.mm.yyyy");
    CHECK(layout.sortedBy == std::vector<int>{4, 5});
    CHECK(layout.caption == u"Termin:|von");
    CHECK(layout.label == u"Betreff: ");
    // Every value names its text and its picture.
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
}

TEST_CASE("the contacts' columns") {
    const FreshProgram program;
    app.organizer.OrganizerPresent = kTrue;
    const GridLayout layout = gridLayout(Grid::GridEXCard);
    CHECK(linesOf<Contact>(layout) ==
          "1 PIM #1 | als PIM Kontakt setzen/löschen | 320 box hidden\n"
          "2 Mobile #2 | als Mobiltelefon Kontakt setzen/löschen | 320 box\n"
          "3 LastName Name | Name eintragen | rest text\n"
          "4 FirstName Vorname | Vorname eintragen | 1000 text\n"
          "5 Company Firma | Firma eintragen | 1000 text\n"
          "6 Phone Telefonnummer | Telefonnummer eintragen | 1600 text\n"
          "7 Street Straße | Straße eintragen | 1600 text\n"
          "8 ZipCode PLZ | PLZ eintragen | 800 text\n"
          "9 City Ort | Ort eintragen | 1000 text\n"
          "10 Categories VIP | als VIP eintragen | 400 box\n");
    CHECK(layout.sortedBy == std::vector<int>{3});
    app.organizer.GlobalContactFolder.emplace();
    CHECK(gridLayout(Grid::GridEXCard).columns.front().visible);
    app.organizer.OrganizerPresent = kFalse;
    CHECK_FALSE(gridLayout(Grid::GridEXCard).columns.front().visible);
    CHECK_FALSE(gridLayout(Grid::GridEXCal).columns.front().visible);
}

TEST_CASE("one column takes the rest of the grid, 800 at least") {
    const FreshProgram program; // without an organizer: the first column is hidden
    const GridLayout calendar = gridLayout(Grid::GridEXCal);
    const std::vector<int> widths{320, 320, 320, 1000, 500, 1200, 7777, 1100};
    // The calendar counts the hidden column, the contacts do not.
    CHECK(restWidth(calendar, widths, 10000) == 10000 - 4760 - 150);
    CHECK(restWidth(calendar, widths, 4760 + 150 + 801) == 801);
    CHECK(restWidth(calendar, widths, 4760 + 950) == 800);
    CHECK(restWidth(calendar, widths, 100) == 800);
    const std::vector<int> cards{320, 320, 7777, 1000, 1000, 1600, 1600, 800, 1000, 400};
    CHECK(restWidth(gridLayout(Grid::GridEXCard), cards, 12000) == 12000 - 7720 - 200);
}

TEST_CASE("both grids are set up one after the other") {
    const FreshProgram program;
    Window window;
    app.ports.screen.window = &window;
    SetGridCaptions();
    CHECK(window.configured == std::vector{Grid::GridEXCal, Grid::GridEXCard});
}
