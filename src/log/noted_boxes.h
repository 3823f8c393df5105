#pragma once

#include "core/ports/screen.h"

namespace tandolin {

/// The boxes of a run that nobody watches: each goes on to the screen, which answers without
/// waiting, and its text joins what the log file tells.
class NotedBoxes : public MessageBoxes {
public:
    /// The screen must outlive the object.
    explicit NotedBoxes(MessageBoxes& screen) : screen_(screen) {}

    Answer ask(TextView caption, TextView text, Icon icon, Buttons buttons) override;

private:
    MessageBoxes& screen_;
};

} // namespace tandolin
