// Token codes: lexical classes below kFirstCoded, categories in code & kCatMask above.
#pragma once
#include <cstdint>

using TokenCode = uint32_t;

namespace tok {
// Lexical classes returned by the scanner.
constexpr TokenCode kEndOfInput = 1;
constexpr TokenCode kEndOfLine = 2;
constexpr TokenCode kBadConstant = 5;
constexpr TokenCode kOpenLiteral = 7;
constexpr TokenCode kBadCharCode = 8;
constexpr TokenCode kString = 11;
constexpr TokenCode kInteger = 12;
constexpr TokenCode kHex = 13;
constexpr TokenCode kDecimal = 14;
constexpr TokenCode kExponent = 15;
constexpr TokenCode kWord = 16;
constexpr TokenCode kStringWord = 17;
constexpr TokenCode kWordBracket = 18;
constexpr TokenCode kStringWordParen = 19;
constexpr TokenCode kOther = 20;
// Codes from here up carry a category; the lexical classes stay below.
constexpr TokenCode kFirstCoded = 0x100;

// Categories (code & 0xF000).
constexpr TokenCode kCatMask = 0xF000;
constexpr TokenCode kNumVar = 0x1000;
constexpr TokenCode kStrVar = 0x2000;
constexpr TokenCode kNumArray = 0x3000;
constexpr TokenCode kStrArray = 0x4000;
constexpr TokenCode kPrintFunc = 0x5000;
constexpr TokenCode kStrUserFn = 0x6000;
constexpr TokenCode kNumUserFn = 0x7000;
constexpr TokenCode kStrFunc = 0x8000;
constexpr TokenCode kNumFunc = 0x9000;
constexpr TokenCode kPunct = 0xA000;
constexpr TokenCode kRelation = 0xB000;
constexpr TokenCode kLogical = 0xC000;
constexpr TokenCode kArith = 0xD000;
constexpr TokenCode kSecondary = 0xE000;
constexpr TokenCode kStatement = 0xF000;
inline TokenCode Category(TokenCode code) { return code & kCatMask; }

// Punctuation.
constexpr TokenCode kLParen = 0xA00A, kRParen = 0xA00B, kLBracket = 0xA00C, kRBracket = 0xA00D;
constexpr TokenCode kLBrace = 0xA00E, kRBrace = 0xA00F, kComma = 0xA010, kSemicolon = 0xA011;
constexpr TokenCode kComment = 0xA012, kColon = 0xA013, kQuestion = 0xA014, kAt = 0xA015;
// Relations.
constexpr TokenCode kLE = 0xB00A, kLT = 0xB00B, kGE = 0xB00C, kGT = 0xB00D, kNE = 0xB00E;
constexpr TokenCode kHash = 0xB00F, kEQ = 0xB010;
// Logical and arithmetic operators.
constexpr TokenCode kAnd = 0xC00A, kOr = 0xC00B, kNot = 0xC00C, kXor = 0xC00D, kEqv = 0xC00E,
                    kImp = 0xC00F;
constexpr TokenCode kPlus = 0xD00A, kMinus = 0xD00B, kStar = 0xD00C, kSlash = 0xD00D,
                    kCaret = 0xD00E, kPower = 0xD00F, kMod = 0xD010, kDiv = 0xD011, kMin = 0xD012,
                    kMax = 0xD013;
// Secondary keywords.
constexpr TokenCode kUsing = 0xE014, kError = 0xE015, kStep = 0xE016, kThen = 0xE017, kDo = 0xE018,
                    kTo = 0xE019, kOf = 0xE01A, kRr = 0xE01B, kNr = 0xE01C, kWr = 0xE01D,
                    kZer = 0xE01E, kCon = 0xE01F, kIdn = 0xE020, kTrn = 0xE021, kInv = 0xE022;
// Statement keywords, in code order.
constexpr TokenCode kLet = 0xF00A, kIf = 0xF00B, kGoto = 0xF00C, kGosub = 0xF00D, kReturn = 0xF00E,
                    kFor = 0xF00F, kNext = 0xF010, kStop = 0xF011, kEnd = 0xF012, kData = 0xF013,
                    kRead = 0xF014, kRestore = 0xF015, kInput = 0xF016, kEnter = 0xF017,
                    kLinput = 0xF018, kPrint = 0xF019, kImage = 0xF01A, kRem = 0xF01B,
                    kDim = 0xF01C, kCom = 0xF01D, kChain = 0xF01E, kSpawn = 0xF01F, kDef = 0xF021,
                    kConvert = 0xF022, kMat = 0xF023, kSystem = 0xF024, kOn = 0xF025, kOff = 0xF026,
                    kFiles = 0xF027, kAssign = 0xF028, kCreate = 0xF029, kPurge = 0xF02A,
                    kAdvance = 0xF02B, kUpdate = 0xF02C, kLock = 0xF02D, kUnlock = 0xF02E,
                    kExtend = 0xF02F, kOpen = 0xF030, kClose = 0xF031, kElse = 0xF033,
                    kEndIf = 0xF034, kWhile = 0xF035, kEndWhile = 0xF036, kRepeat = 0xF037,
                    kUntil = 0xF038, kSelect = 0xF039, kCase = 0xF03A, kEndSelect = 0xF03B,
                    kSleep = 0xF03C, kWindow = 0xF03D, kShow = 0xF03E, kHide = 0xF03F,
                    kMoveTo = 0xF040, kLineTo = 0xF041, kColor = 0xF042, kTrace = 0xF045,
                    kTron = 0xF046, kTroff = 0xF047;
// RANDOMIZE and RANDOM: keywords only where a statement starts (keywords.h).
constexpr TokenCode kRandomize = 0xF044;
// Codes of the statements that have no keyword of their own.
constexpr TokenCode kLabelStmt = 0x1B, kEndMarkStmt = 0x1C, kBlankLineStmt = 0x20,
                    kBadLineStmt = 0xF043;
// Built-in functions; ASC is another spelling of NUM.
constexpr TokenCode kFnAbs = 0x900A, kFnAtn = 0x900B, kFnCos = 0x900C, kFnExp = 0x900D,
                    kFnInt = 0x900E, kFnFix = 0x900F, kFnLog = 0x9010, kFnRnd = 0x9011,
                    kFnSgn = 0x9012, kFnSin = 0x9013, kFnSqr = 0x9014, kFnTan = 0x9015,
                    kFnTid = 0x9016, kFnVer = 0x9017, kFnRec = 0x9018, kFnItm = 0x9019,
                    kFnBrk = 0x901A, kFnTim = 0x901B, kFnTyp = 0x901C, kFnSys = 0x901D,
                    kFnDec = 0x901E, kFnLen = 0x901F, kFnNum = 0x9020, kFnPos = 0x9021,
                    kFnPi = 0x9022;
constexpr TokenCode kFnUps = 0x800A, kFnChr = 0x800B, kFnDecStr = 0x800C, kFnLeft = 0x800D,
                    kFnRight = 0x800E, kFnMid = 0x800F;
constexpr TokenCode kFnLin = 0x500A, kFnSpa = 0x500B, kFnTab = 0x500C, kFnCtl = 0x500D;
}  // namespace tok
