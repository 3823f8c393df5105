#pragma once

// A phone and an organizer told as lines of text, a run over them, and what they hold afterwards as
// lines again:
//
//   phone      "3 M 2026-11-22 09:00 Zahnarzt"        number, kind, start, text
//   organizer  "u1 B 2026-11-23 10:00 Kino |weekly"   identifier, kind, start, subject, rule
//
// Kinds: M memo, B meeting, A anniversary, C phone call. A rule of the phone is written as in its
// object ("|W1 #0").

#include "log/log_model.h"
#include "phone/object_store.h"
#include "phone/phone_info.h"
#include "support/fake_organizer.h"
#include "support/fake_phone.h"
#include "support/fresh_program.h"
#include "sync/autosync.h"

#include <array>
#include <utility>

namespace tandolin::testing {

using Lines = std::vector<std::string>;

} // namespace tandolin::testing

template <>
struct doctest::StringMaker<tandolin::testing::Lines> {
    static String convert(const tandolin::testing::Lines& lines) {
        std::string all;
        for (const std::string& line : lines) {
            all += "\n    " + line;
        }
        return all.c_str();
    }
};

namespace tandolin::testing {

struct NamedKind {
    char letter;
    const char* category;
};

using Modes = std::initializer_list<std::int16_t>;

inline constexpr std::array kKinds{NamedKind{'M', "MISCELLANEOUS"}, NamedKind{'B', "MEETING"},
                                   NamedKind{'A', "ANNIVERSARY"}, NamedKind{'C', "PHONE CALL"}};

inline constexpr std::array kRules{
    std::pair{"daily", OlRecurrence::daily}, std::pair{"weekly", OlRecurrence::weekly},
    std::pair{"monthly", OlRecurrence::monthly}, std::pair{"yearly", OlRecurrence::yearly}};

struct EntryLine {
    std::string key;
    char kind = 'M';
    Date start;
    std::string text;
    std::string rule;

    explicit EntryLine(const std::string& line) {
        const std::size_t blank = line.find(' ');
        key = line.substr(0, blank);
        kind = line.at(blank + 1);
        const auto part = [&](std::size_t from, std::size_t length) {
            return std::stoi(line.substr(blank + from, length));
        };
        start = at(part(3, 4), part(8, 2), part(11, 2), part(14, 2), part(17, 2));
        text = line.substr(blank + 20);
        if (const std::size_t bar = text.find(" |"); bar != std::string::npos) {
            rule = text.substr(bar + 2);
            text.resize(bar);
        }
    }
};

inline std::string objectOf(const EntryLine& entry) {
    const auto compact = [](Date date) { return toUtf8(compactDateTime(date, date)); };
    const auto kind = std::ranges::find(kKinds, entry.kind, &NamedKind::letter);
    return "BEGIN:VCALENDAR\r\nVERSION:1.0\r\nBEGIN:VEVENT\r\nCATEGORIES:" +
           std::string(kind->category) + "\r\nDTSTART:" + compact(entry.start) +
           "\r\nDTEND:" + compact(dateFromSeconds(entry.start.seconds() + 3600)) + "\r\n" +
           (entry.rule.empty() ? "" : "RRULE:" + entry.rule + "\r\n") +
           "DESCRIPTION:" + entry.text + "\r\nEND:VEVENT\r\nEND:VCALENDAR\r\n";
}

/// The value behind "NAME:" in an object.
inline std::string propertyOf(const std::string& object, const std::string& name) {
    const std::size_t at = object.find("\r\n" + name + ":");
    if (at == std::string::npos) {
        return {};
    }
    const std::size_t from = at + name.size() + 3;
    return object.substr(from, object.find("\r\n", from) - from);
}

inline std::string lineOf(const std::string& key, char kind, Date start, const std::string& text,
                          const std::string& rule) {
    return key + ' ' + kind + ' ' + toUtf8(isoDate(start)) + ' ' +
           toUtf8(isoTime(start)).substr(0, 5) + ' ' + text + (rule.empty() ? "" : " |" + rule);
}

/// What an object of the phone says.
struct Told {
    char kind = 'M';
    Date start;
    Date end;
    std::string text;
    std::string rule; ///< as in the object
    std::string alarm;

    friend bool operator==(const Told&, const Told&) = default;

    [[nodiscard]] bool isSeries() const { return !rule.empty(); }

