// TYP, REC and ITM: the functions that look at a data file's pointer, TYP(0)
// at the DATA position. The program makes them for the expression parser.
#pragma once
#include "expr/numeric_exp.h"

class FileUnits;
class KeyToken;
struct DataReader;

// The node of TYP, REC or ITM with its argument; null for other codes.
NumericExpPtr MakeFileFunction(const KeyToken* key, NumericExpPtr arg, FileUnits& files,
                               DataReader& data);
