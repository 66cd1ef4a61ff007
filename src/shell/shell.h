// The interactive shell and the command-line run.
#pragma once

// Reads and carries out lines until BYE; returns the process status.
int RunShell();
// Loads, links and runs one program file; returns the process status.
int RunFile(const char* path);
// The start-up banner.
void PrintBanner();
