#include "core/state.h"
#include "core/trap.h"
#include "formats/calendar_codec.h"
#include "formats/encodings.h"
#include "formats/object_lines.h"
#include "formats/object_report.h"
#include "formats/recurrence_rule.h"

#include <algorithm>
#include <array>
#include <limits>

namespace tandolin {

namespace {

/// "20270104T180000Z" in any mixture with the two letters; seconds are kept.
Date objectDate(TextView value) {
    std::array<int, 14> digits{};
    std::size_t count = 0;
    for (const char16_t c : value) {
        if (c == u'T' || c == u'Z') {
            continue;
        }
        if (c < u'0' || c > u'9' || count == digits.size()) {
            throw typeMismatch(value);
        }
        digits.at(count++) = c - u'0';
    }
    const auto pair = [&digits](std::size_t at) { return digits.at(at) * 10 + digits.at(at + 1); };
    const auto date = count < digits.size() ? std::nullopt
                                            : dateOf({.year = pair(0) * 100 + pair(2),
                                                      .month = pair(4),
                                                      .day = pair(6),
                                                      .hour = pair(8),
                                                      .minute = pair(10),
                                                      .second = pair(12)});
    if (!date) {
        throw typeMismatch(value);
    }
    return *date;
}

/// One object on its way into the current row.
class ObjectReader {
public:
    ObjectReader(Table<Calendar>& row, TextView object, TextView fileName, bool codePage,
                 Text* rule)
        : row_(row), rest_(object), fileName_(fileName), codePage_(codePage), rule_(rule) {}

    std::optional<Failure> run() {
        auto failure = attempt([this] {
            while (!rest_.empty()) {
                readProperty();
            }
            finish();
        });
        if (failure) {
            keepWhatWasRead();
            failure->File = fileName_;
            failure->Line = propertyLine_;
        }
        return failure;
    }

private:
    using Handler = void (ObjectReader::*)();

    struct Property {
        TextView tag;
        Handler handler;
    };

    static const std::array<Property, 11> kProperties;

    void readProperty() {
        propertyLine_ = line_;
        TextView tag = HolTeilstring(rest_, u":");
        line_ += static_cast<int>(std::ranges::count(tag, u'\n'));
        value_ = nextLine();
        while (rest_.starts_with(u' ')) {
            value_ += nextLine();
        }
        encodeString(value_, tag, utf8_,
                     {.file = fileName_, .line = propertyLine_, .codePage = codePage_});
        row_.set(cal::UTF8Flag, utf8_);
        tag_ = tag.substr(0, tag.find(u';'));
        const auto* const property = std::ranges::find(kProperties, tag_, &Property::tag);
        property == kProperties.end() ? unknownTag() : (this->*property->handler)();
    }

    TextView nextLine() {
        ++line_;
        return takeLine(rest_);
    }

    [[nodiscard]] bool isFrame() const { return value_ == u"VCALENDAR" || value_ == u"VEVENT"; }

    void begin() {
        if (!isFrame()) {
            throw unexpectedTag(failure_number::kUnexpectedBegin, value_, tag_);
        }
        depth_ = int16Of(depth_ + 1);
    }

    void end() {
        if (!isFrame()) {
            throw unexpectedTag(failure_number::kUnexpectedEnd, value_, tag_);
        }
        depth_ = int16Of(depth_ - 1);
    }

    /// Whatever follows the object is no part of it.
    void unknownTag() {
        if (depth_ > 0) {
            throw unexpectedTag(failure_number::kUnexpectedTag, value_, tag_);
        }
        rest_ = {};
    }

    void categories() {
        if (value_ == u"MISCELLANEOUS") {
            row_.set(cal::MemoStatus, true);
        } else if (value_ == u"MEETING") {
            row_.set(cal::MeetingStatus, true);
        } else if (value_ == u"ANNIVERSARY") {
            row_.set(cal::AnniversaryStatus, true);
        } else if (value_ == u"PHONE CALL") {
            row_.set(cal::PhoneCallStatus, true);
        } else {
            throw unexpectedTag(failure_number::kUnexpectedCategory, value_, tag_);
        }
    }

    // The texts that go with DTSTART are those of the effective start in the end; see `finish`.
    void dtStart() {
        row_.set(cal::DTStart, objectDate(value_));
        row_.set(cal::DTStartFlag, true);
    }

    void dtEnd() { row_.set(cal::DTEnd, objectDate(value_)); }

    void audioAlarm() {
        row_.set(cal::AAlarm, objectDate(value_));
        row_.set(cal::AAlarmFlag, true);
    }

    void displayAlarm() {
        row_.set(cal::DAlarm, objectDate(value_));
        row_.set(cal::DAlarmFlag, true);
    }

    void description() { row_.set(cal::Description, firstOfESCStrings(value_)); }

    void summary() { row_.set(cal::Summary, firstOfESCStrings(value_)); }

    void version() {}

