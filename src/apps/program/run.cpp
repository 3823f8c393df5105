#include "apps/program/run.h"

#include "apps/command_line.h"
#include "apps/program/backups.h"
#include "apps/program/copies.h"
#include "apps/program/inspect.h"
#include "apps/program/report.h"
#include "apps/program/restore.h"
#include "apps/program/stores.h"
#include "apps/program/user_directories.h"
#include "apps/start_up.h"
#include "core/state.h"
#include "core/trap.h"
#include "log/log_model.h"
#include "log/log_text.h"
#include "log/noted_boxes.h"
#include "platform/language_mo/mo_languages.h"
#include "platform/screen_terminal/terminal_screen.h"
#include "platform/settings_toml/toml_settings.h"
#include "platform/system_posix/home_directory.h"
#include "platform/system_posix/lock_file.h"
#include "platform/system_posix/posix_locale.h"
#include "platform/system_posix/system_clock.h"
#include "store/tables.h"

#include <algorithm>
#include <array>
#include <filesystem>
#include <optional>
#include <ostream>

namespace tandolin::program {

namespace {

namespace fs = std::filesystem;

constexpr const char* kNoWindow =
    "There is no window in this version: give a word: BOTH, VCAL or VCARD.";
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

std::string joined(const std::vector<std::string>& words) {
    std::string line;
    for (const std::string& word : words) {
        line += word + " ";
    }
    return line;
}

bool hasWord(const std::vector<std::string>& words, TextView word) {
    return std::ranges::any_of(
        words, [word](const std::string& w) { return sameText(fromUtf8(w), word); });
}

/// A start that ends another instance and does nothing else.
bool isKill(const Options& options) {
    return hasWord(options.words, u"KILL");
}

/// Words of a later version, and starts that need a window.
std::optional<int> endsAtOnce(const Options& options, std::ostream& errors) {
    if (isKill(options)) {
        return std::nullopt;
    }
    if (hasWord(options.words, u"OPTIONS")) {
        errors << "OPTIONS is not available in this version; nothing was read or written\n";
        return 2;
    }
    const bool isRun =
        std::ranges::any_of(std::array{u"BOTH", u"VCAL", u"VCARD"},
                            [&](const char16_t* word) { return hasWord(options.words, word); });
    if (!isRun) {
        errors << kNoWindow << "\n\n" << helpText();
        return 2;
    }
    return std::nullopt;
}

/// The adapters of one run, as long as it lasts.
class Wiring {
public:
    Wiring(const Options& options, std::ostream& errors)
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
        app.phone.acceptEmptyPhone = options.acceptEmptyPhone;
        listening = {{}, &errors};
    }

    Wiring(const Wiring&) = delete;
    Wiring& operator=(const Wiring&) = delete;

    ~Wiring() { app = {}; }

    /// Reads the settings and lets the command line stand over them. False ends the start.
    bool loadSettings() {
        return trapped({u"Main_Modul", u"Main"}, false, [this](bool& result) {
            app.run.startFailed = true;
            // Taken before the settings are read: a copy from before another run's end must never
            // be saved over what that run wrote. Whether it was free is asked later.
            attempt([this] { lock_.previousInstance(); });
            settings_.load();
            const fs::path home = options_.home ? fs::absolute(*options_.home)
                                                : userDirectory("XDG_DATA_HOME", ".local/share");
            const Text homeText = fromUtf8(home.string());
            settings_.seedFirstStart(
                clock_.now(), fromUtf8(userDirectory("XDG_DATA_HOME", ".local/share").string()));
            const bool homeStored =
                settings_.read(SettingsRoot::user, kSettingsKey, u"HomeDir").has_value();
            if (options_.home || !homeStored) {
                settings_.overrideSetting(u"HomeDir", homeText, clock_.now());
            }
            app.run.startFailed = false;
            result = true;
        });
    }

    /// What is wrong with a `--set`, if anything.
    std::optional<Text> applySets() {
        for (const auto& [name, value] : options_.settings) {
            if (auto problem =
                    settings_.overrideSetting(fromUtf8(name), fromUtf8(value), clock_.now())) {
                return problem;
            }
        }
        return std::nullopt;
    }

