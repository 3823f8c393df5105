#pragma once

#include "store/layout.h"
#include "store/table.h"

#include <array>

namespace tandolin {

/// Fields of a calendar row, in the order in which rows are copied and columns are numbered. Every
/// entry of either side is one row; `EntryID` is its key within the table.
///
/// An entry's kind stands twice, as one of the four status fields and as `Typ` (empty memo, "1"
/// meeting, "2" anniversary, "3" phone call). `Start` is the earliest of start and alarm,
/// `StartDate` its day, `StartTime` its time as text. `PIMRecPatt` anchors a series: its first day,
/// whereas `StartDate` moves into the displayed period. `SubType` numbers the phone's object.
struct Calendar {
    static constexpr std::array<FieldSpec, 60> fields{{
        // clang-format off
        {u"PIM", CellType::boolean},
        {u"Mobile", CellType::boolean},
        {u"Alarm", CellType::boolean},
        {u"StartDate", CellType::date},
        {u"StartTime", CellType::text},
        {u"Typ", CellType::text},
        {u"Text", CellType::text},
        {u"Serie", CellType::text},
        {u"EndDate", CellType::date},
        {u"EndTime", CellType::date},
        {u"EndDateFlag", CellType::boolean},
        {u"DTStart", CellType::date},
        {u"DTStartFlag", CellType::boolean},
        {u"AAlarm", CellType::date},
        {u"AAlarmFlag", CellType::boolean},
        {u"AnniversaryStatus", CellType::boolean},
        {u"DAlarm", CellType::date},
        {u"DAlarmFlag", CellType::boolean},
        {u"Description", CellType::text},
        {u"WeekDayMask", CellType::int64},
        {u"DayOfMonth", CellType::int64},
        {u"EntryID", CellType::text},
        {u"IsRecurring", CellType::boolean},
        {u"MeetingStatus", CellType::boolean},
        {u"MemoStatus", CellType::boolean},
        {u"ModKey", CellType::text},
        {u"PhoneCallStatus", CellType::boolean},
        {u"RecurrenceDuration", CellType::int64},
        {u"RecurrenceFrequenz", CellType::text},
        {u"RecurrenceType", CellType::text},
        {u"RecurrenceIntervall", CellType::int64},
        {u"Start", CellType::date},
        {u"DTEnd", CellType::date},
        {u"Summary", CellType::text},
        {u"SubType", CellType::int32},
        {u"IsChanged", CellType::boolean},
        {u"ChangeString", CellType::text},
        {u"EntryType", CellType::int32},
        {u"EntrySource", CellType::int32},
        {u"UID", CellType::text},
        {u"PIMText", CellType::text},
        {u"UTF8Flag", CellType::boolean},
        {u"Recordset", CellType::text},
        {u"CreationDate", CellType::date},
        {u"TransferMode", CellType::int32},
        {u"EntryPath", CellType::text},
        {u"EntryFile", CellType::text},
        {u"StartAsText", CellType::text},
        {u"PIMNew", CellType::boolean},
        {u"TransferNew", CellType::int32},
        {u"PIMRecPatt", CellType::date},
        {u"MobileRecPattern", CellType::date},
        {u"oldStartDate", CellType::date},
        {u"noPhonecall", CellType::boolean},
        {u"PimRecPattString", CellType::text},
        {u"RecPatternString", CellType::text},
        {u"altesStartDate", CellType::date},
        {u"AllDayEvent", CellType::boolean},
        {u"StartEndDiff", CellType::int64},
        {u"creafromMob", CellType::boolean},
        // clang-format on
    }};
};

namespace cal {
// clang-format off
inline constexpr Field<Calendar, bool> PIM{u"PIM"};
inline constexpr Field<Calendar, bool> Mobile{u"Mobile"};
inline constexpr Field<Calendar, bool> Alarm{u"Alarm"};
inline constexpr Field<Calendar, Date> StartDate{u"StartDate"};
inline constexpr Field<Calendar, tandolin::Text> StartTime{u"StartTime"};
inline constexpr Field<Calendar, tandolin::Text> Typ{u"Typ"};
inline constexpr Field<Calendar, tandolin::Text> Text{u"Text"};
inline constexpr Field<Calendar, tandolin::Text> Serie{u"Serie"};
inline constexpr Field<Calendar, Date> EndDate{u"EndDate"};
inline constexpr Field<Calendar, Date> EndTime{u"EndTime"};
inline constexpr Field<Calendar, bool> EndDateFlag{u"EndDateFlag"};
inline constexpr Field<Calendar, Date> DTStart{u"DTStart"};
inline constexpr Field<Calendar, bool> DTStartFlag{u"DTStartFlag"};
inline constexpr Field<Calendar, Date> AAlarm{u"AAlarm"};
inline constexpr Field<Calendar, bool> AAlarmFlag{u"AAlarmFlag"};
inline constexpr Field<Calendar, bool> AnniversaryStatus{u"AnniversaryStatus"};
inline constexpr Field<Calendar, Date> DAlarm{u"DAlarm"};
inline constexpr Field<Calendar, bool> DAlarmFlag{u"DAlarmFlag"};
inline constexpr Field<Calendar, tandolin::Text> Description{u"Description"};
inline constexpr Field<Calendar, std::int64_t> WeekDayMask{u"WeekDayMask"};
inline constexpr Field<Calendar, std::int64_t> DayOfMonth{u"DayOfMonth"};
inline constexpr Field<Calendar, tandolin::Text> EntryID{u"EntryID"};
inline constexpr Field<Calendar, bool> IsRecurring{u"IsRecurring"};
inline constexpr Field<Calendar, bool> MeetingStatus{u"MeetingStatus"};
inline constexpr Field<Calendar, bool> MemoStatus{u"MemoStatus"};
inline constexpr Field<Calendar, tandolin::Text> ModKey{u"ModKey"};
inline constexpr Field<Calendar, bool> PhoneCallStatus{u"PhoneCallStatus"};
inline constexpr Field<Calendar, std::int64_t> RecurrenceDuration{u"RecurrenceDuration"};
inline constexpr Field<Calendar, tandolin::Text> RecurrenceFrequenz{u"RecurrenceFrequenz"};
inline constexpr Field<Calendar, tandolin::Text> RecurrenceType{u"RecurrenceType"};
inline constexpr Field<Calendar, std::int64_t> RecurrenceIntervall{u"RecurrenceIntervall"};
inline constexpr Field<Calendar, Date> Start{u"Start"};
inline constexpr Field<Calendar, Date> DTEnd{u"DTEnd"};
inline constexpr Field<Calendar, tandolin::Text> Summary{u"Summary"};
inline constexpr Field<Calendar, std::int32_t> SubType{u"SubType"};
inline constexpr Field<Calendar, bool> IsChanged{u"IsChanged"};
inline constexpr Field<Calendar, tandolin::Text> ChangeString{u"ChangeString"};
inline constexpr Field<Calendar, std::int32_t> EntryType{u"EntryType"};
inline constexpr Field<Calendar, std::int32_t> EntrySource{u"EntrySource"};
inline constexpr Field<Calendar, tandolin::Text> UID{u"UID"};
inline constexpr Field<Calendar, tandolin::Text> PIMText{u"PIMText"};
inline constexpr Field<Calendar, bool> UTF8Flag{u"UTF8Flag"};
inline constexpr Field<Calendar, tandolin::Text> Recordset{u"Recordset"};
inline constexpr Field<Calendar, Date> CreationDate{u"CreationDate"};
inline constexpr Field<Calendar, std::int32_t> TransferMode{u"TransferMode"};
inline constexpr Field<Calendar, tandolin::Text> EntryPath{u"EntryPath"};
inline constexpr Field<Calendar, tandolin::Text> EntryFile{u"EntryFile"};
inline constexpr Field<Calendar, tandolin::Text> StartAsText{u"StartAsText"};
inline constexpr Field<Calendar, bool> PIMNew{u"PIMNew"};
inline constexpr Field<Calendar, std::int32_t> TransferNew{u"TransferNew"};
inline constexpr Field<Calendar, Date> PIMRecPatt{u"PIMRecPatt"};
inline constexpr Field<Calendar, Date> MobileRecPattern{u"MobileRecPattern"};
inline constexpr Field<Calendar, Date> oldStartDate{u"oldStartDate"};
inline constexpr Field<Calendar, bool> noPhonecall{u"noPhonecall"};
inline constexpr Field<Calendar, tandolin::Text> PimRecPattString{u"PimRecPattString"};
inline constexpr Field<Calendar, tandolin::Text> RecPatternString{u"RecPatternString"};
inline constexpr Field<Calendar, Date> altesStartDate{u"altesStartDate"};
inline constexpr Field<Calendar, bool> AllDayEvent{u"AllDayEvent"};
inline constexpr Field<Calendar, std::int64_t> StartEndDiff{u"StartEndDiff"};
inline constexpr Field<Calendar, bool> creafromMob{u"creafromMob"};
// clang-format on
} // namespace cal

} // namespace tandolin
