// The item scanner of typed INPUT lines: the class and text of each item.
#include "lex/input_scanner.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "base/dialect.h"

namespace {

struct Scan {
  unsigned cls;
  std::string text;
};

std::vector<Scan> ScanAll(const char* line) {
  InputScanner scanner;
  scanner.Start(line);
  std::vector<Scan> items;
  for (int i = 0; i < 10; ++i) {
    unsigned cls = scanner.Next();
    items.push_back({cls, std::string(scanner.Text())});
    if (cls == item::kEnd || (cls != item::kEmpty && cls != item::kString && cls != item::kText &&
                              (cls < 12 || cls > 15)))
      break;
  }
  return items;
}

unsigned FirstClass(const char* line) { return ScanAll(line).front().cls; }

TEST(InputScanner, NumberClasses) {
  EXPECT_EQ(FirstClass("12"), 12u);
  EXPECT_EQ(FirstClass("0"), 12u);
  EXPECT_EQ(FirstClass("0x1f"), 13u);
  EXPECT_EQ(FirstClass("0XAB,"), 13u);
  EXPECT_EQ(FirstClass("1.5"), 14u);
  EXPECT_EQ(FirstClass(".5"), 14u);
  EXPECT_EQ(FirstClass("1E5"), 15u);
  EXPECT_EQ(FirstClass("2.5e-3"), 15u);
  EXPECT_EQ(FirstClass("0x"), 10u);
  EXPECT_EQ(FirstClass("0xG"), 10u);
  EXPECT_EQ(FirstClass("0x1g"), 10u);
  EXPECT_EQ(FirstClass("12a"), 10u);
  EXPECT_EQ(FirstClass("1 "), 10u);  // a blank after a number is no separator
  EXPECT_EQ(FirstClass("1.5x"), 6u);
  EXPECT_EQ(FirstClass("1Ex"), 6u);
  EXPECT_EQ(FirstClass("1E5x"), 6u);
  EXPECT_EQ(FirstClass("1E+"), 5u);
  EXPECT_EQ(FirstClass("-5"), 21u);  // a sign starts text
}

TEST(InputScanner, TextAndStrings) {
  auto items = ScanAll("  two  words  ,\"q,x\" , 'x");
  ASSERT_EQ(items.size(), 3u);
  EXPECT_EQ(items[0].cls, 21u);
  EXPECT_EQ(items[0].text, "two  words");
  EXPECT_EQ(items[1].cls, 11u);
  EXPECT_EQ(items[1].text, "q,x");
  EXPECT_EQ(items[2].cls, 8u);

  items = ScanAll("\"ab\"'65\"cd\" '66 '67,\"\"\"e\"");
  EXPECT_EQ(items[0].text, "abAcdBC");
  EXPECT_EQ(items[1].cls, 11u);
  EXPECT_EQ(items[1].text, "e");
  EXPECT_EQ(items[2].cls, 2u);

  EXPECT_EQ(FirstClass("\"open"), 7u);
  EXPECT_EQ(FirstClass("\"a\" b"), 8u);
  EXPECT_EQ(FirstClass("'256"), 8u);
  EXPECT_EQ(FirstClass("'99999999999999999999"), 8u);
  EXPECT_EQ(FirstClass(",5"), 0u);
  EXPECT_EQ(FirstClass("   "), 2u);
  EXPECT_EQ(FirstClass("7\n"), 12u);

  items = ScanAll("'0");  // a NUL character is part of the text
  EXPECT_EQ(items[0].text, std::string(1, '\0'));
}

// Under the classic switch a sign directly before a digit or point is a number's.
TEST(InputScanner, ClassicSignedNumbers) {
  g_classic = true;
  auto items = ScanAll("-40,+5, -.5,-1E3,+,-X,- 4,-4X");
  g_classic = false;
  ASSERT_EQ(items.size(), 8u);
  EXPECT_EQ(items[0].cls, item::kInteger);
  EXPECT_EQ(items[0].text, "-40");
  EXPECT_EQ(items[1].cls, item::kInteger);
  EXPECT_EQ(items[2].cls, item::kDecimal);
  EXPECT_EQ(items[2].text, "-.5");
  EXPECT_EQ(items[3].cls, item::kExponent);
  EXPECT_EQ(items[4].cls, item::kText);  // a sign alone
  EXPECT_EQ(items[4].text, "+");
  EXPECT_EQ(items[5].cls, item::kText);  // before a letter
  EXPECT_EQ(items[6].cls, item::kText);  // not directly before the digit
  EXPECT_EQ(items[7].cls, item::kBadNumber);
  InputScanner scanner;
  g_classic = true;
  scanner.Start("-1E3");
  unsigned cls = scanner.Next();
  g_classic = false;
  EXPECT_EQ(scanner.Number(cls), -1000.0f);
  EXPECT_EQ(FirstClass("+5"), item::kText);  // the switch off: text, as today
}

}  // namespace
