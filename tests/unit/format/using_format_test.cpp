// The IMAGE format reader and runner on their own: formats, values in, one
// line and an error code out.
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <string>
#include <variant>
#include <vector>

#include "alloc_count.h"
#include "format/using_runner.h"

namespace {

using Value = std::variant<float, std::string>;

class ListValues final : public UsingValues {
 public:
  explicit ListValues(std::vector<Value> values) : values_(std::move(values)) {}
  bool Remains() const override { return next_ < values_.size(); }
  FieldValue Take() override {
    const Value& v = values_[next_++];
    if (const float* x = std::get_if<float>(&v)) return {false, *x, {}};
    return {true, 0, std::get<std::string>(v)};
  }
  void Rewind() { next_ = 0; }

 private:
  std::vector<Value> values_;
  size_t next_ = 0;
};

struct Result {
  std::string line;
  ErrorCode code;
};

Result Format(std::string_view format, std::vector<Value> values = {},
              size_t maxLine = FormatRunner::kMaxLine,
              ImageFormat::Grammar grammar = ImageFormat::kOwn) {
  ImageFormat image(format, grammar);
  ListValues list(std::move(values));
  FormatRunner runner(maxLine);
  ErrorCode code = runner.Run(image, list);
  return {std::string(runner.Line()), code};
}

// The line of a run that must succeed, without its CR LF.
std::string Line(std::string_view format, std::vector<Value> values = {},
                 ImageFormat::Grammar grammar = ImageFormat::kOwn) {
  Result r = Format(format, std::move(values), FormatRunner::kMaxLine, grammar);
  EXPECT_EQ(r.code, 0u) << format;
  if (r.line.size() >= 2 && r.line.compare(r.line.size() - 2, 2, "\r\n") == 0)
    r.line.resize(r.line.size() - 2);
  else
    ADD_FAILURE() << "no CR LF after " << format;
  return r.line;
}

TEST(UsingFormat, NumericFieldsRoundAndPad) {
  EXPECT_EQ(Line("8.2d", {3.14159f}), "    3.14");
  EXPECT_EQ(Line("8d.2", {3.14159f}), "       3");  // ".2" after the letter ends the format
  EXPECT_EQ(Line("08.2d", {-1.5f}), "000-1.50");    // the fill goes in front of the sign
  EXPECT_EQ(Line("d", {123.0f}), "123");            // a field too narrow is written whole
  EXPECT_EQ(Line("*d", {-7.0f}), "-7");
  EXPECT_EQ(Line("5D", {2.5f}), "    3");
  EXPECT_EQ(Line("3d,3d,3d", {0.5f, -0.5f, 0.49f}), "  1 -1  0");
  EXPECT_EQ(Line("6.2d", {9.999f}), " 10.00");
  EXPECT_EQ(Line("4.1d", {0.049f}), " 0.0");
  EXPECT_EQ(Line(".3d", {-0.0004f}), "-0.000");
  EXPECT_EQ(Line("e", {1234567.0f}), "1234567");
  EXPECT_EQ(Line("d", {3.4028235e38f}), "340282346638528859811704183484516925440");
  EXPECT_EQ(Line("d", {1.0e19f}), "9999999980506447872");
  EXPECT_EQ(Line(".12d", {1.5f}), "1.500000000000");  // decimals past the ninth are zeros
  EXPECT_EQ(Line("12.*d", {2.75f}), "           3");  // "*" precision: none
}

TEST(UsingFormat, FlagsJustifySignAndZeroFill) {
  EXPECT_EQ(Format("#,-8.2d", {3.14159f}).line, "3.14    ");
  EXPECT_EQ(Line("x,-6d,\"|\"", {42.0f}), " 42    |");
  EXPECT_EQ(Line("\"\",-6d,\"|\"", {-42.0f}), "-42   |");
  EXPECT_EQ(Line("s5d,s5d,s5d", {12.0f, -12.0f, 0.0f}), "  +12  -12   +0");
  EXPECT_EQ(Line("S06.1D", {1.5f}), "00+1.5");
  EXPECT_EQ(Line("\"\",-s0d", {1.5f}), "+2");  // "0" flag, no width: width 1
  EXPECT_EQ(Line("\"\",-06d", {7.0f}), "700000");
}

TEST(UsingFormat, NonFiniteValues) {
  EXPECT_EQ(Line("6.2d,6d", {INFINITY, -INFINITY}), "   INF  -INF");
  EXPECT_EQ(Line("s5d", {NAN}), " +NAN");
}

TEST(UsingFormat, StringFieldsCutAndPad) {
  EXPECT_EQ(Line("5a", {"AB"}), "   AB");
  EXPECT_EQ(Line("\"\",-5a,\"|\"", {"AB"}), "AB   |");
  EXPECT_EQ(Line("5.1a", {"AB"}), "    A");
  EXPECT_EQ(Line("05a", {"AB"}), "000AB");
  EXPECT_EQ(Line("2a", {"ABCDE"}), "ABCDE");
  EXPECT_EQ(Line("*.3A", {"ABCDE"}), "ABC");
  EXPECT_EQ(Line("4.0a,\"|\"", {"ABCDE"}), "    |");
  EXPECT_EQ(Line("a", {""}), " ");
}

TEST(UsingFormat, ValuesOfTheOtherKind) {
  EXPECT_EQ(Line("6d", {"AB"}), "    AB");  // text in a numeric field is padded as text
  EXPECT_EQ(Line("9a", {2.5f}), "      2.5");
  EXPECT_EQ(Line("9.2a", {-1000.0f}), "       -1");
}

TEST(UsingFormat, LiteralsBlanksAndNewLines) {
  EXPECT_EQ(Line("\"Total:\",6.2d", {12.5f}), "Total: 12.50");
  EXPECT_EQ(Line("\"A\" \"B\"  '67,\"D\""), "ABCD");
  EXPECT_EQ(Line("'65'66 '067"), "ABC");
  EXPECT_EQ(Line("\"x\",3x,\"y\",x,\"z\",*x,\"!\""), "x   y z!");
  EXPECT_EQ(Line("2d/2d", {1.0f, 2.0f}), " 1\r\n 2");
  EXPECT_EQ(Line("\"a(b)c\""), "a(b)c");
  EXPECT_EQ(Line("'0").size(), 1u);
}

TEST(UsingFormat, LineEndingControl) {
  EXPECT_EQ(Format("#,3d", {1.0f}).line, "  1");
  EXPECT_EQ(Format("  + , 3d", {1.0f}).line, "  1\r");
  EXPECT_EQ(Format("-3d", {1.0f}).line, "  1\n");  // a leading "-" is the line-feed control
  EXPECT_EQ(Format("#").line, "");
  EXPECT_EQ(Format("").line, "\r\n");
  // Reruns start after the control.
  EXPECT_EQ(Format("#,2d", {1.0f, 2.0f, 3.0f}).line, " 1 2 3");
}

TEST(UsingFormat, GroupsReplicateAndFormatsRerun) {
  EXPECT_EQ(Line("3(4d)", {1.0f, 2.0f, 3.0f, 4.0f, 5.0f}), "   1   2   3   4   5");
  EXPECT_EQ(Line("2(2d,\"-\"),\"|\"", {1.0f, 2.0f, 3.0f}), " 1- 2-| 3--|");
  EXPECT_EQ(Line("2(\"<\",2(d),\">\")", {1.0f, 2.0f, 3.0f, 4.0f}), "<12><34>");
  EXPECT_EQ(Line(" 3( d ) , \"!\"", {7.0f}), "7!");
  EXPECT_EQ(Line("2(\")\")"), "))");                              // quoted parentheses do not count
  EXPECT_EQ(Line("3(2d", {1.0f, 2.0f, 3.0f, 4.0f}), " 1 2 3 4");  // closed by the end of text
  // An unknown letter ends the run of its group, or of the whole format.
  EXPECT_EQ(Line("2(d,q,\"never\",(\")\")),\"after\"", {1.0f, 2.0f, 3.0f}), "12after3after");
  EXPECT_EQ(Line("3d,q,4d", {1.0f, 2.0f, 3.0f}), "  1  2  3");
}

TEST(UsingFormat, APassThatTakesNoValueEndsTheStatement) {
  EXPECT_EQ(Line("\"Hi\"", {1.0f, 2.0f}), "Hi");
  EXPECT_EQ(Line("q", {1.0f}), "");
  EXPECT_EQ(Line("3d,\"x\""), "x");  // no values: fields write nothing
}

TEST(UsingFormat, ErrorsStopTheLineAtOnce) {
  struct Case {
    const char* format;
    const char* line;
    ErrorCode code;
  };
  for (const Case& c : {
           Case{"2d,0(d),2d", " 1", err::kBadReplicator},
           Case{"2d,256(d)", " 1", err::kBadReplicator},
           Case{"99999999999999999999(d)", "", err::kBadReplicator},
           Case{"2d,(d)", " 1", err::kMissingReplicator},
           Case{"2(d)(d)", "12", err::kMissingReplicator},
           Case{"2d,?", " 1", err::kBadFormatChar},
           Case{"2d,)", " 1", err::kBadFormatChar},
           Case{"2d,8 d", " 1", err::kBadFormatChar},
           Case{"2(,d)", "", err::kBadFormatChar},  // a group's first item follows its "("
           Case{"---2d", "", err::kBadFormatChar},  // the "-" control, a "-" flag and a third "-"
           Case{"2d,\"ok\",'300,2d", " 1ok", err::kBadLiteral},
           Case{"2d,'999", " 1", err::kBadLiteral},
           Case{"2d,'", " 1", err::kBadLiteral},
           Case{"2d,\"open", " 1", err::kBadLiteral},
           Case{"2d,\"a\nb\"", " 1", err::kBadLiteral},
           Case{"2(2d,'256)", " 1", err::kBadLiteral},
       }) {
    Result r = Format(c.format, {1.0f, 2.0f, 3.0f});
    EXPECT_EQ(r.code, c.code) << c.format;
    EXPECT_EQ(r.line, c.line) << c.format;
  }
}

// Every byte where an item may start, in both grammars: no crash, and either a
// line or a format error.
TEST(UsingFormat, EveryCharacterIsHandled) {
  for (auto grammar : {ImageFormat::kOwn, ImageFormat::kClassic})
    for (int c = 1; c < 256; ++c) {
      std::string one(1, static_cast<char>(c));
      for (std::string format : {one, "3(" + one + ")", "\"a\"," + one + ",3d", "D" + one + "D"}) {
        Result r = Format(format, {1.0f, std::string("s")}, FormatRunner::kMaxLine, grammar);
        EXPECT_TRUE(r.code == 0 || (r.code >= 4001 && r.code <= 4009)) << c;
      }
    }
}

// ---- the classic grammar ----------------------------------------------------------------

std::string Classic(std::string_view format, std::vector<Value> values = {}) {
  return Line(format, std::move(values), ImageFormat::kClassic);
}

Result ClassicResult(std::string_view format, std::vector<Value> values = {}) {
  return Format(format, std::move(values), FormatRunner::kMaxLine, ImageFormat::kClassic);
}

TEST(ClassicFormat, FieldsOfOldListings) {
  EXPECT_EQ(Classic("DDD,2X,DD", {5.0f, 7.0f}), "  5   7");
  EXPECT_EQ(Classic("3D.D,6D", {12.3f, 456.0f}), " 12.3   456");
  EXPECT_EQ(Classic("AA,X,AAA", {"XY", "PQR"}), "XY PQR");
  EXPECT_EQ(Classic("SDD.DD", {-3.14159f}), " -3.14");
  EXPECT_EQ(Classic("S5D", {7.0f}), "    +7");
  EXPECT_EQ(Classic("3D", {12345.0f}), "***");
  EXPECT_EQ(Classic("DDXDDDXDDD", {5000.0f}), "     5 000");
  EXPECT_EQ(Classic("3d.2d,2a", {1.005f, "ABC"}), "  1.00AB");  // counts, lower case
}

TEST(ClassicFormat, NumbersRoundAlignAndTakeTheirSign) {
  EXPECT_EQ(Classic("3D,3D,3D", {2.5f, -2.5f, -0.4f}), "  3 -3  0");  // no "-0"
  EXPECT_EQ(Classic("DD.DD,D.DD,.DD", {0.5f, -0.5f, 0.25f}), " 0.50-.50.25");
  EXPECT_EQ(Classic("3D,S3D,S3D", {-123.0f, 123.0f, 0.0f}), "***+123  +0");
  EXPECT_EQ(Classic("DDXDDD", {-123.0f}), "  -123");  // the sign stands before the first digit
  EXPECT_EQ(Classic("SDD.DD", {-99.999f}), "******");
  EXPECT_EQ(Classic("4D.2D", {9.999f}), "  10.00");
  EXPECT_EQ(Classic("D,D", {INFINITY, NAN}), "**");
  EXPECT_EQ(Classic("DD", {"ABC"}), "ABC");  // text in a numeric field is written as text
  EXPECT_EQ(Classic("5A,\"|\"", {-2.5f}), "-2.5 |");
  EXPECT_EQ(Classic("2A", {"ABCDE"}), "AB");
}

TEST(ClassicFormat, ExponentFields) {
  EXPECT_EQ(Classic("D.DDDE", {12345.0f}), "1.235E+04");
  EXPECT_EQ(Classic("SD.DDDE", {-0.000123f}), "-1.230E-04");
  EXPECT_EQ(Classic("3DE", {-5.0f}), "-50E-01");  // a position left for the sign
  EXPECT_EQ(Classic("D.DE,.DDE", {9.96f, 0.5f}), "1.0E+01.50E+00");
  EXPECT_EQ(Classic("D.DDE", {0.0f}), "0.00E+00");
  EXPECT_EQ(Classic("DE", {-1.0f}), "*****");                    // no position for digit and sign
  EXPECT_EQ(Classic("200DE", {1e-30f}), std::string(204, '*'));  // exponent past two digits
}

TEST(ClassicFormat, LiteralsGroupsNewLinesAndReruns) {
  EXPECT_EQ(Classic("\"TOTAL\",DD,/,\"END\"", {7.0f}), "TOTAL 7\r\nEND");
  EXPECT_EQ(Classic("\"A\"DD\"B\"/DD", {1.0f, 2.0f}), "A 1B\r\n 2");
  EXPECT_EQ(Classic("2(DD,X),\"|\"", {1.0f, 2.0f}), " 1  2 |");
  // Values left over start the format again on a new line.
  EXPECT_EQ(Classic("\"N\",DD", {1.0f, 2.0f}), "N 1\r\nN 2");
  EXPECT_EQ(ClassicResult("#,DD", {1.0f, 2.0f}).line, " 1\r\n 2");
  EXPECT_EQ(Classic("255X").size(), 255u);
  EXPECT_EQ(Classic("255X255X").size(), 510u);
  EXPECT_EQ(Classic("255D", {1.0f}), std::string(254, ' ') + "1");
}

TEST(ClassicFormat, BadFormatsStopWithTheirError) {
  struct Case {
    const char* format;
    const char* line;
    ErrorCode code;
  };
  for (const Case& c : {
           Case{"DD,DD.D.D", " 1", err::kBadNumberFormat},  // two decimal points
           Case{"256D", "", err::kBadNumberFormat},         // wider than 255
           Case{"200D56D", "", err::kBadNumberFormat},
           Case{"S200D55D", "", err::kBadNumberFormat},
           Case{"256A", "", err::kBadStringFormat},
           Case{"DDA", "", err::kBadStringFormat},
           Case{"SDSD", "", err::kBadNumberFormat},
           Case{"DSD", "", err::kBadNumberFormat},
           Case{"DDED", "", err::kBadNumberFormat},
           Case{"E", "", err::kBadNumberFormat},
           Case{"S.", "", err::kBadNumberFormat},
           Case{"0D", "", err::kBadReplicator},
           Case{"DD,256(D)", " 1", err::kBadReplicator},
           Case{"DD,(D)", " 1", err::kMissingReplicator},
           Case{"DD DD", " 1", err::kBadFormatDelimiter},
           Case{"DD,,DD", " 1", err::kBadFormatDelimiter},
           Case{",DD", "", err::kBadFormatDelimiter},
           Case{"2(DD)DD", " 1 2", err::kBadFormatDelimiter},
           Case{"DD,3Q", " 1", err::kBadFormatChar},
           Case{"DD,Q", " 1", err::kBadFormatChar},
           Case{"DD)", " 1", err::kBadFormatChar},
           Case{"DD,\"open", " 1", err::kBadLiteral},
       }) {
    Result r = ClassicResult(c.format, {1.0f, 2.0f, 3.0f});
    EXPECT_EQ(r.code, c.code) << c.format;
    EXPECT_EQ(r.line, c.line) << c.format;
  }
}

using Clock = std::chrono::steady_clock;
double SecondsSince(Clock::time_point start) {
  return std::chrono::duration<double>(Clock::now() - start).count();
}

TEST(UsingFormat, HostileFormatsRunInBoundedTimeAndOutput) {
  auto start = Clock::now();
  // 255 nested three deep is 16,581,375 fields; once the values are used up
  // the rounds repeat what the first one wrote.
  EXPECT_EQ(Line("255(255(255(d)))", {1.0f, 2.0f, 3.0f}), "123");
  Result blanks = Format("255(255(255(x)))");
  EXPECT_EQ(blanks.code, 0u);
  EXPECT_EQ(blanks.line.size(), 255u * 255 * 255 + 2);
  // Nested five deep, with a literal: 2 * 255^5 characters are refused whole.
  Result huge = Format("255(255(255(255(255(\"ab\")))))");
  EXPECT_EQ(huge.code, err::kStringOverflow);
  EXPECT_EQ(huge.line, "");
  // A group that ends early takes no value either.
  EXPECT_EQ(Line("255(255(255(255(q,d))))", {1.0f}), "");
  // 200 groups deep, and 2,000 characters of fields and literals.
  std::string deep;
  for (int i = 0; i < 200; ++i) deep += "1(";
  deep += "d";
  deep += std::string(200, ')');
  EXPECT_EQ(Line(deep, {1.0f, 2.0f, 3.0f}), "123");
  EXPECT_EQ(Line(deep.substr(0, 401), {4.0f}), "4");  // unclosed, 200 deep
  std::string wide;
  while (wide.size() < 2000) wide += "2d,\"|\",";
  EXPECT_EQ(Line(wide, {1.0f}), " 1" + std::string(wide.size() / 7, '|'));
  std::string quotes(2000, '"');
  EXPECT_EQ(Line(quotes), "");
  EXPECT_EQ(Format(quotes.substr(1)).code, err::kBadLiteral);
  std::string parens(2000, '(');
  EXPECT_EQ(Format(parens).code, err::kMissingReplicator);
  EXPECT_EQ(Format("9" + parens).code, err::kMissingReplicator);
  EXPECT_EQ(Format(std::string(2000, ')')).code, err::kBadFormatChar);
  EXPECT_EQ(Format(std::string(ImageFormat::kMaxText + 1, 'x')).code, err::kBadFormatChar);
  EXPECT_LT(SecondsSince(start), 5.0);
}

TEST(UsingFormat, ALineLongerThanTheLimitIsDropped) {
  Result r = Format("10a", {std::string(40, 'y')}, 41);
  EXPECT_EQ(r.code, err::kStringOverflow);  // the LF does not fit
  EXPECT_EQ(r.line, "");
  r = Format("10a", {std::string(40, 'y')}, 42);
  EXPECT_EQ(r.code, 0u);
  r = Format("100a", {"y"}, 42);
  EXPECT_EQ(r.code, err::kStringOverflow);
  EXPECT_EQ(r.line, "");
}

// The line buffer and the group stack are kept: after a first line, the
// next ones allocate nothing.
TEST(UsingFormat, LinesAfterTheFirstAllocateNothing) {
  ImageFormat image("\"Item \",-10a,3(08.2d,x),'124,s5d/");
  FormatRunner runner;
  ListValues values({"widgets and more", 1.25f, -3.5f, 1e6f, 42.0f, "again", 7.0f, 3e20f});
  ASSERT_EQ(runner.Run(image, values), 0u);
  std::string first(runner.Line());
  long before = AllocationCount();
  for (int i = 0; i < 1000; ++i) {
    values.Rewind();
    ASSERT_EQ(runner.Run(image, values), 0u);
  }
  EXPECT_EQ(AllocationCount() - before, 0);
  EXPECT_EQ(runner.Line(), first);
  EXPECT_EQ(first,
            "Item widgets and more00001.25 000-3.50 1000000.00 |  +42\r\n"
            "Item again     00007.00 300000006012263202816.00  |\r\n\r\n");
  ImageFormat classic("\"Item \",10A,2(SDXDDD.DD,X),5DE/", ImageFormat::kClassic);
  ASSERT_EQ(runner.Run(classic, values), 0u);
  before = AllocationCount();
  for (int i = 0; i < 1000; ++i) {
    values.Rewind();
    ASSERT_EQ(runner.Run(classic, values), 0u);
  }
  EXPECT_EQ(AllocationCount() - before, 0);
}

// Values with TAB columns among them, placed as a print list's TAB places them.
class TabbedValues final : public UsingValues {
 public:
  explicit TabbedValues(std::vector<std::variant<float, int>> values)
      : values_(std::move(values)) {}
  bool Remains() const override { return next_ < values_.size(); }
  FieldValue Take() override { return {false, std::get<float>(values_[next_++]), {}}; }
  void PlaceFunctions(PrintSink& line) override {
    for (; next_ < values_.size() && std::holds_alternative<int>(values_[next_]); ++next_)
      while (line.Column() < std::get<int>(values_[next_])) line.Print(' ');
  }

 private:
  std::vector<std::variant<float, int>> values_;
  size_t next_ = 0;
};

TEST(UsingFunctions, PlacedWhereTheyStandAndTakeNoField) {
  ImageFormat image("D,\"X\",D", ImageFormat::kClassic);
  FormatRunner runner;
  TabbedValues first({4, 1.0f, 6, 2.0f});
  ASSERT_EQ(runner.Run(image, first), 0u);
  // Before the first value at once; after a value before the format's text.
  EXPECT_EQ(runner.Line(), "    1 X2\r\n");
  // TAB counts from the column the line starts at, and from a new line's start.
  TabbedValues again({4, 1.0f, 2.0f, 3.0f, 2});
  ASSERT_EQ(runner.Run(image, again, 2), 0u);
  EXPECT_EQ(runner.Line(), "  1X2\r\n3 X\r\n");
  // A line past its longest overflows; the TAB still ends.
  FormatRunner small(16);
  TabbedValues wide({1.0f, 100000});
  EXPECT_EQ(small.Run(image, wide), err::kStringOverflow);
  EXPECT_EQ(small.Line(), "");
}

}  // namespace
