#include "formats/row_text.h"

#include <doctest/doctest.h>

#include <algorithm>
#include <fstream>
#include <iterator>

namespace tandolin::testing {

namespace {

std::string escaped(TextView text) {
    std::string shown;
    for (const char c : toUtf8(text)) {
        if (c == '\\') {
            shown += "\\\\";
        } else if (c == '\r' || c == '\n') {
            shown += c == '\r' ? "\\r" : "\\n";
        } else if (static_cast<unsigned char>(c) < 32) {
            shown += "\\" + std::to_string(static_cast<int>(c));
        } else {
            shown += c;
        }
    }
    return shown;
}

std::string cellText(const Row& row, const FieldSpec& spec, std::size_t field) {
    if (row.isNull(field)) {
        return "null";
    }
    switch (spec.type) {
    case CellType::boolean:
        return row.number(field) != 0 ? "true" : "false";
    case CellType::text:
        return escaped(row.text(field));
    case CellType::date: {
        const Date date{row.real(field)};
        if (spec.name == u"EndTime") {
            return toUtf8(isoTime(date));
        }
        return date == Date{0} ? "0" : toUtf8(isoDateTime(date));
    }
    default:
        return std::to_string(row.number(field));
    }
}

std::string difference(const TableCore& table, const TableCore& fresh) {
    std::string lines;
    for (std::size_t i = 0; i < table.fields().size(); ++i) {
        const FieldSpec& spec = table.fields()[i];
        const std::string cell = cellText(table.row(), spec, i);
        if (cell != cellText(fresh.row(), spec, i)) {
            lines += toUtf8(spec.name) + "=" + cell + "\n";
        }
    }
    return lines;
}

} // namespace

std::string rowText(const Table<Calendar>& table) {
    Table<Calendar> fresh;
    vCalCreateNewRecord(fresh);
    return difference(table, fresh);
}

std::string rowText(const Table<Contact>& table) {
    Table<Contact> fresh;
    vCardCreateNewRecord(fresh);
    return difference(table, fresh);
}

std::vector<std::filesystem::path> dataFiles(const char* folder, const char* ending) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry :
         std::filesystem::directory_iterator(std::filesystem::path(TANDOLIN_TEST_DATA) / folder)) {
        if (entry.path().extension() == ending) {
            files.push_back(entry.path());
        }
    }
    std::ranges::sort(files);
    return files;
}

std::string failureText(const Failure& failure) {
    return "failure " + std::to_string(failure.Number) + " line " + std::to_string(failure.Line) +
           ": " + escaped(failure.Description) + "\n";
}

std::string fileBytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    REQUIRE_MESSAGE(file.good(), "cannot read " << path.string());
    return {std::istreambuf_iterator<char>(file), {}};
}

Text objectOf(std::initializer_list<TextView> lines) {
    Text object;
    for (const TextView line : lines) {
        object += line;
        object += u"\r\n";
    }
    return object;
}

Text eventOf(std::initializer_list<TextView> lines) {
    return objectOf({u"BEGIN:VCALENDAR", u"VERSION:1.0", u"BEGIN:VEVENT"}) + objectOf(lines) +
           objectOf({u"END:VEVENT", u"END:VCALENDAR"});
}

} // namespace tandolin::testing