    [[nodiscard]] std::string line() const { return lineOf("", kind, start, text, rule); }
};

inline Date dateOfObject(const std::string& value) {
    const auto part = [&](std::size_t from, std::size_t length) {
        return std::stoi(value.substr(from, length));
    };
    return value.empty() ? Date{0}
                         : at(part(0, 4), part(4, 2), part(6, 2), part(9, 2), part(11, 2));
}

inline Told toldBy(const std::string& object) {
    const auto kind = std::ranges::find(kKinds, propertyOf(object, "CATEGORIES"),
                                        [](const NamedKind& k) { return std::string(k.category); });
    return {.kind = kind == kKinds.end() ? '?' : kind->letter,
            .start = dateOfObject(propertyOf(object, "DTSTART")),
            .end = dateOfObject(propertyOf(object, "DTEND")),
            .text = propertyOf(object, "DESCRIPTION"),
            .rule = propertyOf(object, "RRULE"),
            .alarm = propertyOf(object, "AALARM")};
}

/// How an item repeats, empty for a single one.
inline std::string ruleOf(const AppointmentFacts& item) {
    const auto rule = std::ranges::find(kRules, item.Pattern.RecurrenceType,
                                        [](const auto& named) { return named.second; });
    return item.IsRecurring ? rule->first : "";
}

inline std::string lineOfItem(const AppointmentFacts& item) {
    return lineOf(toUtf8(item.EntryID), item.MeetingStatus == 1 ? 'B' : 'M', item.Start,
                  toUtf8(item.Subject), ruleOf(item));
}

struct SyncWorld : FreshProgram {
    FakePhone phone;
    FakeOrganizer organizer;

    SyncWorld() {
        phone.connect();
        organizer.connect();
        LogInit();
        app.core.GlobalADOAvailable = kTrue;
        app.settings.SyncTyp = 4;
        app.settings.SyncEintraegevonbis = u"2026-11-21\t2026-12-31 23:59:59";
    }

    void fill(const Lines& phoneLines, const Lines& organizerLines) {
        for (const std::string& line : phoneLines) {
            phone.files[Text(FakePhone::kCalendar) + fromUtf8(EntryLine(line).key) + u".vcs"] =
                objectOf(EntryLine(line));
        }
        for (const std::string& line : organizerLines) {
            const EntryLine entry(line);
            AppointmentFacts& item =
                organizer.add(fromUtf8(entry.key), entry.start, fromUtf8(entry.text));
            item.MeetingStatus = entry.kind == 'B' ? 1 : 0;
            for (const auto& [name, kind] : kRules) {
                if (entry.rule == name) {
                    organizer.makeSeries(item, kind);
                }
            }
        }
    }

    /// One run as it begins after the start: the status files are read, the counters known.
    void run(void (*sync)() = SilentAutoSyncvCal) {
        const std::int64_t maxRemove = app.run.maxRemove;
        app.run = {};
        app.run.maxRemove = maxRemove;
        LogInit();
        PXDInfoAll(phoneServer(), app.phone.GlobalMobilePaths);
        sync();
    }

    /// The phone's objects of one kind, by number.
    [[nodiscard]] std::map<int, std::string> objectsIn(TextView directory) const {
        std::map<int, std::string> objects;
        for (const auto& [path, bytes] : phone.files) {
            if (path.starts_with(directory) &&
                path.ends_with(u'.' + FakePhone::extensionOf(directory))) {
                objects[static_cast<int>(leadingNumber(path.substr(directory.size())))] = bytes;
            }
        }
        return objects;
    }

    [[nodiscard]] Lines onPhone() const {
        Lines lines;
        for (const auto& [number, bytes] : objectsIn(FakePhone::kCalendar)) {
            lines.push_back(std::to_string(number) + toldBy(bytes).line());
        }
        return lines;
    }

    [[nodiscard]] Lines inOrganizer() const {
        Lines lines;
        for (const auto& [uid, item] : organizer.items) {
            lines.push_back(lineOfItem(item));
        }
        return lines;
    }

    /// Objects stored or removed and items saved or removed so far.
    [[nodiscard]] std::ptrdiff_t writes() const {
        return phone.callsOf(u"PXDWrite") + phone.callsOf(u"PXDDelete") +
               organizer.callsOf(u"Save") + organizer.callsOf(u"Delete") +
               organizer.callsOf(u"SaveContact") + organizer.callsOf(u"DeleteContact");
    }
};

} // namespace tandolin::testing
