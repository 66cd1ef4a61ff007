#pragma once

// Ctrl+C (SIGINT) sets the break flag and does nothing else.
void InstallBreakHandler();
