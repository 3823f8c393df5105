#pragma once

#include "core/text.h"

namespace tandolin {

enum class Icon { none, information, question, exclamation };
enum class Buttons { ok, okCancel, yesNo, yesNoCancel };
enum class Answer { ok, cancel, yes, no };

/// A modal box. An adapter without a user answers by its own rule and never waits.
class MessageBoxes {
public:
    virtual ~MessageBoxes() = default;
    virtual Answer ask(TextView caption, TextView text, Icon icon, Buttons buttons) = 0;
};

/// The picture of the one progress dialog; what it decides is `Status_Anzeige`.
class StatusView {
public:
    virtual ~StatusView() = default;
    virtual void open(TextView title) = 0;
    virtual void text(TextView text) = 0;
    virtual void buttons(bool cancelShown, bool okShown) = 0;
    /// Lets waiting user input in. True when Cancel was pressed since the last call.
    virtual bool cancelPressed() = 0;
    virtual void close() = 0;
};

enum class Pane { Mobile, MobileStatus, EntryCounter, Organizer };
enum class Grid { GridEXCal, GridEXCard };
enum class Form { Main_Form, frmSplash, logSummaryForm, Einstellungen };

/// What the logic tells the main window. As it stands all of it is without effect: a program
/// without a window has this one, so that nobody needs to ask whether there is one.
class MainWindow {
public:
    virtual ~MainWindow() = default;

    virtual void toolEnabled(TextView /*band*/, TextView /*tool*/, bool /*enabled*/) {}

    virtual void toolVisible(TextView /*band*/, TextView /*tool*/, bool /*visible*/) {}

    virtual void pane(Pane /*pane*/, TextView /*text*/) {}

    /// Column titles, tips and images of a grid from the language strings in force.
    virtual void columnCaptions(Grid /*grid*/) {}

    virtual void refresh(Grid /*grid*/) {}

    /// The hourglass; `BusyPointer` switches it.
    virtual void busy(bool /*on*/) {}

    /// The date range that the calendar grid marks.
    virtual void EntryBackround(double /*fromDays*/, double /*toDays*/) {}

    virtual void startTimer(int /*milliseconds*/) {}

    virtual void show(Form /*form*/) {}

    virtual void unload(Form /*form*/) {}

    /// Shows the form and returns when it was closed.
    virtual void runModal(Form /*form*/) {}

    virtual void TDLInitForm(bool /*organizerPresent*/) {}

    virtual void focusMain() {}

    /// The picture beside the phone's name: of a phone that is connected, or of none.
    virtual void phonePicture(bool /*connected*/) {}

    /// Sets the menus up anew.
    virtual void SetMenus_Click() {}

    /// The progress pane tells what was read from `source` so far; with `clear` it is emptied.
    virtual void SetProgressStatus(TextView /*source*/, bool /*clear*/) {}

    virtual void selectFirstRow(Grid /*grid*/) {}

    /// The column becomes the current one; counted from 1.
    virtual void currentColumn(Grid /*grid*/, int /*column*/) {}

    /// The form goes out of sight and stays loaded.
    virtual void hide(Form /*form*/) {}
};

inline MainWindow noWindow;

/// The bundle of what a program shows. `window` is never null.
struct Screen {
    MessageBoxes* boxes = nullptr;
    StatusView* status = nullptr;
    MainWindow* window = &noWindow;
};

} // namespace tandolin
