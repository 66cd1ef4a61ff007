// Parse routines of the data-file statements, called like those of stmt/parsers.h.
// The forms written with "#" after a keyword of another family (READ #, PRINT #,
// LINPUT #, CLOSE #, UPDATE #, ON/IF/OFF END #, MAT READ #, MAT PRINT #) are reached
// through the statement table's data-file forms, with the words before "#" consumed.
#pragma once
#include "stmt/statement.h"

// open_close.cpp: naming, opening, creating and removing files.
StatementPtr ParseFiles(StmtContext& p);
StatementPtr ParseAssign(StmtContext& p);
StatementPtr ParseCreate(StmtContext& p);
StatementPtr ParsePurge(StmtContext& p);
StatementPtr ParseCloseFile(StmtContext& p);  // CLOSE #n

// file_io.cpp: reading and writing through file numbers.
StatementPtr ParseReadFile(StmtContext& p);    // READ #...
StatementPtr ParseLinputFile(StmtContext& p);  // LINPUT #... of a text file
StatementPtr ParsePrintFile(StmtContext& p);
StatementPtr ParseUpdateFile(StmtContext& p);
StatementPtr ParseAdvance(StmtContext& p);
StatementPtr ParseLock(StmtContext& p);
StatementPtr ParseUnlock(StmtContext& p);
StatementPtr ParseOnEndFile(StmtContext& p);  // ON END #... or IF END #...
StatementPtr ParseOffEndFile(StmtContext& p);

// mat_file.cpp: whole arrays through a file.
StatementPtr ParseMatReadFile(StmtContext& p);
StatementPtr ParseMatPrintFile(StmtContext& p);
