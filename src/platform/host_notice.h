// Tells the host around the interpreter when a program run starts and ends: a web
// page shows it and keeps its buttons from typing into a program; a terminal needs nothing.
#pragma once

#ifdef __EMSCRIPTEN__
void NoteRunning(bool running);
#else
inline void NoteRunning(bool) {}
#endif
