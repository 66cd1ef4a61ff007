// MAT statements: parsing and listing, the assignments, READ, INPUT and PRINT.
#include "program_fixture.h"

namespace {
using namespace stmt_test;

// Runs the lines with typed input; keeps the program, its result and its output.
struct MatRun {
  MatRun(std::initializer_list<const char*> lines, std::string_view typed = "") : capture(typed) {
    prog = Build(lines);
    result = LinkAndRun(*prog);
    line = loc::Number(g_err.location);
    ClearError();
    out = capture.Text();
  }
  // The elements of a numeric array as the run left them, row-major.
  std::vector<float> Elements(const char* name) {
    const auto& data = prog->variables.NumericArray(prog->Table(tok::kNumArray).Find(name));
    return std::vector<float>(data->elements.get(), data->elements.get() + data->count);
  }
  std::vector<uint32_t> Bounds(const char* name) {
    auto bounds =
        prog->variables.NumericArray(prog->Table(tok::kNumArray).Find(name))->dims.Bounds();
    return {bounds.begin(), bounds.end()};
  }
  ConsoleCapture capture;
  std::unique_ptr<Program> prog;
  ErrorCode result;
  uint32_t line;
  std::string out;
};

using Floats = std::vector<float>;
using Bounds = std::vector<uint32_t>;

TEST(Mat, Listings) {
  for (const char* text : {"MAT A=ZER", "MAT A=CON(3,4)", "MAT A=IDN", "MAT A=B", "MAT A=B+C",
                           "MAT A=B-C", "MAT A=B*C", "MAT A=(X+1)*B", "MAT A=TRN(B)",
                           "MAT A=INV(B)", "MAT A$=ZER(5)", "MAT A$=B$", "MAT READ A,B$(2,N+1)",
                           "MAT INPUT A(3),B$", "MAT PRINT A", "MAT PRINT A;B$,C;", "MAT PRINT A,"})
    EXPECT_EQ(Listing(text), text);
  EXPECT_EQ(Listing("mat a = zer[2,3]"), "MAT a=ZER(2,3)");
  EXPECT_EQ(Listing("MAT READ A[2]"), "MAT READ A(2)");
}

TEST(Mat, ParseErrors) {
  EXPECT_EQ(ParseErrorOf("MAT"), err::kBadMatrixVar);
  EXPECT_EQ(ParseErrorOf("MAT 5=ZER"), err::kBadMatrixVar);
  EXPECT_EQ(ParseErrorOf("MAT READ"), err::kBadMatrixVar);
  EXPECT_EQ(ParseErrorOf("MAT PRINT A,,B"), err::kBadMatrixVar);
  EXPECT_EQ(ParseErrorOf("MAT A=B+"), err::kBadMatrixVar);
  EXPECT_EQ(ParseErrorOf("MAT A=INV(5)"), err::kBadMatrixVar);
  EXPECT_EQ(ParseErrorOf("MAT A ZER"), err::kBadMatrixAssign);
  EXPECT_EQ(ParseErrorOf("MAT A="), err::kBadMatrixAssign);
  EXPECT_EQ(ParseErrorOf("MAT A=TRN B"), err::kBadMatrixAssign);
  EXPECT_EQ(ParseErrorOf("MAT A=(2)B"), err::kBadMatrixAssign);
  EXPECT_EQ(ParseErrorOf("MAT A$=CON"), err::kBadMatrixAssign);
  EXPECT_EQ(ParseErrorOf("MAT A=B$"), err::kBadMatrixAssign);
  EXPECT_EQ(ParseErrorOf("MAT A=ZER(1,2,3)"), err::kBadParamList);
  EXPECT_EQ(ParseErrorOf("MAT READ A(2"), err::kBadParamList);
  EXPECT_EQ(ParseErrorOf("MAT A=B*C*D"), err::kTrailingChars);
}

TEST(Mat, ZerConIdnAndNewBounds) {
  MatRun run({"10 DIM A(3,4),B(2,2)", "20 MAT A=CON", "30 MAT B=IDN", "40 MAT C=ZER(3)",
              "50 MAT A=IDN(3,3)"});
  ASSERT_EQ(run.result, 0u);
  EXPECT_EQ(run.Elements("B"), (Floats{1, 0, 0, 1}));
  EXPECT_EQ(run.Elements("C"), (Floats{0, 0, 0}));  // an undeclared array has ten elements
  EXPECT_EQ(run.Bounds("A"), (Bounds{3, 3}));
  EXPECT_EQ(run.Elements("A"), (Floats{1, 0, 0, 0, 1, 0, 0, 0, 1}));
}

TEST(Mat, RedimensioningUpToAndPastTheCreatedSize) {
  MatRun full({"10 DIM A(2,3)", "20 MAT A=CON(6)", "30 MAT A=ZER(1,6)"});
  EXPECT_EQ(full.result, 0u);
  EXPECT_EQ(full.Bounds("A"), (Bounds{1, 6}));

  MatRun past({"10 DIM A(2,3)", "20 MAT A=CON(7)"});
  EXPECT_EQ(past.result, err::kDimensionMismatch);
  EXPECT_EQ(past.Bounds("A"), (Bounds{2, 3}));  // unchanged

  for (const char* bound : {"0", "-1", "0/0", "1E30", "0.4"}) {
    MatRun bad({"10 DIM A(5)", (std::string("20 MAT A=ZER(") + bound + ")").c_str()});
    EXPECT_EQ(bad.result, err::kArgOutOfRange) << bound;
  }
}

TEST(Mat, IdentityNeedsASquareMatrix) {
  MatRun wide({"10 DIM A(2,3)", "20 MAT A=IDN"});
  EXPECT_EQ(wide.result, err::kDimensionMismatch);
  MatRun vector({"10 DIM A(4)", "20 MAT A=IDN"});
  EXPECT_EQ(vector.result, err::kDimensionMismatch);
  MatRun shaped({"10 DIM A(2,3)", "20 MAT A=IDN(2,3)"});
  EXPECT_EQ(shaped.result, err::kDimensionMismatch);
  EXPECT_TRUE(IsUndefined(shaped.Elements("A")[0]));  // nothing was stored
}

TEST(Mat, CopySumsAndScale) {
  MatRun run({"10 DIM A(2,2),B(2,2),C(3,3)", "20 MAT READ A,B", "30 DATA 1,2,3,4,10,20,30,40",
              "40 MAT C=A+B", "50 MAT D=B-A", "60 MAT A=(2)*A", "70 MAT B=B"});
  ASSERT_EQ(run.result, 0u);
  EXPECT_EQ(run.Bounds("C"), (Bounds{2, 2}));  // the target takes the result's bounds
  EXPECT_EQ(run.Elements("C"), (Floats{11, 22, 33, 44}));
  EXPECT_EQ(run.Elements("D"), (Floats{9, 18, 27, 36}));
  EXPECT_EQ(run.Elements("A"), (Floats{2, 4, 6, 8}));

  MatRun mismatch({"10 DIM A(2,2),B(4)", "20 MAT A=CON", "30 MAT B=CON", "40 MAT C=A+B"});
  EXPECT_EQ(mismatch.result, err::kDimensionMismatch);
  MatRun small({"10 DIM A(3,3),B(2,2)", "20 MAT A=CON", "30 MAT B=A"});
  EXPECT_EQ(small.result, err::kDimensionMismatch);
  MatRun undefined({"10 DIM A(2),B(2)", "20 MAT B=A"});
  EXPECT_EQ(undefined.result, err::kUndefinedValue);
}

TEST(Mat, ProductsAndATargetAmongTheOperands) {
  MatRun run({"10 DIM A(2,2),B(2,2),V(2)", "20 MAT READ A,B,V", "30 DATA 1,2,3,4,0,1,1,0,5,6",
              "40 MAT P=A*B", "50 MAT W=A*V", "60 MAT X=V*A", "70 MAT A=A*A"});
  ASSERT_EQ(run.result, 0u);
  EXPECT_EQ(run.Elements("P"), (Floats{2, 1, 4, 3}));
  EXPECT_EQ(run.Elements("W"), (Floats{17, 39}));
  EXPECT_EQ(run.Elements("X"), (Floats{23, 34}));
  EXPECT_EQ(run.Elements("A"), (Floats{7, 10, 15, 22}));

  MatRun inner({"10 DIM A(2,3),B(2,2)", "20 MAT A=CON", "30 MAT B=CON", "40 MAT C=A*B"});
  EXPECT_EQ(inner.result, err::kDimensionMismatch);
  MatRun vectors({"10 DIM V(3)", "20 MAT V=CON", "30 MAT C=V*V"});
  EXPECT_EQ(vectors.result, err::kDimensionMismatch);
  // The product needs 16 elements; B was made with 4 and stays as it was.
  MatRun room({"10 DIM A(4,1),B(2,2),C(1,4)", "20 MAT A=CON", "30 MAT C=CON", "40 MAT B=IDN",
               "50 MAT B=A*C"});
  EXPECT_EQ(room.result, err::kDimensionMismatch);
  EXPECT_EQ(room.Elements("B"), (Floats{1, 0, 0, 1}));
}

TEST(Mat, TransposeAndInverse) {
  MatRun run({"10 DIM A(2,3),B(3,3),T(3,2)", "20 MAT READ A,B", "30 DATA 1,2,3,4,5,6",
              "40 DATA 0,1,1,1,3,2,1,0,0", "50 MAT T=TRN(A)", "60 MAT B=INV(B)"});
  ASSERT_EQ(run.result, 0u);
  EXPECT_EQ(run.Bounds("T"), (Bounds{3, 2}));
  EXPECT_EQ(run.Elements("T"), (Floats{1, 4, 2, 5, 3, 6}));
  EXPECT_EQ(run.Elements("B"), (Floats{0, 0, 1, -2, 1, -1, 3, -1, 1}));

  MatRun singular({"10 DIM A(2,2),B(2,2)", "20 MAT A=CON", "30 MAT B=INV(A)"});
  EXPECT_EQ(singular.result, err::kSingularMatrix);
  EXPECT_EQ(singular.line, 30u);
  MatRun wide({"10 DIM A(2,3)", "20 MAT A=CON", "30 MAT B=INV(A)"});
  EXPECT_EQ(wide.result, err::kDimensionMismatch);
  MatRun vector({"10 DIM A(3)", "20 MAT A=CON", "30 MAT B=TRN(A)"});
  EXPECT_EQ(vector.result, err::kDimensionMismatch);
}

TEST(Mat, AnElementReferenceCheckedAfterTheDimensionsChanged) {
  MatRun run({"10 DIM A(3,3)", "20 MAT A=CON(9)", "30 PRINT A(1,1)"});
  EXPECT_EQ(run.result, err::kDimensionMismatch);
  EXPECT_EQ(run.line, 30u);
}

TEST(Mat, StringArrays) {
  MatRun run({"10 DIM A$(2,2),B$(5)", "20 MAT READ A$", "30 DATA \"a\",\"b\",\"c\",\"d\"",
              "40 MAT B$=A$", "50 PRINT B$(2)"});
  EXPECT_EQ(run.result, err::kDimensionMismatch);  // B$ took two dimensions
  EXPECT_EQ(run.line, 50u);
  MatRun copy({"10 DIM A$(2),B$(3)", "20 MAT READ A$", "30 DATA \"x\",\"y\"", "40 MAT B$=A$",
               "50 MAT A$=ZER", "60 PRINT B$(1);B$(2);\"[\";A$(1);\"]\""});
  ASSERT_EQ(copy.result, 0u);
  EXPECT_EQ(copy.out, "xy[]\n");
}

TEST(Mat, ReadTakesDataRowByRow) {
  MatRun run({"10 DIM A(3,3)", "20 MAT READ A(2,2),B$(1)", "30 DATA 1,2,3,4,\"s\""});
  ASSERT_EQ(run.result, 0u);
  EXPECT_EQ(run.Bounds("A"), (Bounds{2, 2}));
  EXPECT_EQ(run.Elements("A"), (Floats{1, 2, 3, 4}));
  EXPECT_EQ(Str(*run.prog, "B$(1)"), "s");

  MatRun out({"10 DIM A(2,2)", "20 MAT READ A", "30 DATA 1,2,3", "40 PRINT A(1,2)"});
  EXPECT_EQ(out.result, err::kOutOfData);
  EXPECT_EQ(out.line, 20u);
  EXPECT_EQ(out.Elements("A")[2], 3.0f);  // what was read stays
  MatRun type({"10 MAT READ A", "20 DATA 1,\"x\""});
  EXPECT_EQ(type.result, err::kDataWrongType);
  MatRun onEnd(
      {"10 ON END THEN 50", "20 MAT READ A(3)", "30 DATA 1", "40 STOP", "50 PRINT \"END\";A(1)"});
  EXPECT_EQ(onEnd.result, 0u);
  EXPECT_EQ(onEnd.out, "END 1    \n");
}

TEST(Mat, InputFillsElementsAcrossLines) {
  MatRun run({"10 MAT INPUT A(2,2),N$(1)"}, "1,2\n3\nx,4,word\n4,ok\n");
  ASSERT_EQ(run.result, 0u);
  EXPECT_EQ(run.out, "?1,2\n?3\n?x,4,word\nBad Input. Re-type from item 4\n??4,ok\n");
  EXPECT_EQ(run.Elements("A"), (Floats{1, 2, 3, 4}));
  EXPECT_EQ(Str(*run.prog, "N$(1)"), "ok");

  MatRun early({"10 MAT INPUT A(3)"}, "5\n\n");  // an empty line ends it
  EXPECT_EQ(early.result, 0u);
  EXPECT_TRUE(IsUndefined(early.Elements("A")[1]));
  MatRun extra({"10 MAT INPUT A(1)"}, "5,6\n");
  EXPECT_EQ(extra.out, "?5,6\nExtra input - warning only (12)\n");
  MatRun eof({"10 MAT INPUT A(2)"}, "5\n");
  EXPECT_EQ(eof.result, err::kFileEnd);
}

TEST(Mat, PrintRowsInZonesOrPacked) {
  MatRun run({"10 DIM A(2,3),V(2),S$(2)", "20 MAT READ A,V,S$", "30 DATA 1,2,3,-4,5.5,6,7,8",
              "40 DATA \"ab\",\"c\"", "50 MAT PRINT A", "60 MAT PRINT A;V", "70 MAT PRINT S$;S$"});
  ASSERT_EQ(run.result, 0u);
  EXPECT_EQ(run.out,
            " 1              2              3    \n\n"
            "-4              5.5            6    \n\n"
            " 1     2     3    \n\n"
            "-4     5.5        6    \n\n"
            " 7              8    \n\n"
            "abc\n\n"
            "ab             c\n\n");
  // An undefined element prints as 0 and the run stops after the whole list.
  MatRun undefined({"10 DIM A(2)", "20 MAT PRINT A;", "30 PRINT \"no\""});
  EXPECT_EQ(undefined.result, err::kUndefinedValue);
  EXPECT_EQ(undefined.out, " 0     0    \n\n");
}

}  // namespace
