#include "core/date_formats.h"
#include "core/registry.h"
#include "core/settings.h"
#include "core/state.h"
#include "core/trap.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>

namespace tandolin {

namespace {

constexpr TextView kIsoFormat = u"yyyy-mm-dd";
constexpr TextView kGermanFormat = u"dd.mm.yyyy";

/// Number of a locale question without an answer, as the system numbers a wrong request.
constexpr std::int32_t kNoAnswer = 87;

Text answerOf(LocaleItem item, TextView word) {
    constexpr std::size_t kLongest = 39;
    auto answer = app.ports.locale->info(item);
    if (answer) {
        answer->resize(std::min(answer->size(), answer->find(u'\0')));
    }
    if (!answer || answer->size() > kLongest) {
        throw Failure(kNoAnswer, Text(word), u"RegDateTimeFormatGet");
    }
    return *std::move(answer);
}

Text joined(const std::vector<Text>& parts, TextView separator) {
    Text text;
    for (const Text& part : parts) {
        text += (&part == &parts.front() ? TextView{} : separator);
        text += part;
    }
    return text;
}

/// Keeps a format that dates can be written with and read back. One that cannot loses what is too
/// long in its parts; if that changes what today looks like, or does not help, the plain order of
/// day, month and two-digit year stands in.
Text usableDateFormat(const Text& format, TextView separator, Date today) {
    const Text plain = joined({u"dd", u"mm", u"yy"}, separator);
    if (format.size() <= 2) {
        return plain;
    }
    if (isNumericDateFormat(format)) {
        return format;
    }
    if (separator.empty()) {
        return plain;
    }
    std::vector<Text> parts = split(format, separator);
    for (Text& part : parts) {
        part.resize(std::min<std::size_t>(part.size(), 4));
    }
    const Text cut = joined(parts, separator);
    const bool same = sameText(dateInFormat(today, cut), dateInFormat(today, format));
    return same && isNumericDateFormat(cut) ? cut : plain;
}

/// The formats that follow from the answers of the locale.
void deriveFormats(DateTimeFormats& f) {
    const DateTimeFormats start;
    f.dateFormatLength = static_cast<int>(f.shortDate.size()) - 1;
    f.shortDate = usableDateFormat(f.shortDate, f.dateSeparator, app.ports.clock->now());
    f.shortTime = BuildTimeNosSecFormat(f.longTime);
    f.dateLongTime = f.shortDate + u' ' + f.longTime;
    f.dateShortTime = f.shortDate + u' ' + f.shortTime;
    f.timeMarker = f.twentyFourHours ? Text{} : f.evening + f.morning;
    f.timeFormatName = f.twentyFourHours ? u"Short Time" : u"Medium Time";
    f.dateEntryMask = joined({u"##", u"##", u"####"}, f.dateSeparator) + u' ' +
                      joined({u"##", u"##", u"##"}, f.timeSeparator);
}

DayHalves dayHalves() {
    return {app.formats.morning, app.formats.evening};
}

/// A time of day in any of the forms that are read, a bare number excluded.
std::optional<Date> clockTime(TextView text) {
    for (const TextView format :
         {TextView(app.formats.shortTime), TextView(u"hh:mm"), TextView(u"hh:mm:ss"),
          TextView(app.formats.longTime), TextView(u"hh:mm tt"), TextView(u"hh:mm:ss tt")}) {
        if (const auto time = timeFromFormat(text, format, dayHalves())) {
            return time;
        }
    }
    return std::nullopt;
}

/// The day at the start of the text in this format, with the time of day behind it.
std::optional<Date> dateWithTail(TextView text, TextView format, YearDigits digits, Date today) {
    const auto day = takeDate(text, format, digits, today);
    if (!day || text.empty()) {
        return day;
    }
    const bool apart = text.front() == u' ' || (format == kIsoFormat && text.front() == u'T');
    const auto time = apart ? clockTime(text.substr(1)) : std::nullopt;
    return time ? std::optional(atTime(*day, *time)) : std::nullopt;
}

} // namespace

void RegDateTimeFormatGet() {
    trapped({u"Registry", u"RegDateTimeFormatGet"}, [] {
        app.formats = {};
        // Read and not used: the formats come from the locale itself.
        RegReadValue(SettingsRoot::user, u"Control Panel\\International", u"Locale");
        DateTimeFormats f;
        f.dateSeparator = answerOf(LocaleItem::dateSeparator, u"DateChar");
        f.shortDate = answerOf(LocaleItem::shortDate, u"Shortdate");
        f.longTime = answerOf(LocaleItem::timeFormat, u"Shorttime");
        f.timeSeparator = answerOf(LocaleItem::timeSeparator, u"TimeChar");
        f.twentyFourHours = answerOf(LocaleItem::twentyFourHours, u"TimeChar") == u"1";
        f.morning = answerOf(LocaleItem::morning, u"TimeChar");
        f.evening = answerOf(LocaleItem::evening, u"TimeChar");
        f.timeMarkerPosition = answerOf(LocaleItem::timeMarkerPosition, u"TimeChar");
        deriveFormats(f);
        app.formats = std::move(f);
    });
}

void DateFormatFix(Text& format) {
    format = usableDateFormat(format, app.formats.dateSeparator, app.ports.clock->now());
}

Text BuildTimeNosSecFormat(TextView timeFormat) {
    Text format = withoutSeconds(timeFormat);
    // Without hours and minutes no time could be read back.
    return isTimeFormat(format) ? format : DateTimeFormats{}.shortTime;
}

Text formatDate(Date date) {
    return dateInFormat(date, app.formats.shortDate);
}

Text formatTime(Date time) {
    return timeInFormat(time, app.formats.shortTime, dayHalves());
}

Text dateAsText(Date date) {
    // Composed by hand: it is made several times for each row.
    const Civil c = civilOf(date);
    Text text;
    text.reserve(20);
    putDigits(text, c.day, 2);
    text += u'.';
    putDigits(text, c.month, 2);
    text += u'.';
    putDigits(text, c.year, 4);
    if (c.hour != 0 || c.minute != 0 || c.second != 0) {
        text += u' ';
        putDigits(text, c.hour, 2);
        text += u':';
        putDigits(text, c.minute, 2);
    }
    if (c.second != 0) {
        text += u':';
        putDigits(text, c.second, 2);
    }
    return text;
}

std::optional<Date> parseDate(TextView text, Date today) {
    text = trimmed(text);

    struct DateForm {
        TextView format;
        YearDigits digits;
    };

    for (const DateForm& form :
         {DateForm{kIsoFormat, YearDigits::four}, DateForm{kGermanFormat, YearDigits::four},
          DateForm{app.formats.shortDate, YearDigits::twoOrFour}}) {
        if (const auto date = dateWithTail(text, form.format, form.digits, today)) {
            return date;
        }
    }
    return std::nullopt;
}

std::optional<double> decimalNumber(TextView text) {
    text = trimmed(text);
    const bool begins = !text.empty() && (text.front() == u'-' || text.front() == u'.' ||
                                          (text.front() >= u'0' && text.front() <= u'9'));
    if (!begins || !std::ranges::all_of(text, [](char16_t c) { return c < 0x80; })) {
        return std::nullopt;
    }
    const std::string ascii(text.begin(), text.end());
    double value = 0;
    const auto [end, error] = std::from_chars(ascii.data(), ascii.data() + ascii.size(), value);
    const bool whole = error == std::errc{} && end == ascii.data() + ascii.size();
    return whole && std::isfinite(value) ? std::optional(value) : std::nullopt;
}

std::optional<Date> parseTime(TextView text) {
    if (text == u"0") {
        return Date{};
    }
    if (const auto time = clockTime(text)) {
        return time;
    }
    const auto fraction = decimalNumber(text);
    if (!fraction || *fraction < 0 || *fraction >= 1) {
        return std::nullopt;
    }
    // Half a second before midnight is not the midnight of the same day.
    return dateFromSeconds(std::min<std::int64_t>(Date{*fraction}.seconds(), 86399));
}

} // namespace tandolin
