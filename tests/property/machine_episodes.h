#pragma once

// How a machine is run: episodes from one seed, each from an empty start. TANDOLIN_SEED gives a run
// back, and with TANDOLIN_EPISODE one episode of it alone; TANDOLIN_STEPS says how long to go on.

#include "property/machine_world.h"
#include "property/seed.h"

namespace tandolin::testing {

/// Steps from an empty start on; then another phone and organizer begin.
inline constexpr int kEpisode = 60;

/// Goes through one episode; what was wrong, if anything was.
template <class Machine>
std::string violationOf(Machine& machine) {
    int number = 0;
    try {
        for (; number < kEpisode; ++number) {
            machine.step();
        }
        return {};
    } catch (const Violation& violation) {
        return " step " + std::to_string(number) + ": " + violation.what;
    } catch (const Failure& failure) {
        return " step " + std::to_string(number) +
               ": a failure left its procedure: " + toUtf8(failure.Description);
    }
}

inline int numberFrom(const char* name, int otherwise) {
    const char* given = std::getenv(name);
    return given == nullptr ? otherwise : std::atoi(given);
}

/// A machine takes its dice, makes a `step`, tells its `story`, and counts its runs of AutoSync
/// that had nothing to do and those that still wrote.
template <class Machine>
void runEpisodes() {
    const unsigned seed = seedOfRun();
    const int steps = numberFrom("TANDOLIN_STEPS", TANDOLIN_MACHINE_STEPS);
    const int only = numberFrom("TANDOLIN_EPISODE", -1);
    int violations = 0;
    int quiet = 0;
    int restless = 0;
    for (int episode = std::max(only, 0); episode * kEpisode < steps || episode == only;
         ++episode) {
        std::seed_seq seeds{seed, static_cast<unsigned>(episode)};
        Machine machine{std::mt19937(seeds)};
        if (const std::string what = violationOf(machine); !what.empty()) {
            ++violations;
            FAIL_CHECK("TANDOLIN_SEED=" << seed << " TANDOLIN_EPISODE=" << episode << what
                                        << machine.story());
        }
        quiet += machine.quiet;
        restless += machine.restless;
        if (episode == only || violations >= 20) {
            break;
        }
    }
    MESSAGE("second runs: " << quiet << " quiet, " << restless << " not yet");
}

} // namespace tandolin::testing
