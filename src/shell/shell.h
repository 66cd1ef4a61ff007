// The interactive shell and the command-line run.
#pragma once
#include <string_view>
#include <vector>

// The product name and version, as the banner and --version show it.
inline constexpr char kProductName[] = "Velo Basic V0.94.0.154";

// Reads and carries out lines until BYE; returns the process status.
int RunShell();
// Loads, links and runs one program file; returns the process status. Strict runs
// end with status 1 when the program fails or does not load, the report on stderr.
int RunFile(const char* path, bool strict);
// The shell's command words, TEST (in the table, with no action) included.
std::vector<std::string_view> CommandNames();
// The start-up banner.
void PrintBanner();
