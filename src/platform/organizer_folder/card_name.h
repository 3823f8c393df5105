#pragma once

// The name that a card shows as a whole, and when it follows a change of the parts.

#include <optional>
#include <string>
#include <string_view>

namespace tandolin::vcard {

struct NameParts {
    std::string last;
    std::string first;
    std::string middle;
    std::string prefix;
    std::string suffix;
    /// What stands for a name that has neither a first nor a last one.
    std::string substitute;
};

/// "Eva Müller"; one alone without a blank.
std::string fullName(std::string_view first, std::string_view last);

/// The whole name in its form for the new parts, where it was built from the old ones. Nothing when
/// it was not, when it stays as it is, and when nothing would be left of it.
std::optional<std::string> renamed(std::string_view whole, const NameParts& before,
                                   const NameParts& after);

} // namespace tandolin::vcard
