#pragma once

// What the phone and the organizer in memory have in common: they note their calls, and one of them
// goes wrong.

#include "core/failure.h"

#include <vector>

namespace tandolin::testing {

class FaultyCalls {
public:
    /// From 1: this call fails, and with `deadFromThen` every later one too. 0 is no fault.
    struct Fault {
        std::size_t call = 0;
        Failure failure;
        bool deadFromThen = false;
    };

    Fault fault;
    int lostAnswer = 0; ///< from 1: this store or removal is done and fails all the same
    bool answerWasLost = false;

    /// Every call so far ("PXDDelete \telecom\cal\17.vcs"), the failing one included.
    mutable std::vector<Text> calls;

    /// `number` is that of its failures, where no other is asked for.
    explicit FaultyCalls(std::int32_t number) : number_(number) { heal(); }

    /// All works again, and calls are counted from 1.
    void heal() {
        calls.clear();
        fault = {0, {number_, u"scripted fault"}, false};
        lostAnswer = 0;
        answerWasLost = false;
    }

    /// The call that was to fail, empty while it has not come.
    [[nodiscard]] Text failedCall() const {
        return fault.call != 0 && calls.size() >= fault.call ? calls[fault.call - 1] : Text();
    }

    [[nodiscard]] bool hasFailed() const { return answerWasLost || !failedCall().empty(); }

protected:
    void note(Text call) const {
        calls.push_back(std::move(call));
        if (fault.call != 0 &&
            (calls.size() == fault.call || (fault.deadFromThen && calls.size() > fault.call))) {
            throw fault.failure;
        }
    }

    /// Behind each store and removal.
    void answer() {
        if (lostAnswer > 0 && --lostAnswer == 0) {
            answerWasLost = true;
            throw Failure(number_, u"the answer was lost");
        }
    }

private:
    std::int32_t number_;
};

} // namespace tandolin::testing
