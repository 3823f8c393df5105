#pragma once

#include "core/ports/language_library.h"
#include "core/ports/organizer.h"
#include "core/ports/phone_server.h"
#include "core/ports/screen.h"
#include "core/ports/settings_store.h"
#include "core/ports/system.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace tandolin {

/// Everything outside, as the logic sees it. Filled once by the program that wires the adapters,
/// or by a test. The pointers are not owned.
struct Ports {
    /// Creates the phone server object; it opens nothing. Throws a Failure when there is none.
    std::function<std::unique_ptr<PhoneServer>()> makePhoneServer;
    /// Attaches to the organizer or creates it. Throws a Failure when there is none.
    std::function<std::unique_ptr<Organizer>()> makeOrganizer;
    SettingsStore* settings = nullptr;
    LanguageLibrary* languages = nullptr;
    Screen screen;
    Clock* clock = nullptr;
    UserLocale* locale = nullptr;
    InstanceLink* instance = nullptr;
    /// Opens and closes the device behind "COM" with this number (1 to 16); 0 when that went well,
    /// else the number of the failure. Empty where ports cannot be looked for.
    std::function<std::int32_t(std::int16_t port)> tryPort;
    HomeFiles* files = nullptr;
    /// Null where nothing can be printed.
    Printer* printer = nullptr;
};

} // namespace tandolin
