#pragma once

#include "core/date.h"
#include "core/text.h"

namespace tandolin {

/// How often, in words: "every day", "every 3 weeks".
Text everyUnits(DateUnit unit, std::int64_t count);

/// "every 3 days becomes every day"; empty where both say the same, 7 days being a week.
Text changedInterval(DateUnit unit, std::int64_t count, DateUnit newUnit, std::int64_t newCount);

/// A length of time in its largest whole unit: "15 minutes", "1 hour", "2 days". The sign is
/// dropped.
Text lengthInWords(std::int64_t minutes);

/// The same list as one sentence: "a; b"; empty parts are left out.
Text joinedSentences(std::initializer_list<Text> parts);

} // namespace tandolin
