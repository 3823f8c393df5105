#pragma once

// The buttons of the settings dialog, over the controls of `app.Einstellungen`.

#include <functional>

namespace tandolin {

/// What OK sets off in other windows and tables, besides the settings themselves.
struct SettingsActions {
    /// Sends both queues; a row that could not go out stays queued.
    std::function<void()> transferQueues;
    /// Empties both grids.
    std::function<void()> ClearGridBoth;
    /// Puts the texts of `GlobalLanguageFile` in force everywhere.
    std::function<void()> SetLanguage;
    /// Reads the organizer's contacts anew.
    std::function<void()> ReadOrganizerCard;
    /// Puts the chosen font in force in the main window.
    std::function<void()> SetFont;
};

/// Takes the controls over as settings, has what follows from them done, and saves them. Changes
/// that wait in a queue are sent or dropped first where the user turns to sending at once; what
/// could not be sent keeps the queue and its mode.
void cmdOK_Click(const SettingsActions& actions);

/// Nothing changes.
void cmdCancel_Click();

} // namespace tandolin
