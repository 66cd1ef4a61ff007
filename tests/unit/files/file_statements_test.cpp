// Data file statements run in whole programs: what the link opens and closes,
// how the pointer moves through records, and files that change under a run.
#include <dirent.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdlib>
#include <string>

#include "program_fixture.h"

namespace {

using namespace stmt_test;

class FileStatements : public ScratchFolder {};

// A file of 3 records of 5 words: two numbers fill 4 words, a third flows on.
TEST_F(FileStatements, SerialWritingFlowsRecordByRecord) {
  auto prog =
      Build({"10 CREATE R,\"f\",3,5", "20 ASSIGN \"f\",1,R", "30 PRINT #1;1,2,3,\"ABCDEFGH\",4",
             "40 READ #1,1", "50 FOR I=1 TO 4", "60 READ #1;X", "70 PRINT REC(1);ITM(1);X",
             "80 NEXT I", "90 READ #1;A$", "100 PRINT REC(1);ITM(1);A$;TYP(1)"});
  ConsoleCapture out;
  // Record 3 holds "ABCDEFGH" (1 + 4 words, exactly full), so 4 is past the end.
  EXPECT_EQ(LinkAndRun(*prog), err::kFileEnd);
  EXPECT_EQ(loc::Number(g_err.location), 30u);
  ClearError();
  prog->Delete(prog->Find(30));
  EXPECT_EQ(LinkAndRun(*prog), err::kDataWrongType);  // the fourth item is the string
  EXPECT_EQ(out.Text(),
            " 1     2     1    \n"
            " 1     3     2    \n"
            " 2     2     3    \n");
  ClearError();
}

TEST_F(FileStatements, TheLinkOpensAndEveryRunEndCloses) {
  ASSERT_EQ(DataFile::Create("d", 2, 8), CreateStatus::kCreated);
  int before = OpenDescriptors();
  auto prog = Build({"10 FILES d,*,d", "20 PRINT #3;5", "30 READ #1,1;X", "40 PRINT X"});
  ConsoleCapture out;
  ASSERT_EQ(Link(*prog), 0u);
  // Two units of one file share a descriptor for its lock and one of its folder.
  EXPECT_EQ(OpenDescriptors(), before + 4);
  EXPECT_EQ(::Run(*prog, true), 0u);
  EXPECT_EQ(out.Text(), " 5    \n");
  EXPECT_EQ(OpenDescriptors(), before);
  // A run that fails closes them too.
  prog = Build({"10 FILES d", "20 READ #1;A$"});
  EXPECT_EQ(LinkAndRun(*prog), err::kDataWrongType);
  EXPECT_EQ(OpenDescriptors(), before);
  ClearError();
}

TEST_F(FileStatements, AFileRemovedAfterTheLinkStaysReadable) {
  ASSERT_EQ(DataFile::Create("gone", 1, 8), CreateStatus::kCreated);
  auto prog = Build({"10 FILES gone", "20 PRINT #1;42", "30 READ #1,1;X", "40 PRINT X"});
  ConsoleCapture out;
  ASSERT_EQ(Link(*prog), 0u);
  ASSERT_EQ(unlink("gone"), 0);
  EXPECT_EQ(::Run(*prog, true), 0u);
  EXPECT_EQ(out.Text(), " 42   \n");
  // Missing at the link: the run does not start.
  EXPECT_EQ(Link(*prog), err::kFileNotFound);
  EXPECT_EQ(loc::Number(g_err.location), 10u);
  ClearError();
}

TEST_F(FileStatements, TheEndBranchBelongsToTheFileNumber) {
  ASSERT_EQ(DataFile::Create("a", 1, 8), CreateStatus::kCreated);
  ASSERT_EQ(DataFile::Create("b", 1, 8), CreateStatus::kCreated);
  auto prog =
      Build({"10 IF END #2 THEN 60", "20 ASSIGN \"a\",2,R", "30 READ #2;X", "40 PRINT \"NO\"",
             "50 END", "60 ASSIGN \"b\",2,R", "70 OFF END #2", "80 READ #2;X"});
  ConsoleCapture out;
  EXPECT_EQ(LinkAndRun(*prog), err::kFileEnd);
  EXPECT_EQ(loc::Number(g_err.location), 80u);
  EXPECT_EQ(out.Text(), "");
  ClearError();
}

// What was written before the failing value stays, with its end-of-record mark.
TEST_F(FileStatements, FailedValuesWriteNothing) {
  ASSERT_EQ(DataFile::Create("a", 2, 8), CreateStatus::kCreated);
  auto prog = Build({"10 FILES a", "20 PRINT #1;1,Y,3"});
  EXPECT_EQ(LinkAndRun(*prog), err::kUndefinedValue);
  ClearError();
  prog = Build({"10 FILES a", "20 READ #1;X", "30 PRINT X;TYP(1)"});
  ConsoleCapture out;
  EXPECT_EQ(LinkAndRun(*prog), 0u);
  EXPECT_EQ(out.Text(), " 1     4    \n");
}

// MAT PRINT # writes the elements as one PRINT # of them, flowing serially
// into the next records; MAT READ # reads them as READ # does, new bounds first.
TEST_F(FileStatements, WholeArraysMoveThePointerAsReadAndPrintDo) {
  ASSERT_EQ(DataFile::Create("m", 3, 6), CreateStatus::kCreated);
  auto prog = Build({"10 DIM A(5),B(2,2),S$(2)", "20 FILES m", "30 MAT A=CON", "40 A(5)=5",
                     "50 S$(1)=\"AB\"", "60 S$(2)=\"CD\"", "70 MAT PRINT #1;A;S$",
                     "80 PRINT REC(1);ITM(1)", "90 READ #1,1", "100 MAT READ #1;B,A(1),S$(1)",
                     "110 PRINT B(2,2);A(1);S$(1);REC(1);ITM(1)", "120 MAT READ #1,3;A(2)"});
  ConsoleCapture out;
  // Records of 6 words hold 3 numbers: 1 1 1 | 1 5 "AB" | "CD".
  EXPECT_EQ(LinkAndRun(*prog), err::kDataWrongType);
  EXPECT_EQ(loc::Number(g_err.location), 120u);
  EXPECT_EQ(out.Text(),
            " 3     2    \n"
            " 1     5    AB 2     4    \n");
  ClearError();
  // Bound to a record, the end of the record is the end of the file.
  prog = Build({"10 DIM A(5)", "20 FILES m", "30 ON END #1 THEN 60", "40 MAT READ #1,1;A",
                "50 STOP", "60 PRINT ITM(1);A(3)", "70 MAT PRINT #1,1;A"});
  EXPECT_EQ(LinkAndRun(*prog), err::kUndefinedValue);  // A(4) was never read
  EXPECT_EQ(loc::Number(g_err.location), 70u);
  const std::string before = out.Text();
  EXPECT_EQ(before.substr(before.rfind(" 4")), " 4     1    \n");
  ClearError();
  // A read-only file refuses them and keeps what it holds.
  ASSERT_EQ(chmod("m", 0444), 0);
  prog = Build({"10 DIM A(2)", "20 FILES m", "30 MAT A=ZER", "40 MAT PRINT #1,2;A"});
  EXPECT_EQ(LinkAndRun(*prog), err::kFileReadOnly);
  ClearError();
  prog = Build({"10 DIM A(2)", "20 FILES m", "30 MAT READ #1,2;A", "40 PRINT A(1);A(2)"});
  EXPECT_EQ(LinkAndRun(*prog), 0u);
  EXPECT_EQ(out.Text(), before + " 1     5    \n");
}

TEST_F(FileStatements, Listings) {
  EXPECT_EQ(Listing("PRINT #N+1,R*2;A$,B;C,END"), "PRINT #N+1,R*2;A$,B;C,END");
  EXPECT_EQ(Listing("PRINT #1;A;"), "PRINT #1;A;");  // a text file's line stays open
  EXPECT_EQ(Listing("READ #1,5"), "READ #1,5");
  EXPECT_EQ(Listing("READ #1;A,B$(2)"), "READ #1;A,B$(2)");
  EXPECT_EQ(Listing("IF END #1 THEN 100"), "ON END #1 THEN 100");
  EXPECT_EQ(Listing("ASSIGN A$,2,R,WR"), "ASSIGN A$,2,R,WR");
  EXPECT_EQ(Listing("CREATE R,\"X\"+\"Y\",10"), "CREATE R,\"X\"+\"Y\",10");
  EXPECT_EQ(Listing("FILES  my data , other.dat,*"), "FILES my data,other.dat,*");
  EXPECT_EQ(Listing("MAT READ #N,2;A(3),B$"), "MAT READ #N,2;A(3),B$");
  EXPECT_EQ(Listing("MAT PRINT #1;A;B$,C"), "MAT PRINT #1;A,B$,C");
  EXPECT_EQ(ParseErrorOf("MAT READ #1"), err::kMissingSemicolon);
  EXPECT_EQ(ParseErrorOf("MAT PRINT #1,;A"), err::kMissingRecordNumber);
  EXPECT_EQ(ParseErrorOf("MAT PRINT #1;A(2)"), err::kTrailingChars);
  EXPECT_EQ(ParseErrorOf("FILES ,A"), err::kBadStringArg);
  EXPECT_EQ(ParseErrorOf("UPDATE #1;END"), err::kBadExpression);
  EXPECT_EQ(ParseErrorOf("PRINT #1;END,A"), err::kTrailingChars);
  EXPECT_EQ(ParseErrorOf("READ #1;"), err::kBadTarget);
  EXPECT_EQ(ParseErrorOf("ADVANCE #1;2"), err::kMissingDelimiter);
  EXPECT_EQ(ParseErrorOf("CLOSE 1"), err::kNotSupported);
}

}  // namespace
