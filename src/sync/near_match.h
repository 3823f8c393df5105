#pragma once

#include "store/tables.h"

#include <unordered_set>

namespace tandolin {

/// Entries of one side that stand in the way of a copy: the phone holds fewer characters than the
/// organizer, so an entry can be there in the other side's form and still be no pair. Copying it
/// again would add one more on every run.
class NearMatches {
public:
    /// Is there a row of the other side alone that equals the current row as the phone would hold
    /// it: equal start (anchor, kind and time for a series), kinds agree, the organizer's text cut
    /// as for the phone equals the phone's without regard to case and trailing blanks? Each found
    /// row stands for one entry only. What was held back so is noted.
    bool standsFor(Table<Calendar>& table);

private:
    std::unordered_set<Text> used_;
};

} // namespace tandolin
