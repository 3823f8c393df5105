#include "core/state.h"
#include "core/trap.h"
#include "formats/calendar_codec.h"
#include "formats/recurrence_rule.h"
#include "store/copy_fields.h"

#include <algorithm>
#include <limits>

namespace tandolin {

namespace {

constexpr TextView kModule = u"vCal";

std::int32_t numberOf(TextView text) {
    const auto number = wholeNumber(text);
    if (!number) {
        throw typeMismatch(text);
    }
    if (*number < std::numeric_limits<std::int32_t>::min() ||
        *number > std::numeric_limits<std::int32_t>::max()) {
        throw overflowFailure();
    }
    return static_cast<std::int32_t>(*number);
}

bool standsInPhoneNumber(char16_t c) {
    return (c >= u'0' && c <= u'9') || TextView(u"*#?+").find(c) != TextView::npos;
}

void setRule(Table<Calendar>& table, TextView frequenz, std::int64_t intervall) {
    table.set(cal::RecurrenceFrequenz, frequenz);
    table.set(cal::RecurrenceIntervall, intervall);
}

} // namespace

void vCalSyncMobileEntry(Table<Calendar>& target, const Table<Calendar>& source) {
    trapped({kModule, u"vCalSyncMobileEntry"}, [&] {
        copyFields(target, source, cal::EntryID);
        target.set(cal::SubType, numberOf(source[cal::EntryID]));
        // Wanted: the meeting status goes along where one expects the memo status.
        copyFields(target, source, cal::Text, cal::Mobile, cal::Typ, cal::AnniversaryStatus,
                   cal::MeetingStatus, cal::PhoneCallStatus, cal::DTEnd, cal::EndDate, cal::EndTime,
                   cal::EntryFile);
        target.set(cal::EntryType, CONST_ENTRY_vCAL_BOTH);
    });
}

void vCalSyncOutlookEntry(Table<Calendar>& target, const Table<Calendar>& source) {
    trapped({kModule, u"vCalSyncOutlookEntry"}, [&] {
        copyFields(target, source, cal::UID, cal::PIMText, cal::PIM, cal::PIMNew);
        target.set(cal::EntryType, CONST_ENTRY_vCAL_BOTH);
    });
}

void vCalSetSerieFields(Table<Calendar>& table) {
    trapped({kModule, u"vCalSetSerieFields"}, [&table] {
        const TextView model = app.phone.MobileModel;
        const Text type(table[cal::RecurrenceType]);
        if (type == u"D") {
            setRule(table, u"D", 1);
        } else if (type == u"W") {
            // Old models know no weekly rule; every seventh day is theirs.
            const bool old = isOldModel(model);
            setRule(table, old ? u"D" : u"W", old ? 7 : 1);
        } else if (type == u"M") {
            setRule(table, u"M", 1);
            table.set(cal::DayOfMonth, std::int64_t{civilOf(table[cal::Start]).day});
            // Wanted: one of the old models is missing here.
            table.set(cal::ModKey, isModel(model, {u"R55", u"T55", u"B55"}) ? u"" : u"D");
        } else if (type == u"Y") {
            setRule(table, u"Y", 1);
            table.set(cal::ModKey, isOldModel(model) ? u"" : u"D");
        }
    });
}

bool check4PhoneCallChar(TextView text) {
    return !std::ranges::all_of(text, standsInPhoneNumber);
}

void StripPhoneCallChars(Text& text) {
    std::erase_if(text, [](char16_t c) { return !standsInPhoneNumber(c); });
}

bool CreateTimeFromString(TextView text, Date& date) {
    return trapped({kModule, u"CreateTimeFromString"}, false, [&](bool& done) {
        const auto time = parseTime(text);
        if (!time) {
            throw typeMismatch(text);
        }
        date = *time;
        done = true;
    });
}

} // namespace tandolin
