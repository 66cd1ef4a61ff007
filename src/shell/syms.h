// SYMS: the variables of the last run with their values.
#pragma once

class Console;
class Program;

// One line per variable, sorted by name; an array shows its bounds and its
// elements, the first ones only when they would take more than a screenful.
// Nothing before the first run.
void ListVariables(const Program& prog, Console& con);
