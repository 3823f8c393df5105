#include "apps/program/options.h"

#include "apps/exit_status.h"
#include "core/text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <array>
#include <cctype>
#include <functional>
#include <span>

namespace tandolin::program {

namespace {

constexpr const char* kVersion = "halverntandolin 0.1.0";

constexpr const char* kFooter = R"(Words (any case, any place):
  BOTH          one AutoSync of the calendar, then of the contacts
  VCAL          one AutoSync of the calendar
  VCARD         one AutoSync of the contacts
  NOORG         run without the organizer
  D             show every object that is sent or received
  DEBUG         write the trace TDLDebug.txt into the home directory
  CALLER=OL     lets the run be ended by another start with KILL
  KILL          ends a run that was started with CALLER=OL, and nothing else
  TIMER=n

Example:
  halverntandolin --phone dir:PHONE --organizer folder:ORG BOTH

Before its first write a run copies both sides; --list-backups shows the copies, --restore DIR
undoes the run (exit 1 when something was changed since and is left alone).
What each mode copies, removes and cuts: )" TANDOLIN_DOCUMENTS R"(/what-travels.md

Exit status: 0 done; 1 done, but something stayed behind or failed; 2 usage; 3 phone, 4 organizer
not reached or not read (nothing was written); 5 stopped; 6 another instance is active; 7 the start
failed.)";

/// Options that come with a later version; each is refused with one sentence, nothing is touched.
constexpr std::array kNotBuilt{"--list-ports", "--test-phone"};

bool isOption(const std::string& argument) {
    return argument.starts_with("--");
}

Parsed usage(std::string text) {
    Parsed parsed;
    parsed.exit = static_cast<int>(ExitStatus::usage);
    parsed.text = std::move(text);
    return parsed;
}

/// Moves the files behind --inspect out of the way of the option parser.
std::vector<std::string> takeFiles(const std::vector<std::string>& arguments, Options& options) {
    std::vector<std::string> rest;
    for (const std::string& argument : arguments) {
        if (options.inspect && !isOption(argument)) {
            options.files.push_back(argument);
            continue;
        }
        const std::string name = lowerAscii(argument.substr(0, argument.find('=')));
        if (name != "--inspect") {
            rest.push_back(argument);
            continue;
        }
        options.inspect = true;
        if (argument.size() > name.size()) {
            options.files.push_back(argument.substr(name.size() + 1));
        }
    }
    return rest;
}

void define(CLI::App& cli, Options& options, std::vector<std::string>& sets, std::string& limit) {
    cli.set_help_flag("--help", "show this help");
    cli.set_version_flag("--version", kVersion);
    cli.footer(kFooter);
    cli.add_option("--phone", options.phone, "the phone: dir:PATH");
    cli.add_option("--organizer", options.organizer,
                   "the organizer: folder:PATH[?calendar=DIR&contacts=DIR] or none");
    cli.add_option("--settings", options.settingsFile, "the user's settings file");
    cli.add_option("--home", options.home, "directory of log, trace and language files");
    cli.add_option("--set", sets, "NAME=VALUE stands over one setting for this run")
        ->allow_extra_args(false);
    cli.add_flag("--dry-run", options.dryRun, "show what a run would do; write nothing");
    cli.add_flag("--json", options.json, "one JSON document instead of the summary");
    cli.add_flag("--inspect", options.inspect,
                 "FILE... : read files as phone objects and print their fields");
    cli.add_flag("--emit", options.emit, "with --inspect: print the object as it would be sent");
    cli.add_flag("--accept-empty-phone", options.acceptEmptyPhone,
                 "a phone without entries is a phone, not a failure");
    cli.add_option("--answer", options.answer, "answer to questions: yes, no or cancel")
        ->check(CLI::IsMember({"yes", "no", "cancel"}, CLI::ignore_case));
    cli.add_flag("--no-backup", options.noBackup, "no copies before the first write");
    cli.add_option(
        "--restore", options.restore,
        "DIR or its name: undo the run that made this copy; with --dry-run only show it");
    cli.add_option("--only", options.only,
                   "with --restore: phone, organizer, or the name of one entry's file or its UID");
    cli.add_flag("--list-backups", options.listBackups, "the copies there are, newest first");
    cli.add_flag("--list-folders", options.listFolders,
                 "the organizer's contact folders, the one in use marked");
    cli.add_option("--contact-folder", options.contactFolder,
                   "NAME, Parent\\Name or path: work on this contact folder from now on");
    cli.add_option("--max-remove", limit,
                   "stop before the first write when more than N (or all) would be removed");
    cli.add_flag("--quiet", options.quiet, "failures only");
    cli.add_flag("--verbose", options.verbose, "also say why entries did not pair");
    cli.add_option("WORDS", options.words, "what to do, see below");
    cli.allow_extras(); // "-x" is a word like any other; only "--" begins an option
    for (CLI::Option* option : cli.get_options()) {
        if (option->nonpositional()) {
            option->ignore_case();
        }
    }
}

std::optional<std::string> takeSets(const std::vector<std::string>& sets, Options& options) {
    for (const std::string& set : sets) {
        const auto equals = set.find('=');
        if (equals == std::string::npos) {
            return "--set " + set + ": NAME=VALUE is needed";
        }
        options.settings.emplace_back(set.substr(0, equals), set.substr(equals + 1));
    }
    return std::nullopt;
}

std::optional<std::string> takeLimit(const std::string& limit, Options& options) {
    if (limit.empty() || lowerAscii(limit) == "all") {
        return std::nullopt;
    }
    const bool digits = std::ranges::all_of(limit, [](unsigned char c) { return std::isdigit(c); });
    if (!digits || limit.size() > 9) {
        return "--max-remove " + limit + ": a number or \"all\" is needed";
    }
    options.maxRemove = std::stoll(limit);
    return std::nullopt;
}

constexpr std::array kWithRestore{"--only",      "--phone",      "--organizer", "--dry-run",
                                  "--no-backup", "--max-remove", "--json",      "--quiet"};
constexpr std::array kWithListBackups{"--json", "--quiet"};
constexpr std::array kWithListFolders{"--organizer", "--json", "--quiet"};
/// What may stand in every call of a script: without effect, and no mistake.
constexpr std::array kWithAll{"--settings", "--home", "--verbose"};

/// An option that is a command of its own, and what has a meaning beside it.
struct Command {
    const char* name;
    std::span<const char* const> options;
};

constexpr std::array kCommands{Command{"--restore", kWithRestore},
                               Command{"--list-backups", kWithListBackups},
                               Command{"--list-folders", kWithListFolders}};

/// The first option that would have no effect beside the command.
std::optional<std::string> firstWithoutMeaning(const CLI::App& cli, const Command& command) {
    for (const CLI::Option* option : cli.get_options()) {
        const std::string name = option->get_name();
        const auto isIn = [&name](const auto& names) {
            return std::ranges::find(names, name) != names.end();
        };
        if (option->count() > 0 && option->nonpositional() && name != command.name &&
            !isIn(command.options) && !isIn(kWithAll)) {
            return name;
        }
    }
    return std::nullopt;
}

/// True when the option is there and its value is not: that must never count as not given.
bool isEmpty(const CLI::App& cli, const char* name, const std::optional<std::string>& value) {
    return cli.count(name) > 0 && value.value_or("").empty();
}

/// A command of its own: what stands beside it must not be taken for a run.
std::optional<std::string> commandsThatClash(const CLI::App& cli, const Options& options) {
    std::vector<Command> commands;
    std::ranges::copy_if(kCommands, std::back_inserter(commands),
                         [&cli](const Command& command) { return cli.count(command.name) > 0; });
    if (commands.empty()) {
        return std::nullopt;
    }
    const std::string name = commands.front().name;
    if (commands.size() > 1) {
        return name + " and " + commands[1].name + " are two commands; give one";
    }
    if (!options.words.empty() || options.inspect) {
        return name + " is a command of its own: no words and no --inspect beside it";
    }
    const auto idle = firstWithoutMeaning(cli, commands.front());
    return idle ? std::optional(*idle + " has no meaning beside " + name) : std::nullopt;
}

/// The names of the settings that `--contact-folder` chooses.
bool isFolderSetting(const std::string& name) {
    return name.starts_with("Folder");
}

std::optional<std::string> valuesThatMiss(const CLI::App& cli, const Options& options) {
    if (cli.count("--only") > 0 && cli.count("--restore") == 0) {
        return "--only goes with --restore DIR";
    }
    if (isEmpty(cli, "--only", options.only)) {
        return "--only needs phone, organizer, or the name of an entry's file or its UID";
    }
    if (isEmpty(cli, "--restore", options.restore)) {
        return "--restore needs the directory of a copy; --list-backups shows them";
    }
    if (isEmpty(cli, "--contact-folder", options.contactFolder)) {
        return "--contact-folder needs the name of a folder; --list-folders shows them";
    }
    const bool setToo = std::ranges::any_of(
        options.settings, [](const auto& setting) { return isFolderSetting(setting.first); });
    if (options.contactFolder && setToo) {
        return "--contact-folder and --set both choose the contact folder; give one";
    }
    return std::nullopt;
}

std::optional<std::string> namesNotBuilt(const std::vector<std::string>& arguments) {
    for (const std::string& argument : arguments) {
        const std::string name = lowerAscii(argument.substr(0, argument.find('=')));
        if (std::ranges::find(kNotBuilt, name) != kNotBuilt.end()) {
            return name + " is not available in this version; nothing was read or written";
        }
    }
    return std::nullopt;
}

} // namespace

