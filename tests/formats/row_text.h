#pragma once

// Rows and objects as lines of text, for comparing them with files and showing them.

#include "store/tables.h"

#include <filesystem>
#include <string>

namespace tandolin::testing {

/// "Field=value" lines of the current row, one for each field that differs from a new row's. Dates
/// are ISO (0 is "0"), `EndTime` is a time of day, control characters and backslashes are escaped.
std::string rowText(const Table<Calendar>& table);
std::string rowText(const Table<Contact>& table);

/// A failure as one line: "failure -1993 line 9: ...".
std::string failureText(const Failure& failure);

/// The files of a folder of tests/data that end so, by name.
std::vector<std::filesystem::path> dataFiles(const char* folder, const char* ending);

/// The bytes of a file; fails the test when it cannot be read.
std::string fileBytes(const std::filesystem::path& path);

/// The lines joined with CR LF, one behind the last too.
Text objectOf(std::initializer_list<TextView> lines);

/// An object of one event with these lines between the usual frame.
Text eventOf(std::initializer_list<TextView> lines);

} // namespace tandolin::testing
