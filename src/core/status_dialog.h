#pragma once

#include "core/ports/screen.h"

namespace tandolin {

/// The one progress dialog: what it decides, over the view of the screen. A long action calls it
/// and so lets user input and the words of other instances in; `SetText` and `GetState` are the
/// only points where that happens.
class Status_Anzeige {
public:
    /// Opens the dialog; one that is open is used again. With `noShow` it stays without a picture.
    /// Where a user has the window, a cancel of the action before ends with it.
    void Start(TextView title, bool noShow = false);
    /// Lets user input in, then shows the text while the dialog is open.
    void SetText(TextView text);
    /// False when the user pressed Cancel and confirmed it.
    bool GetState();
    /// Closes the dialog; SetText and GetState only let user input in afterwards.
    void Quit();

    [[nodiscard]] bool isOpen() const { return !finished_; }

    /// Which of the two controls can be seen.
    void showButtons(bool cancelShown, bool okShown);

private:
    void letInputIn();

    bool finished_ = true;
    bool goOn_ = true;
};

/// The status dialog for the time of one action. Within a longer action that has it open already,
/// it neither starts nor quits it.
class StatusDialog {
public:
    StatusDialog();
    StatusDialog(const StatusDialog&) = delete;
    StatusDialog& operator=(const StatusDialog&) = delete;
    ~StatusDialog();

private:
    bool own_;
};

} // namespace tandolin
