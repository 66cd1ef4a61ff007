#include "shell/errors.h"

#include "console/console.h"

ErrorState g_err;

namespace {

struct ErrorRow {
  ErrorCode code;
  const char* message;
};

// Searched front to back; the order is the table's own and is not sorted.
constexpr ErrorRow kErrorTable[] = {
    {1, "End-Of-File"},
    {2, "End-Of-Line"},
    {3, "Not enough memory"},
    {4, "Feature not supported"},
    {5, "Unexpected Internal error"},
    {6, "Line too long"},
    {7, "No Statement Number"},
    {8, "Statement Number Out Of Order"},
    {9, "Invalid Statement label"},
    {10, "Duplicate Statement Label"},
    {11, "Invalid Basic Stmt"},
    {12, "Symbol bad"},
    {13, "Symbol not found"},
    {14, "Characters after statement end"},
    {15, "Not BASIC statement"},
    {16, "Incomplete BASIC statement"},
    {17, "Missing statement keyword"},
    {18, "Missing or Invalid Statement Number"},
    {20, "Missing or Invalid Numeric Variable"},
    {21, "Missing or Invalid String Variable"},
    {22, "Missing or Invalid Matrix Variable"},
    {23, "Missing or Invalid Matrix Assignment"},
    {24, "Missing assignment variable"},
    {25, "Missing or Invalid Target Variable"},
    {26, "Missing assignment variable"},
    {27, "Missing assignment operator"},
    {28, "Missing left parenthesis"},
    {29, "Missing right parenthesis"},
    {30, "Missing left bracket"},
    {31, "Missing right bracket"},
    {32, "Numeric Argument invalid or not found"},
    {33, "String Argument invalid or not found"},
    {34, "Missing or Invalid Subscript"},
    {35, "Missing or invalid Numeric Expression"},
    {36, "Missing or invalid String Expression"},
    {37, "Missing or Invalid Expression"},
    {39, "Bad Constant"},
    {40, "Missing delimiter"},
    {41, "Missing \";\" delimiter"},
    {42, "Missing or Invalid Function Name"},
    {43, "Missing Parameter Definition"},
    {44, "Duplicate Function Definition"},
    {45, "Duplicate Parameter Specified"},
    {46, "Missing or Invalid Parameter"},
    {47, "Invalid Parameter List"},
    {48, "Missing or invalid operator"},
    {49, "Invalid substring"},
    {50, "Missing or Invalid Allocation Specifications"},
    {51, "Missing file number specifier"},
    {52, "Missing record number specifier"},
    {54, "Missing or Invalid File Restrictions"},
    {53, "Invalid file restriction"},
    {55, "Missing '@' GDI specifier"},
    {56, "Missing or invalid GDI number"},
    {57, "Invalid BASIC Statement"},
    {58, "COM not first program statement"},
    {59, "Array dimension is too big"},
    {60, "Missing or Invalid DIM variable"},
    {61, "Variable dimensioned twice"},
    {62, "Undefined Statement Referenced"},
    {63, "Undefined Statement Referenced (Internal)"},
    {64, "Undefined Function Referenced"},
    {1004, "Return without GoSub"},
    {1006, "Missing Return"},
    {1005, "Gosub nested 20 deep"},
    {72, "Same FOR variable nested"},
    {73, "Not same FOR variable"},
    {74, "FOR without matching NEXT"},
    {75, "NEXT without matching FOR"},
    {76, "NEXT (FOR) follows WHILE"},
    {77, "WHILE without matching NEXT"},
    {78, "NEXT without WHILE"},
    {79, "NEXT follows REPEAT"},
    {80, "NEXT follows IF/ELSE"},
    {81, "NEXT follows SELECT"},
    {82, "NEXT (WHILE) follows FOR"},
    {84, "REPEAT without matching UNTIL"},
    {83, "UNTIL without REPEAT"},
    {85, "UNTIL follows WHILE"},
    {86, "UNTIL follows IF/ELSE"},
    {87, "UNTIL follows FOR"},
    {88, "UNTIL follows SELECT"},
    {89, "CASE without matching SELECT"},
    {90, "SELECT without matching ENDSELECT"},
    {91, "SELECT must have at least on CASE"},
    {92, "ENDSELECT without SELECT"},
    {93, "CASE ELSE must be last in SELECT"},
    {94, "CASE must have a numeric expression"},
    {95, "CASE must have a string expression"},
    {96, "CASE follows FOR"},
    {97, "CASE follows WHILE"},
    {98, "CASE follows REPEAT"},
    {99, "CASE follows IF/ELSE"},
    {100, "ENDSELECT follows WHILE"},
    {101, "ENDSELECT follows REPEAT"},
    {102, "ENDSELECT follows IF/ELSE"},
    {103, "ENDSELECT follows FOR"},
    {1001, "Undefined value accessed"},
    {1002, "Array subscript out of bounds"},
    {1003, "Dimensions not compatible"},
    {65, "Array of unknown dimensions"},
    {1007, "Non-contiguous string created"},
    {1008, "Negative string length specified"},
    {1009, "Substring out of bounds"},
    {66, "Incompatible function arguments"},
    {67, "Missing or Invalid Argument"},
    {1010, "Function recursion detected"},
    {1011, "Out of data"},
    {1012, "Data of wrong type"},
    {1013, "Unknown data type (INTERNAL)"},
    {1014, "Argument out of range"},
    {68, "Referencing non-image statement"},
    {69, "Missing or Invalid Using Part"},
    {70, "END function not allowed"},
    {71, "END function must be last"},
    {1015, "Unable to open chain target"},
    {1016, "Syntax error in chain target"},
    {1017, "Non-contiguous string created"},
    {1018, "String overflow"},
    {104, "ELSE without matching IF"},
    {105, "ENDIF without matching IF"},
    {106, "If without matching Endif"},
    {107, "Statement not allowed after THEN"},
    {108, "ELSE follows WHILE"},
    {109, "ELSE follows REPEAT"},
    {110, "ELSE follows FOR"},
    {111, "ELSE follows SELECT"},
    {112, "ENDIF follows WHILE"},
    {113, "ENDIF follows REPEAT"},
    {114, "ENDIF follows FOR"},
    {115, "ENDIF follows SELECT"},
    {116, "Compound statement not allowed"},
    {2001, "Invalid File Number"},
    {2002, "File number already in use"},
    {2003, "File is not open"},
    {2004, "End-of-file"},
    {2005, "Operation not permitted on ASCII files"},
    {2007, "Operation not permitted on RECORD files"},
    {2006, "Unexpected file error"},
    {2501, "Invalid GDI Number"},
    {2502, "GDI number already in use"},
    {2503, "GDI is not open"},
    {4001, "Replicator zero to too large"},
    {4002, "Missing Replicator"},
    {4003, "Illegal character in format"},
    {4004, "Illegal or missing delimiter"},
    {4005, "No group after replicator"},
    {4006, "Missing group left parenthesis"},
    {4007, "Illegal format for number"},
    {4008, "Illegal format for string"},
    {4009, "Invalid literal string"},
    {4010, "BREAK"},
    {4011, "STOP"},
    {4012, "END"},
    {0, "OK!"},
};

}  // namespace

const char* MessageOf(ErrorCode code) {
  const ErrorRow* row = kErrorTable;
  while (row->code != 0 && row->code != code) ++row;
  return row->message;
}

void ReportRunError(bool statementWording) {
  Console& con = TheConsole();
  const char* message = MessageOf(g_err.run);
  con.Write("\n");
  if (g_err.run != kBreak) con.Write("ERROR ");
  if (g_err.location & loc::kStmtNumber)
    con.Printf("%s in %s %u", message, statementWording ? "statement number" : "line",
               loc::Number(g_err.location));
  else if (g_err.location & loc::kFileLine)
    con.Printf("%s in file line %u", message, loc::Number(g_err.location));
  else
    con.Printf("%s", message);
  if (!g_err.file.empty())
    con.Printf(" in file \"%s\"\n", g_err.file.c_str());
  else
    con.Write("\n");
}
