#pragma once

namespace tandolin {

/// The program's entry behind the wiring of the ports: starts, makes the silent run that the words
/// ask for, ends. What happened stands in the run's state and in the log.
void Main();

/// Records the family of the operating system; it decides how texts are taken from libraries.
void CheckWindowsVersion();

/// All set-up, in its fixed order; false means that the run must end.
bool TDLInitialize();

/// The beginning of every start: settings, words and language, and the question for another
/// instance. False means that the run must end; its state says why. A failure goes to the caller.
bool startWithSettings();

/// True when this is the only instance and it may go on.
bool Check4PrevInstance();

/// What unloading the main window does: the log file is written (not in a dry run), the trace is
/// closed, tables and outside objects are released.
void unloadMainForm();

} // namespace tandolin
