#pragma once

// How values are shown when a check fails.

#include "core/date.h"
#include "core/flag.h"
#include "core/text.h"

#include <doctest/doctest.h>

#include <array>
#include <tuple>

namespace doctest {

/// The name of a case, which would be shown as an address.
template <>
struct StringMaker<const char*> {
    static String convert(const char* text) { return text; }
};

template <>
struct StringMaker<tandolin::Text> {
    static String convert(const tandolin::Text& text) { return tandolin::toUtf8(text).c_str(); }
};

template <>
struct StringMaker<tandolin::TextView> {
    static String convert(tandolin::TextView text) { return tandolin::toUtf8(text).c_str(); }
};

template <>
struct StringMaker<tandolin::Date> {
    static String convert(tandolin::Date date) {
        return tandolin::toUtf8(tandolin::isoDateTime(date)).c_str();
    }
};

template <>
struct StringMaker<tandolin::Flag> {
    static String convert(tandolin::Flag flag) { return flag ? "true" : "false"; }
};

} // namespace doctest

namespace tandolin::testing {

/// A date from its parts, for tests: at(2026, 11, 21, 9, 0).
inline Date at(int year, int month, int day, int hour = 0, int minute = 0, int second = 0) {
    return dateOf({year, month, day, hour, minute, second}).value();
}

} // namespace tandolin::testing
