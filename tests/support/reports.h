#pragma once

// What the program reported: every failure that reached its error hook since keepReports().

#include "core/state.h"

#include <vector>

namespace tandolin::testing {

struct Report {
    Failure failure;
    Text sentence;
    Text module;
    Text proc;
};

inline std::vector<Report> reports;

inline void keepReports() {
    reports.clear();
    app.core.programErrorHook = [](const Failure& failure, TextView sentence, Place place) {
        reports.push_back({failure, Text(sentence), Text(place.module), Text(place.proc)});
    };
}

} // namespace tandolin::testing
