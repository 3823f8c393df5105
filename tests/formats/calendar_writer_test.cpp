// Lines of the object that depend on one or two fields each. Whole objects stand in
// tests/data/vcal.

#include "core/settings.h"
#include "core/trap.h"
#include "formats/calendar_codec.h"
#include "formats/row_text.h"
#include "support/fresh_program.h"

#include <algorithm>
#include <sstream>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

void addEntry(Table<Calendar>& table) {
    vCalCreateNewRecord(table);
    table.set(cal::Start, at(2026, 11, 21, 9, 0, 5));
    table.set(cal::EndTime, at(1899, 12, 30, 10, 30));
    table.set(cal::DTEnd, at(2026, 11, 25, 10, 30));
}

/// Does what "Field=value" says.
void setField(Table<Calendar>& table, const std::string& line) {
    const std::size_t equals = line.find('=');
    const Text name = fromUtf8(line.substr(0, equals));
    const Text value = fromUtf8(line.substr(equals + 1));
    const auto spec = std::ranges::find(Calendar::fields, name, &FieldSpec::name);
    REQUIRE(spec != Calendar::fields.end());
    const auto field = static_cast<std::size_t>(spec - Calendar::fields.begin());
    Row row = table.row();
    switch (spec->type) {
    case CellType::text:
        row.setText(field, value);
        break;
    case CellType::date:
        row.setReal(field, parseDate(value, Date{}).value().days);
        break;
    case CellType::boolean:
        row.setNumber(field, value == u"true" ? 1 : 0);
        break;
    default:
        row.setNumber(field, wholeNumber(value).value());
    }
    table.assignRow(row);
}

bool hasLine(TextView object, TextView begin, bool whole) {
    return std::ranges::any_of(split(object, u"\r\n"), [&](const Text& line) {
        return whole ? line == begin : line.starts_with(begin);
    });
}

} // namespace

TEST_CASE("fields and the lines that they become: tests/data/written-lines.txt") {
    const FreshProgram program;
    Table<Calendar> table;
    std::string name;
    int checked = 0;
    std::istringstream file(fileBytes(TANDOLIN_TEST_DATA "/written-lines.txt"));
    for (std::string line; std::getline(file, line);) {
        CAPTURE(name);
        CAPTURE(line);
        if (line.starts_with("  > ")) {
            CHECK(hasLine(calendarObject(table), fromUtf8(line.substr(4)), true));
            ++checked;
        } else if (line.starts_with("  no ")) {
            CHECK_FALSE(hasLine(calendarObject(table), fromUtf8(line.substr(5)), false));
        } else if (line == "  fails") {
            CHECK(attempt([&] { calendarObject(table); }));
        } else if (line.starts_with("  ")) {
            setField(table, line.substr(2));
        } else if (!line.empty() && line.front() != '#') {
            name = line;
            addEntry(table);
        }
    }
    CHECK(checked > 25);
}
