#include "platform/organizer_folder/moved_rule.h"

#include "core/date.h"
#include "platform/organizer_folder/content_lines.h"
#include "platform/organizer_folder/ical_values.h"
#include "platform/organizer_folder/recurrence_rule.h"

#include <algorithm>
#include <array>
#include <optional>

namespace tandolin::ical {

namespace {

constexpr std::array<std::string_view, 7> kDays{"SU", "MO", "TU", "WE", "TH", "FR", "SA"};

/// One start of the series, in parts.
struct Start {
    Seconds day = 0; ///< whole days
    Civil civil;

    explicit Start(Seconds wall) : day(floorDiv(wall, kDay)), civil(civilOf(dateOfWall(wall))) {}

    [[nodiscard]] int weekday() const { return tandolin::weekday(dateOfWall(day * kDay)) - 1; }

    /// 1 for the first such week day of its month.
    [[nodiscard]] int place() const { return (civil.day - 1) / 7 + 1; }

    [[nodiscard]] bool isLastOfMonth() const {
        return civilOf(dateOfWall((day + 7) * kDay)).month != civil.month;
    }
};

class Mover {
public:
    Mover(const RuleText& rule, Start before, Start after)
        : rule_(rule), before_(before), after_(after) {}

    [[nodiscard]] std::string moved(std::string_view name, std::string_view value) const {
        const auto single = [&](std::string_view part, int before, int after) {
            return sameName(name, part) && wholeNumberOf(value, 0, 366) == before
                       ? std::optional(std::to_string(after))
                       : std::nullopt;
        };
        for (const auto& [part, field] :
             {std::pair{"BYMONTH", &Civil::month}, std::pair{"BYMONTHDAY", &Civil::day},
              std::pair{"BYHOUR", &Civil::hour}, std::pair{"BYMINUTE", &Civil::minute}}) {
            if (const auto number = single(part, before_.civil.*field, after_.civil.*field)) {
                return *number;
            }
        }
        if (sameName(name, "BYDAY")) {
            return movedDays(value);
        }
        if (sameName(name, "BYSETPOS") && goesByPlace() && rule_.bySetPos.size() == 1) {
            return std::to_string(movedPlace(rule_.bySetPos.front()));
        }
        return std::string(value);
    }

private:
    /// "The third Wednesday", and the series does begin on one.
    [[nodiscard]] bool goesByPlace() const {
        const bool ofMonth = rule_.frequency == Frequency::monthly ||
                             (rule_.frequency == Frequency::yearly && !rule_.byMonth.empty());
        return ofMonth && rule_.byDay.size() == 1 &&
               rule_.byDay.front().weekday == before_.weekday() &&
               (rule_.byDay.front().position != 0 || rule_.bySetPos.size() == 1);
    }

    [[nodiscard]] int movedPlace(int place) const {
        return place == -1 && after_.isLastOfMonth() ? -1 : after_.place();
    }

    [[nodiscard]] std::string movedDays(std::string_view value) const {
        if (before_.day == after_.day) {
            return std::string(value);
        }
        if (rule_.frequency == Frequency::weekly || rule_.frequency == Frequency::daily) {
            return turnedDays();
        }
        if (!goesByPlace()) {
            return std::string(value);
        }
        const int place = rule_.byDay.front().position;
        return (place == 0 ? "" : std::to_string(movedPlace(place))) +
               std::string(kDays.at(static_cast<std::size_t>(after_.weekday())));
    }

    [[nodiscard]] std::string turnedDays() const {
        const Seconds shift = after_.day - before_.day;
        std::string list;
        for (const RuleDay& day : rule_.byDay) {
            const Seconds turned = day.weekday + shift;
            list += list.empty() ? "" : ",";
            list += kDays.at(static_cast<std::size_t>(turned - floorDiv(turned, 7) * 7));
        }
        return list;
    }

    const RuleText& rule_;
    Start before_;
    Start after_;
};

} // namespace

std::string movedRule(std::string_view rule, Seconds oldStart, Seconds newStart,
                      const std::function<std::string(std::string_view)>& movedTime) {
    const auto read = ruleOf(rule);
    if (!read) {
        return std::string(rule);
    }
    const Mover mover(*read, Start(oldStart), Start(newStart));
    std::string result;
    while (!rule.empty()) {
        const std::size_t end = std::min(rule.find(';'), rule.size());
        const std::string_view part = rule.substr(0, end);
        const std::size_t sign = std::min(part.find('='), part.size());
        const std::string_view name = withoutBlanks(part.substr(0, sign));
        const std::string_view value = part.substr(std::min(sign + 1, part.size()));
        result += part.substr(0, std::min(sign + 1, part.size()));
        result += sameName(name, "UNTIL") ? movedTime(value) : mover.moved(name, value);
        result += rule.substr(end, 1);
        rule.remove_prefix(std::min(end + 1, rule.size()));
    }
    return result;
}

} // namespace tandolin::ical
