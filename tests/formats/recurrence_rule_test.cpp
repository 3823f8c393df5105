#include "formats/recurrence_rule.h"

#include "formats/row_text.h"
#include "formats/rule_losses.h"
#include "formats/series_words.h"
#include "support/fresh_program.h"

#include <sstream>

using namespace tandolin;
using namespace tandolin::testing;

namespace {

std::string shown(const RecurrenceRule& rule) {
    const auto number = [](const std::optional<std::int64_t>& value) {
        return value ? decimal(*value) : Text(u"-");
    };
    return toUtf8(Text(rule.type) + u' ' + decimal(rule.intervall) + u" '" +
                  (rule.modKey ? Text(*rule.modKey) : Text(u"-")) + u"' " +
                  number(rule.weekDayMask) + u' ' + number(rule.dayOfMonth));
}

} // namespace

TEST_CASE("rules as phones write them: tests/data/phone-rules.txt") {
    std::istringstream file(fileBytes(TANDOLIN_TEST_DATA "/phone-rules.txt"));
    int checked = 0;
    for (std::string line; std::getline(file, line);) {
        CAPTURE(line);
        const std::size_t arrow = line.find(" -> ");
        const std::size_t lacks = line.find(" lacks ");
        if (line.starts_with('#') || (arrow == std::string::npos && lacks == std::string::npos)) {
            continue;
        }
        ++checked;
        if (lacks != std::string::npos) {
            const Text losses = lossesOfRule(fromUtf8(line.substr(0, lacks)), u"", at(2027, 2, 15));
            CHECK((losses.empty() ? "nothing" : toUtf8(losses)) == line.substr(lacks + 7));
            continue;
        }
        const std::size_t bracket = std::min(line.find(" ["), arrow);
        const Text written = fromUtf8(line.substr(0, bracket));
        const Text model = fromUtf8(line.substr(bracket, arrow - bracket));
        const RecurrenceRule rule = readRecurrenceRule(written, model);
        CHECK(shown(rule) == line.substr(arrow + 4));
        CHECK(rule.frequenz == written.substr(0, 1));
    }
    CHECK(checked > 45);
}

TEST_CASE("a length of time is told in its largest whole unit") {
    CHECK(lengthInWords(-1) == u"1 minute");
    CHECK(lengthInWords(90) == u"90 minutes");
    CHECK(lengthInWords(120) == u"2 hours");
    CHECK(lengthInWords(1440) == u"1 day");
}