    void recurrenceRule() {
        const RecurrenceRule rule = readRecurrenceRule(value_, app.phone.MobileModel);
        if (rule_ != nullptr) {
            *rule_ = value_;
        }
        row_.set(cal::RecurrenceFrequenz, rule.frequenz);
        row_.set(cal::RecurrenceDuration, std::int64_t{0});
        row_.set(cal::RecurrenceIntervall, rule.intervall);
        row_.set(cal::RecurrenceType, rule.type);
        row_.set(cal::IsRecurring, true);
        if (rule.modKey) {
            row_.set(cal::ModKey, *rule.modKey);
        }
        if (rule.weekDayMask) {
            row_.set(cal::WeekDayMask, *rule.weekDayMask);
        }
        if (rule.dayOfMonth) {
            row_.set(cal::DayOfMonth, *rule.dayOfMonth);
        }
    }

    [[nodiscard]] TextView kindOfEntry() const {
        if (row_[cal::MemoStatus]) {
            return u"";
        }
        if (row_[cal::MeetingStatus]) {
            return u"1";
        }
        if (row_[cal::AnniversaryStatus]) {
            return u"2";
        }
        return row_[cal::PhoneCallStatus] ? u"3" : u"";
    }

    /// The earliest of the times that the object gave. An audio alarm beside a display alarm stands
    /// for both where there is a start.
    [[nodiscard]] Date effectiveStart() const {
        const Date audio = row_[cal::AAlarm];
        const Date display = row_[cal::DAlarm];
        const bool hasAudio = row_[cal::AAlarmFlag];
        const bool hasDisplay = row_[cal::DAlarmFlag];
        if (row_[cal::DTStartFlag]) {
            const Date start = row_[cal::DTStart];
            return hasAudio     ? std::min(start, audio)
                   : hasDisplay ? std::min(start, display)
                                : start;
        }
        return hasAudio && hasDisplay ? std::min(display, audio) : hasDisplay ? display : audio;
    }

    void finish() {
        row_.set(cal::noPhonecall, true);
        row_.set(cal::Typ, kindOfEntry());
        row_.set(cal::Serie, Text(row_[cal::RecurrenceType]));
        finishStart(effectiveStart());
        finishEnd(std::max(row_[cal::DTEnd], row_[cal::DTStart]));
        row_.set(cal::Alarm, row_[cal::AAlarmFlag] || row_[cal::DAlarmFlag]);
        const Text text(row_[row_[cal::Description].empty() ? cal::Summary : cal::Description]);
        row_.set(cal::Text, text);
        row_.set(cal::PIMText, text);
        row_.set(cal::Mobile, true);
        row_.set(cal::EntryType, CONST_ENTRY_vCAL_MOBILE);
    }

    void finishStart(Date start) {
        const Date day = wholeDay(start);
        row_.set(cal::Start, start);
        row_.set(cal::StartAsText, dateAsText(start));
        row_.set(cal::MobileRecPattern, start);
        row_.set(cal::StartDate, day);
        row_.set(cal::PIMRecPatt, day);
        row_.set(cal::PimRecPattString, dateAsText(day));
        row_.set(cal::StartTime, formatTime(start));
    }

    void finishEnd(Date end) {
        const Date day = wholeDay(end);
        row_.set(cal::DTEnd, end);
        row_.set(cal::EndDate, day);
        row_.set(cal::EndTime, timeOfDay(end));
        row_.set(cal::EndDateFlag, true);
        row_.set(cal::StartEndDiff, daysBetween(row_[cal::StartDate], day));
    }

    /// An object that fails half-way leaves the row as its start line made it.
    void keepWhatWasRead() {
        if (!row_[cal::DTStartFlag]) {
            return;
        }
        const Date start = row_[cal::DTStart];
        row_.set(cal::StartAsText, dateAsText(start));
        row_.set(cal::PIMRecPatt, start);
        row_.set(cal::PimRecPattString, dateAsText(start));
    }

    Table<Calendar>& row_;
    TextView rest_;
    TextView fileName_;
    bool codePage_;
    Text* rule_;
    TextView tag_;
    Text value_;
    std::int16_t depth_ = 0;
    bool utf8_ = false;
    int line_ = 1;
    int propertyLine_ = 1;
};

const std::array<ObjectReader::Property, 11> ObjectReader::kProperties{{
    {u"BEGIN", &ObjectReader::begin},
    {u"END", &ObjectReader::end},
    {u"CATEGORIES", &ObjectReader::categories},
    {u"DTSTART", &ObjectReader::dtStart},
    {u"DTEND", &ObjectReader::dtEnd},
    {u"AALARM", &ObjectReader::audioAlarm},
    {u"DALARM", &ObjectReader::displayAlarm},
    {u"DESCRIPTION", &ObjectReader::description},
    {u"SUMMARY", &ObjectReader::summary},
    {u"RRULE", &ObjectReader::recurrenceRule},
    {u"VERSION", &ObjectReader::version},
}};

} // namespace

std::optional<Failure> readCalendarObject(Table<Calendar>& table, TextView object,
                                          TextView fileName, bool codePage, Text* rule) {
    return ObjectReader(table, object, fileName, codePage, rule).run();
}

bool ParsEntryFromMobile(Table<Calendar>& table, TextView object, TextView fileName, bool codePage,
                         Text* rule) {
    return shownAndRead({u"vCal", u"ParsEntryFromMobile"}, object, fileName, [&] {
        return readCalendarObject(table, object, fileName, codePage, rule);
    });
}

} // namespace tandolin
