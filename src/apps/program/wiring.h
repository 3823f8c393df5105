#pragma once

#include "apps/program/options.h"
#include "apps/program/report.h"
#include "log/noted_boxes.h"
#include "platform/language_mo/mo_languages.h"
#include "platform/screen_terminal/terminal_screen.h"
#include "platform/settings_toml/toml_settings.h"
#include "platform/system_posix/home_directory.h"
#include "platform/system_posix/lock_file.h"
#include "platform/system_posix/posix_locale.h"
#include "platform/system_posix/system_clock.h"

#include <iosfwd>
#include <optional>
#include <string>
#include <vector>

namespace tandolin::program {

/// The adapters of one run behind the ports, all but those of the two sides, as long as it lasts.
/// The program's state is fresh when it begins and when it ends.
class Wiring {
public:
    /// Both must outlive the object. What the run tells on the way goes to `errors`.
    Wiring(const Options& options, std::ostream& errors);
    Wiring(const Wiring&) = delete;
    Wiring& operator=(const Wiring&) = delete;
    ~Wiring();

    /// Takes the lock, reads the settings and lets the command line stand over them. False ends the
    /// start.
    bool loadSettings();

    /// What is wrong with a `--set`, if anything.
    std::optional<Text> applySets();

    /// The URI of a side: the option's, else the one of the settings under `key`.
    [[nodiscard]] std::optional<std::string> connection(const std::optional<std::string>& option,
                                                        TextView key) const;

    [[nodiscard]] const Clock& clock() const { return clock_; }

    void closeScreen() { screen_.close(); }

private:
    const Options& options_;
    platform::SystemClock clock_;
    platform::PosixLocale locale_;
    platform::TomlSettings settings_;
    platform::TerminalScreen screen_;
    NotedBoxes boxes_{screen_};
    platform::MoLanguages languages_;
    platform::LockFile lock_;
    platform::HomeDirectory files_;
};

/// The failures of the run so far, in their order, then another instance that is active.
std::vector<ReportedFailure> reportedFailures();

} // namespace tandolin::program
