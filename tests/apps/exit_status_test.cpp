#include "apps/exit_status.h"

#include "support/fresh_program.h"

#include <array>

using namespace tandolin;
using namespace tandolin::testing;

TEST_CASE("The first cause that holds gives the exit status") {
    const FreshProgram program;
    CHECK(exitStatus() == ExitStatus::done);
    app.run.notes.push_back({u"nearMatch", u"phone", u"1.vcs", u"", u""});
    CHECK(exitStatus() == ExitStatus::done);

    struct Cause {
        void (*happens)();
        ExitStatus status;
    };

    // From the last to the first: each stands over all before it.
    for (const Cause& cause : std::to_array<Cause>({
             {[] { app.run.failures = 1; }, ExitStatus::incomplete},
             {[] { app.run.guarded = true; }, ExitStatus::stopped},
             {[] { app.run.organizerFailed = true; }, ExitStatus::organizer},
             {[] { app.run.phoneFailed = true; }, ExitStatus::phone},
             {[] { app.run.otherInstance = true; }, ExitStatus::otherInstance},
             {[] { app.run.startFailed = true; }, ExitStatus::startFailed},
             {[] { app.run.usage = true; }, ExitStatus::usage},
         })) {
        cause.happens();
        CHECK(exitStatus() == cause.status);
    }
}

TEST_CASE("Each of these alone makes a run incomplete") {
    for (const auto happens : std::to_array<void (*)()>({
             [] { app.run.entriesFailed = true; },
             [] { app.run.leftBehind = 1; },
             [] { app.run.diskFull = true; },
             [] { app.log.LogTransferFehler = 1; },
             [] {
                 app.run.notes.push_back({u"unreadable", u"organizer", u"a.ics", u"", u""});
             },
         })) {
        const FreshProgram program;
        happens();
        CHECK(exitStatus() == ExitStatus::incomplete);
        app.run.cancelled = true;
        CHECK(exitStatus() == ExitStatus::stopped);
    }
}
