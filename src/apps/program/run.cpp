#include "apps/program/run.h"

#include "apps/command_line.h"
#include "apps/program/backups.h"
#include "apps/program/copies.h"
#include "apps/program/inspect.h"
#include "apps/program/list_folders.h"
#include "apps/program/report.h"
#include "apps/program/restore.h"
#include "apps/program/stores.h"
#include "apps/program/wiring.h"
#include "apps/start_up.h"
#include "core/state.h"
#include "log/log_text.h"

#include <algorithm>
#include <array>
#include <optional>
#include <ostream>

namespace tandolin::program {

namespace {

constexpr const char* kNoWindow =
    "There is no window in this version: give a word: BOTH, VCAL or VCARD.";

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

void connectStores(Stores& stores, Copies& copies, const Around& around) {
    app.ports.makePhoneServer = [make = madeAround(stores.makePhone, around.phone), &copies] {
        return copies.recorded(make());
    };
    app.ports.makeOrganizer = madeAround(stores.makeOrganizer, around.organizer);
}

void warnOfUnknownWords(const Options& options, std::ostream& errors) {
    std::vector<Text> words;
    std::ranges::transform(options.words, std::back_inserter(words),
                           [](const std::string& word) { return fromUtf8(word); });
    for (const Text& word : unknownWords(words)) {
        errors << "warning: \"" << toUtf8(word) << "\" is no word of this program, ignored\n";
    }
}

int report(const Options& options, RunFacts facts, std::ostream& out, std::ostream& errors) {
    facts.failures = reportedFailures();
    facts.exit = exitStatus();
    if (options.json || options.quiet) {
        writeFailedRows(errors);
    }
    if (options.json) {
        writeJson(out, facts);
    } else if (!options.quiet && !isKill(options)) {
        writeSummary(out);
        errors << backupLine(facts.backup);
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
    wiring.closeScreen();
    if (app.run.usage) {
        errors << (app.run.usageReason.empty() ? kNoWindow + ("\n\n" + helpText())
                                               : toUtf8(app.run.usageReason) + '\n');
        return static_cast<int>(ExitStatus::usage);
    }
    return report(
        options,
        {phone.value_or(""), organizer.value_or(""), {}, ExitStatus::done, copies.directory()}, out,
        errors);
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
    if (options.listFolders) {
        return listFolders(options, out, errors, around);
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