    [[nodiscard]] std::optional<std::string> connection(const std::optional<std::string>& option,
                                                        TextView key) const {
        if (option) {
            return option;
        }
        const auto stored = settings_.connection(key);
        return stored ? std::optional(toUtf8(*stored)) : std::nullopt;
    }

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

void connectStores(Stores& stores, Copies& copies, const Around& around) {
    app.ports.makePhoneServer = [make = stores.makePhone, around = around.phone, &copies] {
        auto phone = make();
        return copies.recorded(around ? around(std::move(phone)) : std::move(phone));
    };
    app.ports.makeOrganizer = [make = stores.makeOrganizer, around = around.organizer] {
        auto organizer = make();
        return around ? around(std::move(organizer)) : std::move(organizer);
    };
}

void warnOfUnknownWords(const Options& options, std::ostream& errors) {
    std::vector<Text> words;
    std::ranges::transform(options.words, std::back_inserter(words),
                           [](const std::string& word) { return fromUtf8(word); });
    for (const Text& word : unknownWords(words)) {
        errors << "warning: \"" << toUtf8(word) << "\" is no word of this program, ignored\n";
    }
}

int report(const Options& options, RunFacts facts, std::ostream& out) {
    facts.failures = listening.failures;
    if (app.run.otherInstance) {
        facts.failures.push_back({decimal(failure_number::kInternal),
                                  onOneLine(tr(ids::kAlreadyActive)),
                                  u"Main_Modul",
                                  u"Check4PrevInstance",
                                  {},
                                  0});
    }
    facts.exit = exitStatus();
    if (options.json || options.quiet) {
        writeFailedRows(*listening.errors);
    }
    if (options.json) {
        writeJson(out, facts);
    } else if (!options.quiet && !isKill(options)) {
        writeSummary(out);
        *listening.errors << backupLine(facts.backup);
    }
    return static_cast<int>(facts.exit);
}

int silentRun(const std::string& programPath, const std::vector<std::string>& arguments,
              const Options& options, std::ostream& out, std::ostream& errors,
              const Around& around) {
    Wiring wiring(options, errors);
    app.core.programPath = fromUtf8(programPath);
    app.core.commandLine = fromUtf8(joined(options.words));
    app.core.callLine = fromUtf8(joined(arguments));
    // A side that this version does not have is refused before anything is read.
    if (const auto problem =
            openStores(options.phone, options.organizer, options.dryRun, wiring.clock()).problem) {
        errors << *problem << '\n';
        return 2;
    }
    if (const auto problem = wiring.applySets()) {
        errors << "--set " << toUtf8(*problem) << '\n';
        return 2;
    }
    const bool loaded = wiring.loadSettings();
    const auto phone = wiring.connection(options.phone, u"phone");
    const auto organizer = wiring.connection(options.organizer, u"organizer");
    Stores stores;
    Copies copies(!options.dryRun && !options.noBackup, stores, wiring.clock());
    stores = openStores(phone, organizer, options.dryRun, wiring.clock(), copies.observer());
    if (stores.problem) {
        errors << *stores.problem << '\n';
        return 2;
    }
    if (options.verbose) {
        errors << "phone " << phone.value_or("-") << ", organizer " << organizer.value_or("-")
               << '\n';
    }
    if (loaded) {
        connectStores(stores, copies, around);
        Main();
        copies.finish();
    } else {
        LogInitlogSummaryform();
    }
    if (app.run.usage) {
        errors << kNoWindow << "\n\n" << helpText();
        return static_cast<int>(ExitStatus::usage);
    }
    wiring.closeScreen();
    return report(
        options,
        {phone.value_or(""), organizer.value_or(""), {}, ExitStatus::done, copies.directory()},
        out);
}

int command(const std::string& programPath, const std::vector<std::string>& arguments,
            std::ostream& out, std::ostream& errors, const Around& around) {
    const Parsed parsed = parseOptions(arguments);
    if (parsed.exit) {
        (parsed.textIsHelp ? out : errors) << parsed.text << (parsed.textIsHelp ? "" : "\n");
        return *parsed.exit;
    }
    const Options& options = parsed.options;
    if (!options.quiet) {
        warnOfUnknownWords(options, errors);
    }
    if (options.inspect) {
        return inspect(options.files, options.emit, out, errors);
    }
    if (options.listBackups) {
        return listBackups(options, out, errors);
    }
    if (options.restore) {
        return restoreRun(options, out, errors, around);
    }
    if (const auto status = endsAtOnce(options, errors)) {
        return *status;
    }
    return silentRun(programPath, arguments, options, out, errors, around);
}

} // namespace

int runProgram(const std::string& programPath, const std::vector<std::string>& arguments,
               std::ostream& out, std::ostream& errors, const Around& around) {
    const int status = command(programPath, arguments, out, errors, around);
    out.flush();
    if (out) {
        return status;
    }
    errors << "the result could not be written to standard output\n";
    return std::max(status, static_cast<int>(ExitStatus::incomplete));
}

} // namespace tandolin::program
