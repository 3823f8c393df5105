#pragma once

#include "core/error_reporting.h"
#include "core/failure.h"

#include <optional>
#include <utility>

namespace tandolin {

/// The one trap that every named procedure has: `body(result)` runs; a failure is reported under
/// `place`, and the procedure ends by its normal exit with what the result held at that moment.
template <class Result, class Body>
Result trapped(Place place, Result result, Body&& body, TextView extraText = {}) {
    try {
        std::forward<Body>(body)(result);
    } catch (...) {
        Failure failure = currentFailure();
        ReportError(failure, place, extraText);
    }
    return result;
}

/// The same for a procedure without a result.
template <class Body>
void trapped(Place place, Body&& body, TextView extraText = {}) {
    try {
        std::forward<Body>(body)();
    } catch (...) {
        Failure failure = currentFailure();
        ReportError(failure, place, extraText);
    }
}

/// For the few places that test a failure in line: runs `body` and gives what it threw, or nothing.
template <class Body>
std::optional<Failure> attempt(Body&& body) {
    try {
        std::forward<Body>(body)();
        return std::nullopt;
    } catch (...) {
        return currentFailure();
    }
}

} // namespace tandolin