std::string helpText() {
    CLI::App cli{"Keeps calendar and contacts of a mobile phone in step with an organizer.",
                 "halverntandolin"};
    Options options;
    std::vector<std::string> sets;
    std::string limit;
    define(cli, options, sets, limit);
    return cli.help();
}

Parsed parseOptions(const std::vector<std::string>& arguments) {
    Parsed parsed;
    std::vector<std::string> rest = takeFiles(arguments, parsed.options);
    if (const auto refused = namesNotBuilt(rest)) {
        return usage(*refused);
    }
    CLI::App cli{"Keeps calendar and contacts of a mobile phone in step with an organizer.",
                 "halverntandolin"};
    std::vector<std::string> sets;
    std::string limit;
    define(cli, parsed.options, sets, limit);
    try {
        std::ranges::reverse(rest); // the order that the parser takes
        cli.parse(std::move(rest));
    } catch (const CLI::CallForHelp&) {
        parsed.exit = 0;
        parsed.text = cli.help();
        parsed.textIsHelp = true;
        return parsed;
    } catch (const CLI::CallForVersion&) {
        parsed.exit = 0;
        parsed.text = std::string(kVersion) + "\n";
        parsed.textIsHelp = true;
        return parsed;
    } catch (const CLI::ParseError& error) {
        return usage(error.what());
    }
    for (const std::string& extra : cli.remaining()) {
        if (isOption(extra)) {
            return usage("unknown option " + extra + "; --help lists them");
        }
        parsed.options.words.push_back(extra);
    }
    parsed.options.answer = lowerAscii(parsed.options.answer);
    for (const auto& problem : {takeSets(sets, parsed.options), takeLimit(limit, parsed.options)}) {
        if (problem) {
            return usage(*problem);
        }
    }
    for (const auto& check : {commandsThatClash, valuesThatMiss}) {
        if (const auto problem = check(cli, parsed.options)) {
            return usage(*problem);
        }
    }
    if (parsed.options.inspect && parsed.options.files.empty()) {
        return usage("--inspect needs at least one file");
    }
    return parsed;
}

} // namespace tandolin::program
