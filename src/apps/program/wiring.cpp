#include "apps/program/wiring.h"

#include "apps/program/user_directories.h"
#include "core/state.h"
#include "core/trap.h"
#include "log/log_model.h"
#include "store/tables.h"

#include <filesystem>
#include <ostream>

namespace tandolin::program {

namespace {

namespace fs = std::filesystem;

constexpr const char* kMachineSettings = "/etc/halverntandolin/settings.toml";

/// Language files of the installation, or of the build that the program lies in.
std::vector<fs::path> languageDirectories() {
    std::error_code error;
    const fs::path bin = fs::read_symlink("/proc/self/exe", error).parent_path();
    return {bin.parent_path() / "share/halverntandolin/Lng", bin.parent_path() / "Lng",
            "/usr/share/halverntandolin/Lng"};
}

/// The listener of the logic is a plain function, so what it fills is one value of the process.
struct Listening {
    std::vector<ReportedFailure> failures;
    std::ostream* errors = nullptr;
};

Listening listening;

void noteFailure(const Failure& failure, TextView message, Place place) {
    listening.failures.push_back({decimal(failure.Number), failureOnOneLine(failure, message),
                                  Text(place.module), Text(place.proc), failure.File,
                                  failure.Line});
    app.ports.screen.status->close();
    *listening.errors << failureLine(listening.failures.back()) << '\n' << std::flush;
}

void noteExplanation(TextView line) {
    *listening.errors << toUtf8(line) << '\n';
}

} // namespace

Wiring::Wiring(const Options& options, std::ostream& errors)
    : options_(options),
      settings_(options.settingsFile
                    ? fs::path(*options.settingsFile)
                    : userDirectory("XDG_CONFIG_HOME", ".config") / "settings.toml",
                kMachineSettings,
                options.dryRun ? platform::TomlSettings::Mode::readOnly
                               : platform::TomlSettings::Mode::readWrite),
      screen_(errors,
              options.quiet     ? platform::Chatter::quiet
              : options.verbose ? platform::Chatter::verbose
                                : platform::Chatter::normal,
              options.answer),
      languages_(languageDirectories()), lock_(stateDirectory()) {
    app = {};
    tables.clearAll();
    app.ports.settings = &settings_;
    app.ports.languages = &languages_;
    app.ports.screen = {&boxes_, &screen_, &screen_};
    app.ports.clock = &clock_;
    app.ports.locale = &locale_;
    app.ports.instance = &lock_;
    app.ports.files = &files_;
    app.core.GlobalSilentMode = kTrue;
    app.core.applicationTitle = tr(ids::kProgramTitle);
    app.core.failureListener = noteFailure;
    app.core.explain = options.verbose ? noteExplanation : nullptr;
    app.run.dryRun = options.dryRun;
    app.run.maxRemove = options.maxRemove;
    app.run.contactFolder = fromUtf8(options.contactFolder.value_or(""));
    app.phone.acceptEmptyPhone = options.acceptEmptyPhone;
    listening = {{}, &errors};
}

Wiring::~Wiring() {
    app = {};
}

bool Wiring::loadSettings() {
    return trapped({u"Main_Modul", u"Main"}, false, [this](bool& result) {
        app.run.startFailed = true;
        // Taken before the settings are read: a copy from before another run's end must never
        // be saved over what that run wrote. Whether it was free is asked later.
        attempt([this] { lock_.previousInstance(); });
        settings_.load();
        const fs::path home = options_.home ? fs::absolute(*options_.home)
                                            : userDirectory("XDG_DATA_HOME", ".local/share");
        const Text homeText = fromUtf8(home.string());
        settings_.seedFirstStart(clock_.now(),
                                 fromUtf8(userDirectory("XDG_DATA_HOME", ".local/share").string()));
        const bool homeStored =
            settings_.read(SettingsRoot::user, kSettingsKey, u"HomeDir").has_value();
        if (options_.home || !homeStored) {
            settings_.overrideSetting(u"HomeDir", homeText, clock_.now());
        }
        app.run.startFailed = false;
        result = true;
    });
}

std::optional<Text> Wiring::applySets() {
    for (const auto& [name, value] : options_.settings) {
        if (auto problem =
                settings_.overrideSetting(fromUtf8(name), fromUtf8(value), clock_.now())) {
            return problem;
        }
    }
    return std::nullopt;
}

std::optional<std::string> Wiring::connection(const std::optional<std::string>& option,
                                              TextView key) const {
    if (option) {
        return option;
    }
    const auto stored = settings_.connection(key);
    return stored ? std::optional(toUtf8(*stored)) : std::nullopt;
}

std::vector<ReportedFailure> reportedFailures() {
    std::vector<ReportedFailure> failures = listening.failures;
    if (app.run.otherInstance) {
        failures.push_back({decimal(failure_number::kInternal),
                            onOneLine(tr(ids::kAlreadyActive)),
                            u"Main_Modul",
                            u"Check4PrevInstance",
                            {},
                            0});
    }
    return failures;
}

} // namespace tandolin::program
