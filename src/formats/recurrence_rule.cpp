#include "formats/recurrence_rule.h"

#include "formats/week_days.h"

#include <algorithm>

namespace tandolin {

namespace {

/// From a position on, counted from 1; empty behind the end.
TextView from(TextView text, std::size_t position, std::size_t length = TextView::npos) {
    return text.size() < position ? TextView{} : text.substr(position - 1, length);
}

void readDaily(RecurrenceRule& rule, TextView text) {
    rule.intervall = leadingNumber(from(text, 2, 1));
    rule.type = rule.intervall == 7 ? u"W" : u"D";
}

void readWeekly(RecurrenceRule& rule, TextView text) {
    rule.intervall = leadingNumber(from(text, 2, 1));
    rule.type = u"W";
    std::int16_t mask = 0;
    StringToDayOfWeekMask(from(text, 4), mask);
    rule.weekDayMask = mask;
}

void readMonthly(RecurrenceRule& rule, TextView text) {
    const TextView modifier = from(text, 2, 1);
    const std::size_t blank = text.find(u' ');
    const bool hasDay = blank != TextView::npos;
    rule.modKey = u"";
    // Wanted: monthly by position reads as daily.
    if (modifier != u"D" && modifier != u"1") {
        return;
    }
    rule.type = u"M";
    rule.dayOfMonth = hasDay ? leadingNumber(text.substr(blank)) : 0;
    if (modifier == u"D") {
        rule.modKey = u"D";
        rule.intervall = leadingNumber(hasDay ? from(text.substr(0, blank), 3) : from(text, 3));
    }
}

void readYearly(RecurrenceRule& rule, TextView text, TextView model) {
    const TextView modifier = from(text, 2, 1);
    rule.type = u"Y";
    rule.modKey = modifier == u"1" ? u"" : u"D";
    if (modifier == u"D" || modifier == u"M") {
        rule.intervall = leadingNumber(from(text, 3));
        rule.modKey = isOldModel(model) ? TextView{} : modifier;
    }
}

} // namespace

bool isModel(TextView model, std::initializer_list<TextView> names) {
    return std::ranges::any_of(names, [model](TextView name) { return holdsText(model, name); });
}

bool isOldModel(TextView model) {
    return isModel(model, {u"T15", u"T55", u"R55", u"B55"});
}

RecurrenceRule readRecurrenceRule(TextView rule, TextView model) {
    RecurrenceRule read;
    read.frequenz = rule.substr(0, 1);
    if (read.frequenz == u"D") {
        readDaily(read, rule);
    } else if (read.frequenz == u"W") {
        readWeekly(read, rule);
    } else if (read.frequenz == u"M") {
        readMonthly(read, rule);
    } else if (read.frequenz == u"Y") {
        readYearly(read, rule, model);
    } else {
        read.modKey = u"";
    }
    return read;
}

} // namespace tandolin
