#include "log/log_columns.h"

#include "log/log_tables.h"

#include <array>

namespace tandolin {

namespace {

// The tips, which have no other use.
constexpr LogColumn kTarget{ids::kTarget, {814}};
constexpr LogColumn kAction{ids::kAction, {784}};
constexpr LogColumn kMoment{ids::kTransferMoment, {786}};
constexpr LogColumn kFailed{ids::kError, {796}};
constexpr LogColumn kReason{ids::kErrorText, {798}};

constexpr std::array<LogColumn, CalendarLog::fields.size()> kCalendar{{kTarget,
                                                                       kAction,
                                                                       kMoment,
                                                                       {ids::kEntryDate, {788}},
                                                                       {ids::kEntryTime, {790}},
                                                                       {ids::kText, {792}},
                                                                       {ids::kEntryKind, {794}},
                                                                       kFailed,
                                                                       kReason}};

constexpr std::array<LogColumn, ContactLog::fields.size()> kContacts{
    {kTarget, kAction, kMoment, {ids::kName, {799}}, {ids::kPhoneNumber, {800}}, kFailed, kReason}};

constexpr std::array<LogColumn, ErrorLog::fields.size()> kErrors{{{ids::kErrorMoment, {805}},
                                                                  {ids::kErrorNumber, {807}},
                                                                  kReason,
                                                                  {ids::kModule, {809}},
                                                                  {ids::kProcedure, {811}}}};

} // namespace

std::span<const LogColumn> calendarLogColumns() {
    return kCalendar;
}

std::span<const LogColumn> contactLogColumns() {
    return kContacts;
}

std::span<const LogColumn> errorLogColumns() {
    return kErrors;
}

} // namespace tandolin
