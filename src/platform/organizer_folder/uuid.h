#pragma once

#include <string>

namespace tandolin::ical {

/// A random identifier ("0b9f3c52-...", version 4) from the system's generator.
std::string randomUuid();

} // namespace tandolin::ical
