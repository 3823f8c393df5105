#pragma once

// Which call of the phone or the organizer goes wrong, and how. One script serves both sides: what
// fails on one must stop the writes to the other as well.

#include "core/failure.h"

#include <array>
#include <set>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace tandolin::testing {

enum class FaultKind {
    errorCode,    ///< 0x80004005, nothing done
    refused,      ///< 0x80070005, nothing done
    timeOut,      ///< 0x80010001, nothing done
    deadFromThen, ///< 462 (organizer: 98A4011D), and so does every later call of that side
    answerLost,   ///< done, and then a time-out
    shortAnswer,  ///< a read brings the first half of its answer and says nothing
    staleAnswer,  ///< a read brings what the side said before
};

inline constexpr std::array kFaultKinds{
    FaultKind::errorCode,  FaultKind::refused,     FaultKind::timeOut,    FaultKind::deadFromThen,
    FaultKind::answerLost, FaultKind::shortAnswer, FaultKind::staleAnswer};

inline bool spoilsAnswers(FaultKind kind) {
    return kind == FaultKind::shortAnswer || kind == FaultKind::staleAnswer;
}

enum class CallKind { read, write, other };

struct FaultScript {
    FaultKind kind = FaultKind::errorCode;
    bool onPhone = true;
    std::size_t failAt = 0;       ///< from 1, counted on that side; 0 never
    bool readAgainCounts = false; ///< a read that fails and then succeeds has not failed

    /// The calls of each side so far; [1] is the phone.
    std::array<std::vector<CallKind>, 2> calls;
    std::string faultyCall; ///< its name and, on the phone, its path
    bool objectCut = false; ///< the short answer was half of an object, and not of nothing
    bool readFailed = false;
    /// What failed was only the question whether a place of the calendar is free. The contacts,
    /// which are read behind it, may be written.
    bool onlyPlaceFailed = false;
    std::string writeAfterFailedRead;
    int writesBefore = 0;     ///< asked for before the faulty call
    int writesSinceFault = 0; ///< and behind it
    std::string writeDoneTwice;
    std::set<std::string> removed; ///< paths of the objects that went from the phone

    /// Does the name of a call tell that it is one on contacts?
    static bool isOfContacts(const std::string& name) {
        return name.find("\\pb\\") != std::string::npos ||
               name.find("contact") != std::string::npos;
    }

    /// Runs the call, or what the script makes of it. `spoil` turns the answer of a read into a
    /// short or a stale one.
    template <class Do, class Spoil>
    auto read(bool phone, const std::string& name, Do&& work, Spoil&& spoil) {
        if (!isHit(phone, name, CallKind::read)) {
            readFailed = readFailed && !(mayBeAskedAgain(name) && name == faultyCall);
            return work();
        }
        if (!spoilsAnswers(kind)) {
            fail([&] { work(); }, CallKind::read);
        }
        return spoil(work());
    }

    template <class Do>
    auto other(bool phone, const std::string& name, Do&& work) {
        if (isHit(phone, name, CallKind::other) && !spoilsAnswers(kind)) {
            fail([&] { work(); }, CallKind::other);
        }
        return work();
    }

    /// `what` tells this write from every other one; `once` is false where doing it again is no
    /// harm.
    template <class Do>
    void write(bool phone, const std::string& what, Do&& work, bool once = true) {
        const bool hit = isHit(phone, what, CallKind::write) && !spoilsAnswers(kind);
        if (hit && kind != FaultKind::answerLost) {
            fail([] {}, CallKind::write);
        }
        work();
        if (hit) { // without its answer the caller cannot know, and may ask again
            fail([] {}, CallKind::write);
        }
        if (once && !done_.insert(what).second) {
            writeDoneTwice = what;
        }
    }

    [[nodiscard]] bool isDead() const {
        return kind == FaultKind::deadFromThen && failAt != 0 &&
               calls[onPhone ? 1 : 0].size() >= failAt;
    }

    /// The side works again, and what is read from now on counts anew.
    void heal() {
        failAt = 0;
        readFailed = onlyPlaceFailed = false;
    }

    /// The read of the calendar object that was asked for last, if the phone does not hold it.
    std::string placeAsked;

private:
    /// Where a new contact went is asked behind its write, and once more where the answer is lost.
    /// A run that cannot read the same file while it reads the phone ends at once.
    [[nodiscard]] bool mayBeAskedAgain(const std::string& name) const {
        return readAgainCounts || name.starts_with("PXDRead \\telecom\\pb\\");
    }

    bool isHit(bool phone, const std::string& name, CallKind called) {
        std::vector<CallKind>& mine = calls[phone ? 1 : 0];
        mine.push_back(called);
        asksForPlace_ = name == placeAsked;
        if (readFailed && called == CallKind::write && !(onlyPlaceFailed && isOfContacts(name))) {
            writeAfterFailedRead = name;
        }
        if (called == CallKind::write) {
            (faultyCall.empty() ? writesBefore : writesSinceFault) += 1;
        }
        const bool hit = failAt != 0 && phone == onPhone && (mine.size() == failAt || isDead());
        if (hit && faultyCall.empty()) {
            faultyCall = name;
        }
        return hit;
    }

    template <class Do>
    [[noreturn]] void fail(Do&& work, CallKind called) {
        if (called == CallKind::read) {
            onlyPlaceFailed = asksForPlace_ && (onlyPlaceFailed || !readFailed);
            readFailed = true;
        }
        if (kind == FaultKind::answerLost) {
            work();
        }
        throw Failure(number(), u"scripted fault");
    }

    [[nodiscard]] std::int32_t number() const {
        switch (kind) {
        case FaultKind::refused:
            return failure_number::kAccessDenied;
        case FaultKind::timeOut:
        case FaultKind::answerLost:
            return failure_number::kCallRejected;
        case FaultKind::deadFromThen:
            return onPhone ? failure_number::kServerGone : failure_number::kOrganizerFailed;
        default:
            return failure_number::kServerFailed;
        }
    }

    bool asksForPlace_ = false;
    std::set<std::string> done_;
};

/// Hands `attemptWith` a script for every fault of one side: each kind at each of these calls. Only
/// a read has an answer that can be spoilt.
template <class Attempt>
void forEachFault(bool onPhone, const std::vector<CallKind>& calls, Attempt&& attemptWith) {
    for (const FaultKind kind : kFaultKinds) {
        for (std::size_t k = 1; k <= calls.size(); ++k) {
            if (spoilsAnswers(kind) && calls[k - 1] != CallKind::read) {
                continue;
            }
            FaultScript script;
            script.kind = kind;
            script.onPhone = onPhone;
            script.failAt = k;
            attemptWith(script);
        }
    }
}

} // namespace tandolin::testing
