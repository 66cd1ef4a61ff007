// Help texts of the built-in functions: one usage line each, TIM with its selectors.
#include "help/help_tree.h"

namespace {

constexpr HelpLine kAbs{"ABS(numericExp) - Absolute value"};
constexpr HelpLine kAsc{"ASC(stringExp) - Code of first character, as NUM"};
constexpr HelpLine kAtn{"ATN(numericExp) - Arctangent, in radians"};
constexpr HelpLine kBrk{"BRK(numericExp) - Always 0; the argument is not evaluated"};
constexpr HelpLine kChr{"CHR$(numericExp) - ASCII character"};
constexpr HelpLine kCos{"COS(numericExp) - Cosine of radians"};
constexpr HelpLine kCtl{"CTL(numericExp) - Reserved print function; not available"};
constexpr HelpLine kDec{"DEC(stringExp) - Convert string to numeric"};
constexpr HelpLine kDecStr{"DEC$(numericExp) - Convert numeric to string"};
constexpr HelpLine kExp{"EXP(numericExp) - e to the power"};
constexpr HelpLine kFix{"FIX(numericExp) - Integer part: FIX(-1.5) = -1"};
constexpr HelpLine kInt{"INT(numericExp) - Next integer down: INT(-1.5) = -2"};
constexpr HelpLine kItm{"ITM(numericExp) - Item number in the current record of a file"};
constexpr HelpLine kLeft{"LEFT$(stringExp,numericExp) - Left part of string"};
constexpr HelpLine kLen{"LEN(stringExp) - Length of string"};
constexpr HelpLine kLin{"LIN(numericExp) - PRINT only: new lines; below 0, line feeds only"};
constexpr HelpLine kLog{"LOG(numericExp) - Natural logarithm"};
constexpr HelpLine kMid{"MID$(stringExp,numericExp,numericExp) - Substring."};
constexpr HelpLine kNum{"NUM(stringExp) - Code of first character, -128 to 127; 0 if empty"};
constexpr HelpLine kPi{"PI() - 3.1415927"};
constexpr HelpLine kPos{"POS(stringExp,stringExp) - Position of second string in first, or 0"};
constexpr HelpLine kRec{"REC(numericExp) - Record number of the current record of a file"};
constexpr HelpLine kRight{"RIGHT$(stringExp,numericExp) - Right part of string."};
constexpr HelpLine kRnd{"RND(numericExp) - Random number below 1; below 0 seeds first"};
constexpr HelpLine kSgn{"SGN(numericExp) - Sign: -1, 0 or 1"};
constexpr HelpLine kSin{"SIN(numericExp) - Sine of radians"};
constexpr HelpLine kSpa{"SPA(numericExp) - PRINT only: blanks"};
constexpr HelpLine kSqr{"SQR(numericExp) - Square root"};
constexpr HelpLine kSys{"SYS(numericExp) - Always 0; the argument is not evaluated"};
constexpr HelpLine kTab{"TAB(numericExp) - PRINT only: blanks up to that column"};
constexpr HelpLine kTan{"TAN(numericExp) - Tangent of radians"};
constexpr HelpLine kTid{"TID(numericExp) - Task identifier (the process id)"};
constexpr const char* kTimLines[] = {
    "TIM(numericExp) - Time/Date",
    "     0 - Minute (0-59)",
    "     1 - Hour (0-23)",
    "     2 - Day of the year (1-366)",
    "     3 - Year of the century (0-99)",
    "     4 - Second (0-59)",
    "     5 - Day of the week (0-6, Sunday is 0)",
    "     6 - Day of the month (1-31)",
    "     7 - Month (0-11)",
    "     8 - Years since 1900",
    "     9 - Daylight saving time: not 0 when in effect",
    "    10 - Seconds since 1/1/1970",
    "    11 - Milliseconds since Basic started",
    "Other values are \"Argument out of range\".",
};
constexpr HelpText kTim{kTimLines};
constexpr HelpLine kTyp{
    "TYP(numericExp) - Next item, DATA (0) or file: 1 num, 2 str, 3 end, 4 EOR"};
constexpr HelpLine kUps{"UPS$(stringExp) - Uppercase string."};
constexpr HelpLine kVer{"VER(numericExp) - Version: 1 major, 2 minor, 3 build, 0 minor+build"};

constexpr HelpEntry kFunctionEntries[] = {
    {"ABS", &kAbs}, {"ASC", &kAsc}, {"ATN", &kAtn},      {"BRK", &kBrk},     {"CHR$", &kChr},
    {"COS", &kCos}, {"CTL", &kCtl}, {"DEC", &kDec},      {"DEC$", &kDecStr}, {"EXP", &kExp},
    {"FIX", &kFix}, {"INT", &kInt}, {"ITM", &kItm},      {"LEFT$", &kLeft},  {"LEN", &kLen},
    {"LIN", &kLin}, {"LOG", &kLog}, {"MID$", &kMid},     {"NUM", &kNum},     {"PI", &kPi},
    {"POS", &kPos}, {"REC", &kRec}, {"RIGHT$", &kRight}, {"RND", &kRnd},     {"SGN", &kSgn},
    {"SIN", &kSin}, {"SPA", &kSpa}, {"SQR", &kSqr},      {"SYS", &kSys},     {"TAB", &kTab},
    {"TAN", &kTan}, {"TID", &kTid}, {"TIM", &kTim},      {"TYP", &kTyp},     {"UPS$", &kUps},
    {"VER", &kVer},
};

constexpr HelpGroup kFunctions{kFunctionEntries};

}  // namespace

const HelpGroup& HelpFunctions() { return kFunctions; }
