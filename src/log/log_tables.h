#pragma once

#include "store/layout.h"
#include "store/table.h"

#include <array>

namespace tandolin {

/// One row per transferred calendar entry.
struct CalendarLog {
    static constexpr std::array<FieldSpec, 9> fields{{{u"Transfer", CellType::text},
                                                      {u"Action", CellType::text},
                                                      {u"SynchDate", CellType::date},
                                                      {u"Date", CellType::date},
                                                      {u"Time", CellType::date},
                                                      {u"Text", CellType::text},
                                                      {u"Typ", CellType::text},
                                                      {u"Error", CellType::text},
                                                      {u"ErrorDesc", CellType::text}}};
};

/// One row per transferred contact.
struct ContactLog {
    static constexpr std::array<FieldSpec, 7> fields{{{u"Transfer", CellType::text},
                                                      {u"Action", CellType::text},
                                                      {u"Date", CellType::date},
                                                      {u"Name", CellType::text},
                                                      {u"Phone", CellType::text},
                                                      {u"Error", CellType::text},
                                                      {u"ErrorDesc", CellType::text}}};
};

/// One row per failure that reached the error reporter.
struct ErrorLog {
    static constexpr std::array<FieldSpec, 5> fields{{{u"Date", CellType::date},
                                                      {u"ErrorNum", CellType::text},
                                                      {u"ErrorDesc", CellType::text},
                                                      {u"Modul", CellType::text},
                                                      {u"Proc", CellType::text}}};
};

/// What the summary window shows: one line of the summary a row.
struct LogSummary {
    static constexpr std::array<FieldSpec, 2> fields{
        {{u"FieldName", CellType::text}, {u"FieldValue", CellType::text}}};
};

namespace callog {
inline constexpr Field<CalendarLog, tandolin::Text> Transfer{u"Transfer"};
inline constexpr Field<CalendarLog, tandolin::Text> Action{u"Action"};
inline constexpr Field<CalendarLog, tandolin::Date> SynchDate{u"SynchDate"};
inline constexpr Field<CalendarLog, tandolin::Date> Date{u"Date"};
inline constexpr Field<CalendarLog, tandolin::Date> Time{u"Time"};
inline constexpr Field<CalendarLog, tandolin::Text> Text{u"Text"};
inline constexpr Field<CalendarLog, tandolin::Text> Typ{u"Typ"};
inline constexpr Field<CalendarLog, tandolin::Text> Error{u"Error"};
inline constexpr Field<CalendarLog, tandolin::Text> ErrorDesc{u"ErrorDesc"};
} // namespace callog

namespace conlog {
inline constexpr Field<ContactLog, tandolin::Text> Transfer{u"Transfer"};
inline constexpr Field<ContactLog, tandolin::Text> Action{u"Action"};
inline constexpr Field<ContactLog, tandolin::Date> Date{u"Date"};
inline constexpr Field<ContactLog, tandolin::Text> Name{u"Name"};
inline constexpr Field<ContactLog, tandolin::Text> Phone{u"Phone"};
inline constexpr Field<ContactLog, tandolin::Text> Error{u"Error"};
inline constexpr Field<ContactLog, tandolin::Text> ErrorDesc{u"ErrorDesc"};
} // namespace conlog

namespace errlog {
inline constexpr Field<ErrorLog, tandolin::Date> Date{u"Date"};
inline constexpr Field<ErrorLog, tandolin::Text> ErrorNum{u"ErrorNum"};
inline constexpr Field<ErrorLog, tandolin::Text> ErrorDesc{u"ErrorDesc"};
inline constexpr Field<ErrorLog, tandolin::Text> Modul{u"Modul"};
inline constexpr Field<ErrorLog, tandolin::Text> Proc{u"Proc"};
} // namespace errlog

namespace logsum {
inline constexpr Field<LogSummary, tandolin::Text> FieldName{u"FieldName"};
inline constexpr Field<LogSummary, tandolin::Text> FieldValue{u"FieldValue"};
} // namespace logsum

/// The log of a run: open from the creation of the tables to the program's end.
struct LogTables {
    Table<CalendarLog> calendar;
    Table<ContactLog> contacts;
    Table<ErrorLog> errors;
};

inline LogTables logTables;

} // namespace tandolin
