// DIM: parse errors with their deliberate asymmetries, listing, and creation at link.
#include "program_fixture.h"

namespace {
using namespace stmt_test;

TEST(Dim, ListsEveryItemForm) {
  EXPECT_EQ(Listing("DIM A(10),B$[20],C$(5)[8],D(3,4)"), "DIM A(10),B$[20],C$(5)[8],D(3,4)");
  EXPECT_EQ(Listing("DIM A[10],E$(2,3)"), "DIM A(10),E$(2,3)");
  EXPECT_EQ(Listing("DIM A(3],B(0.5),C(2.5),D(0x10)"), "DIM A(3),B(1),C(3),D(16)");
}

TEST(Dim, ParseErrors) {
  EXPECT_EQ(ParseErrorOf("DIM A$"), 30u);  // a bare string name needs a length
  EXPECT_EQ(ParseErrorOf("DIM A$[5"), 31u);
  EXPECT_EQ(ParseErrorOf("DIM C$(5)[8"), 31u);
  EXPECT_EQ(ParseErrorOf("DIM B$[0]"), 67u);  // a length below 0.5 stands as 67
  EXPECT_EQ(ParseErrorOf("DIM B$[N]"), 67u);
  EXPECT_EQ(ParseErrorOf("DIM C$(2)[0.4]"), 67u);
  EXPECT_EQ(ParseErrorOf("DIM A(0)"), 47u);  // bound errors always read 47
  EXPECT_EQ(ParseErrorOf("DIM A(0.4)"), 47u);
  EXPECT_EQ(ParseErrorOf("DIM A(N)"), 47u);
  EXPECT_EQ(ParseErrorOf("DIM A(10"), 47u);
  EXPECT_EQ(ParseErrorOf("DIM A(3,)"), 47u);
  EXPECT_EQ(ParseErrorOf("DIM C$(0)"), 47u);
  EXPECT_EQ(ParseErrorOf("DIM A"), 50u);
  EXPECT_EQ(ParseErrorOf("DIM"), 50u);
  EXPECT_EQ(ParseErrorOf("DIM A(10),"), 50u);
  EXPECT_EQ(ParseErrorOf("DIM A(10),B$"), 50u);  // the rest of a list fails as a whole
  EXPECT_EQ(ParseErrorOf("DIM A(10),A(5)"), 61u);
  EXPECT_EQ(ParseErrorOf("DIM A$[2],B(1),A$[3]"), 61u);
  EXPECT_EQ(ParseErrorOf("DIM A(10),A$(5),A$[5]"), 0u);  // three different heaps
}

TEST(Dim, LinkCreatesDeclaredArrays) {
  auto prog = Build({"10 DIM A(3,4),S$(2)[8]", "20 DIM T$[5]"});
  ASSERT_EQ(Link(*prog), 0u);
  const VarToken* a = static_cast<const VarToken*>(prog->Table(tok::kNumArray).Find("A"));
  ASSERT_TRUE(a);
  auto& array = prog->variables.NumericArray(a);
  ASSERT_TRUE(array);
  EXPECT_EQ(array->count, 12u);
  EXPECT_TRUE(IsUndefined(array->elements[11]));
  const VarToken* s = prog->Table(tok::kStrArray).Find("S$");
  ASSERT_TRUE(s);
  EXPECT_EQ(prog->variables.StringArray(s)->count, 2u);
  EXPECT_TRUE(prog->variables.FindStringSimple(prog->Table(tok::kStrVar).Find("T$")));
  // A reference after the DIM binds to the declared shape: A(3,4) is in bounds.
  EXPECT_EQ(Num(*prog, "A(3,4)"), 0.0f);
  // Linking again starts from clean storage, so no 61.
  EXPECT_EQ(Link(*prog), 0u);
}

TEST(Dim, SecondDeclarationFailsAtLinkWhereItStands) {
  auto prog = Build({"10 DIM A(10)", "20 DIM B(2),A(5)"});
  EXPECT_EQ(Link(*prog), 61u);
  EXPECT_EQ(loc::Number(g_err.location), 20u);
  auto strings = Build({"10 DIM X$[4]", "20 DIM X$[9]"});
  EXPECT_EQ(Link(*strings), 61u);
  EXPECT_EQ(loc::Number(g_err.location), 20u);
  ClearError();
}

TEST(Dim, ElementLimit) {
  auto big = Build({"10 DIM C(4096,4096)"});
  EXPECT_EQ(Link(*big), 59u);
  auto huge = Build({"10 DIM C(1E30)"});
  EXPECT_EQ(Link(*huge), 59u);
  auto most = Build({"10 DIM C(4095,4097)"});  // 16,777,215 elements
  EXPECT_EQ(Link(*most), 0u);
  ClearError();
}

}  // namespace
