// Linking a program and running it.
#pragma once
#include "base/errors.h"

class Console;
class Program;

// Resets the run-time state and binds every reference; 0 or the first error,
// with its location set.
ErrorCode Link(Program& prog);
// Points every statement reference at the statement that now carries its
// number or label; immediate statements use it on a program edited since.
void BindTargets(Program& prog);
// Runs a linked program to its end on con (the process console when none is
// given). 0 when it ended by END, STOP or its end mark, else the error that
// ended it. keepsProgram is false for programs run from a file, whose errors
// then name the file.
ErrorCode Run(Program& prog, bool keepsProgram, Console& con);
ErrorCode Run(Program& prog, bool keepsProgram);
// Goes on with a shell run that STOP or a break halted (prog.run.resume set),
// with its variables, loops, GOSUB returns and files as they were.
ErrorCode Continue(Program& prog, Console& con);

// Prints the current run-time error as one line; statementWording selects
// "statement number" (command-line runs) over "line" (the shell's RUN).
void ReportRunError(bool statementWording);
