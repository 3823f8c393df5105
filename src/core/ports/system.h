#pragma once

#include "core/date.h"
#include "core/text.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace tandolin {

/// Now, in local wall-clock time, to the second.
class Clock {
public:
    virtual ~Clock() = default;
    [[nodiscard]] virtual Date now() const = 0;
};

enum class LocaleItem {
    dateSeparator,
    shortDate,
    timeFormat,
    timeSeparator,
    twentyFourHours, ///< "1" means 24 hours
    morning,
    evening,
    timeMarkerPosition
};

/// The user's locale: formats in the letters d, M, y, h, H, m, s, t ("dd.MM.yyyy", "HH:mm:ss").
class UserLocale {
public:
    virtual ~UserLocale() = default;
    /// Empty when the locale does not tell.
    [[nodiscard]] virtual std::optional<Text> info(LocaleItem item) const = 0;
    /// The locale number (0x0407 is German); C and POSIX, with or without a codeset, count as it.
    [[nodiscard]] virtual std::uint16_t number() const = 0;
};

/// The link between two starts of the program on one desktop.
class InstanceLink {
public:
    virtual ~InstanceLink() = default;
    /// True when another instance of this user is active; otherwise this one holds the lock until
    /// the process ends. Throws a Failure when the lock cannot be made.
    virtual bool previousInstance() = 0;
    /// Brings the first instance to the front.
    virtual void activate() = 0;
    /// Tells the first instance to end.
    virtual void kill() = 0;

    /// The next word that a later instance sent to this one, in the order of sending, or nothing.
    /// Never waits; a link without an ear hears nothing.
    virtual std::optional<Text> received() { return std::nullopt; }
};

/// Text files of the home directory (log and trace). Paths are composed with backslashes and mapped
/// by the adapter. Throws a Failure when it cannot write.
class HomeFiles {
public:
    virtual ~HomeFiles() = default;
    /// Makes the directory where it is missing; throws when nothing can be written into it.
    virtual void ensureWritable(TextView directory) = 0;
    /// Replaces the file atomically with the text in UTF-8.
    virtual void write(TextView path, TextView text) = 0;
    /// Starts a new file and keeps it open; each `append` reaches the disk before it returns.
    virtual void openTrace(TextView path) = 0;
    virtual void append(TextView text) = 0;
    virtual void closeTrace() = 0;
};

/// A text for the printer: CR LF between lines, tabs between cells.
struct PrintJob {
    Text text;
    Text font;
    int points = 0;
    /// Positions of the tabs, in the unit of the print layout.
    std::vector<int> tabStops;
};

/// A printer, or a file that takes its place.
class Printer {
public:
    virtual ~Printer() = default;
    /// Prints the text and ends the document. Throws a Failure.
    virtual void print(const PrintJob& job) = 0;
};

} // namespace tandolin
