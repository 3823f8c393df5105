#pragma once

#include "core/ports/system.h"

#include <map>
#include <string_view>

namespace tandolin::platform {

/// The letters of a strftime pattern: "%d.%m.%Y" gives "dd.MM.yyyy", "%T" gives "HH:mm:ss".
Text lettersOf(TextView strftimePattern);

/// The locale number of a name like "de_DE.UTF-8@euro". C, POSIX and no name at all count as
/// German; 0x0409 for a language that is not in the list.
std::uint16_t localeNumberOf(std::string_view name);

/// The formats and the language of the user's environment: LC_ALL, else LC_TIME and LC_MESSAGES,
/// else LANG. Read once when it is made; the process's own locale is not touched.
class PosixLocale : public UserLocale {
public:
    PosixLocale();

    [[nodiscard]] std::optional<Text> info(LocaleItem item) const override;

    [[nodiscard]] std::uint16_t number() const override { return number_; }

private:
    std::map<LocaleItem, Text> answers_;
    std::uint16_t number_;
};

} // namespace tandolin::platform
