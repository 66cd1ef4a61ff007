// Puts the terminal back as the user had it: at exit, on fatal signals and on suspend.
#pragma once

// Remember fd's modes as the ones to restore, and the raw key mode used while a line is read.
void RegisterTerminalInput(int fd);
// Output on a terminal: colours and cursor visibility are reset at exit and on suspend.
void RegisterTerminalOutput(int fd);
// Switch the registered input between raw keys and the remembered modes.
void SetRawInput(bool on);
// True when this process may change fd's modes: its group is the terminal's foreground.
bool TerminalInForeground(int fd);
// The output shows colours or a hidden cursor that the exit must reset.
void SetTerminalOutputChanged(bool changed);
// Restores input modes, colours and cursor visibility; safe inside a signal handler.
void RestoreTerminal();
// Bumped on each resume after a suspend and on each window size change.
unsigned TerminalContinueCount();
unsigned TerminalResizeCount();
