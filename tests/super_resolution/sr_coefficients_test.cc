// The coefficient-file loader of the enhanced 2x upscaler: what each line of
// the text file puts into the table and the valid-status flags, what it
// leaves alone, and the two lines it logs.
#include "super_resolution/sr_coefficients.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

#include "tests/log_capture.h"

namespace Lumaforge {
namespace {

using Log = test::LogCapture<0>;

constexpr double kGarbage = -12345.678;
constexpr uint8_t kGarbageFlag = 0xA5;
// Doubles and bytes on either side of the table and the flags that the
// loader must never reach.
constexpr size_t kGuard = 64;

class SrCoefficientsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    Log::Lines().clear();
    logger.SetCallback(Log::Callback);
    logger.SetLevel(LF_LOG_DETAIL);
  }
  void TearDown() override {
    for (const std::string& path : written_) std::remove(path.c_str());
  }

  // A file of exactly these bytes in the temporary directory.
  std::string WriteFile(const std::string& bytes) {
    const ::testing::TestInfo* info = ::testing::UnitTest::GetInstance()->current_test_info();
    const std::string path = ::testing::TempDir() + "lumaforge_sr_coefficients_" + info->name() + "_" +
                             std::to_string(written_.size()) + ".txt";
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file << bytes;
    file.close();
    EXPECT_TRUE(file.good()) << path;
    written_.push_back(path);
    return path;
  }

  int32_t LoadPath(const std::string& path) { return setup_enhSR_coeffs_c(path.c_str(), Table(), Valid(), &logger); }
  int32_t Load(const std::string& bytes) { return LoadPath(WriteFile(bytes)); }

  double* Table() { return table_.data() + kGuard; }
  uint8_t* Valid() { return valid_.data() + kGuard; }
  double Weight(int32_t cls, int32_t position, int32_t k) { return Table()[SrWeightIndex(cls, position, k)]; }

  // Every double of the table is 0 but those listed, every flag 0 but the
  // classes listed, and the guards around both are untouched.
  void ExpectExactly(const std::map<size_t, double>& weights, const std::set<int32_t>& validClasses) {
    int reported = 0;
    for (size_t i = 0; i < kSrTableDoubles && reported < 10; ++i) {
      const auto it = weights.find(i);
      const double expected = it == weights.end() ? 0.0 : it->second;
      if (Table()[i] != expected) {
        ++reported;
        ADD_FAILURE() << "table[" << i << "] (class " << i / (kSrPositions * kSrWeightsPerPosition) << ", position "
                      << i / kSrWeightsPerPosition % kSrPositions << ", k " << i % kSrWeightsPerPosition
                      << ") = " << Table()[i] << ", expected " << expected;
      }
    }
    for (int32_t c = 0; c < kSrClasses && reported < 10; ++c) {
      const uint8_t expected = validClasses.count(c) ? 1 : 0;
      if (Valid()[c] != expected) {
        ++reported;
        ADD_FAILURE() << "valid[" << c << "] = " << int{Valid()[c]} << ", expected " << int{expected};
      }
    }
    ExpectGuardsUntouched();
  }

  void ExpectGuardsUntouched() {
    for (size_t i = 0; i < kGuard; ++i) {
      EXPECT_EQ(table_[i], kGarbage) << "double " << kGuard - i << " before the table";
      EXPECT_EQ(table_[kGuard + kSrTableDoubles + i], kGarbage) << "double " << i << " after the table";
      EXPECT_EQ(valid_[i], kGarbageFlag) << "byte " << kGuard - i << " before the flags";
      EXPECT_EQ(valid_[kGuard + kSrClasses + i], kGarbageFlag) << "byte " << i << " after the flags";
    }
  }

  // The nine weights of one line, as table entries.
  static void Put(std::map<size_t, double>& weights, int32_t cls, int32_t position, const std::vector<double>& k) {
    for (size_t i = 0; i < k.size(); ++i) weights[SrWeightIndex(cls, position, static_cast<int32_t>(i))] = k[i];
  }

  std::vector<std::string> Lines(int32_t level) const {
    std::vector<std::string> lines;
    for (const test::LogLine& line : Log::Lines()) {
      if (line.level == level) lines.push_back(line.text);
    }
    return lines;
  }
  static bool Contains(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
  }
  // The information line the loader ends with, for `classField`.
  void ExpectLoadedLine(int32_t classField) {
    const std::vector<std::string> info = Lines(LF_LOG_INFO);
    ASSERT_EQ(info.size(), 1u);
    EXPECT_TRUE(Contains(info[0], "[lf][SR] ")) << info[0];
    EXPECT_TRUE(Contains(
        info[0], "setup_enhSR_coeffs_c: Loaded filter coefficients for " + std::to_string(classField) + " numClass.\n"))
        << info[0];
    EXPECT_TRUE(Lines(LF_LOG_ERROR).empty());
  }

  Logger logger{0x5252, "SR"};

 private:
  std::vector<double> table_ = std::vector<double>(kSrTableDoubles + 2 * kGuard, kGarbage);
  std::vector<uint8_t> valid_ = std::vector<uint8_t>(kSrClasses + 2 * kGuard, kGarbageFlag);
  std::vector<std::string> written_;
};

TEST_F(SrCoefficientsTest, MissingFileReturnsOneAndLogsTheErrorWithThePath) {
  const std::string path = ::testing::TempDir() + "lumaforge_sr_coefficients_no_such_file.txt";
  std::remove(path.c_str());
  EXPECT_EQ(LoadPath(path), 1);
  const std::vector<std::string> errors = Lines(LF_LOG_ERROR);
  ASSERT_EQ(errors.size(), 1u);
  EXPECT_TRUE(Contains(errors[0], "[lf][SR] ")) << errors[0];
  EXPECT_TRUE(Contains(errors[0], "setup_enhSR_coeffs_c: ERROR, Could not open filter coeffs file, " + path + "\n"))
      << errors[0];
  EXPECT_TRUE(Lines(LF_LOG_INFO).empty());
  // Whatever it did to the table, it never reached beyond it.
  ExpectGuardsUntouched();
}

TEST_F(SrCoefficientsTest, EmptyFileLoadsNoClassAndLogsZero) {
  EXPECT_EQ(Load(""), 0);
  ExpectExactly({}, {});
  ExpectLoadedLine(0);
}

TEST_F(SrCoefficientsTest, FlatClassLineCopiesTheCentreAtPositionZero) {
  EXPECT_EQ(Load("8192 0 a b c d 0 0 0 0 1 0 0 0 0\n"), 0);
  EXPECT_EQ(Weight(kSrFlatClass, 0, 4), 1.0);
  EXPECT_EQ(Valid()[kSrFlatClass], 1);
  ExpectExactly({{SrWeightIndex(8192, 0, 4), 1.0}}, {8192});
  ExpectLoadedLine(8192);
}

TEST_F(SrCoefficientsTest, ThreeCoefficientsSetTheFirstThreeWeightsAndLeaveTheRestZero) {
  EXPECT_EQ(Load("1234 2 x y z w 0.25 -1.5 3e2\n"), 0);
  std::map<size_t, double> weights;
  Put(weights, 1234, 2, {0.25, -1.5, 300.0});
  ExpectExactly(weights, {1234});
}

TEST_F(SrCoefficientsTest, ALineWithoutCoefficientsStillMarksItsClass) {
  EXPECT_EQ(Load("77 3\n78 1 a b c d\n"), 0);
  ExpectExactly({}, {77, 78});
  ExpectLoadedLine(78);
}

// Nine weights at most: the tenth double of a position is never written and
// extra fields do not spill into the next position.
TEST_F(SrCoefficientsTest, FieldsAfterTheNinthCoefficientAreNotStored) {
  EXPECT_EQ(Load("6 1 a b c d 1 2 3 4 5 6 7 8 9 10 11 12\n"), 0);
  std::map<size_t, double> weights;
  Put(weights, 6, 1, {1, 2, 3, 4, 5, 6, 7, 8, 9});
  ExpectExactly(weights, {6});
}

// A class field reads its leading digits; a coefficient that is no number
// reads as 0 and still takes its place in the order.
TEST_F(SrCoefficientsTest, NumbersReadTheirLeadingPartAndMalformedOnesReadAsZero) {
  EXPECT_EQ(Load("12abc 1 a b c d 1 xyz 3 2.5e-1 -0.5 .5\n"), 0);
  std::map<size_t, double> weights;
  Put(weights, 12, 1, {1, 0, 3, 0.25, -0.5, 0.5});
  ExpectExactly(weights, {12});
}

TEST_F(SrCoefficientsTest, ClassZeroBlankAndCommentLinesAreIgnored) {
  EXPECT_EQ(Load("\n"
                 "0 1 a b c d 5 5 5 5 5 5 5 5 5\n"
                 "   \n"
                 "# 17 0 a b c d 1\n"
                 "class 2 a b c d 1 1\n"
                 "00 3 a b c d 9\n"
                 "\n"),
            0);
  ExpectExactly({}, {});
  ExpectLoadedLine(0);
}

TEST_F(SrCoefficientsTest, ALaterLineForTheSameClassAndPositionOverwrites) {
  EXPECT_EQ(Load("10 0 a b c d 1 2 3 4 5 6 7 8 9\n"
                 "10 1 a b c d 1 1 1 1 1 1 1 1 1\n"
                 "10 0 a b c d 9 8 7 6 5 4 3 2 1\n"
                 // Fewer weights keep the earlier line's values beyond them.
                 "11 2 a b c d 1 2 3 4 5 6 7 8 9\n"
                 "11 2 a b c d -1 -2\n"),
            0);
  std::map<size_t, double> weights;
  Put(weights, 10, 0, {9, 8, 7, 6, 5, 4, 3, 2, 1});
  Put(weights, 10, 1, {1, 1, 1, 1, 1, 1, 1, 1, 1});
  Put(weights, 11, 2, {-1, -2, 3, 4, 5, 6, 7, 8, 9});
  ExpectExactly(weights, {10, 11});
  ExpectLoadedLine(11);
}

// Only the space separates fields, and a run of spaces is one separator; a
// tab belongs to the field it is in, so "5\t3" is a class field that reads 5.
TEST_F(SrCoefficientsTest, RunsOfSpacesAreOneSeparatorWhileTabsArePartOfAField) {
  EXPECT_EQ(Load("   9    1  a   b c    d  0.5     2  \n"
                 "5\t3 1 a b c d 2 3 4\n"
                 "7 0 a b c d 1\t2 3\n"),
            0);
  std::map<size_t, double> weights;
  Put(weights, 9, 1, {0.5, 2});
  Put(weights, 5, 1, {2, 3, 4});
  Put(weights, 7, 0, {1, 3});
  ExpectExactly(weights, {5, 7, 9});
  ExpectLoadedLine(7);
}

// A line is read 1023 characters at a time: what follows continues as a line
// of its own.
TEST_F(SrCoefficientsTest, LinesLongerThan1023CharactersContinueAsAFurtherLine) {
  std::string first = "20 1 a b c d 1 2 3";
  first.resize(1023, ' ');
  const std::string bytes = first + "30 2 a b c d 4 5 6\n" + "40 3 a b c d 7\n";
  EXPECT_EQ(Load(bytes), 0);
  std::map<size_t, double> weights;
  Put(weights, 20, 1, {1, 2, 3});
  Put(weights, 30, 2, {4, 5, 6});
  Put(weights, 40, 3, {7});
  ExpectExactly(weights, {20, 30, 40});

  // The last line of a file may be cut the same way.
  SetUp();
  std::string cut = "50 0 a b c d 1";
  cut.resize(1023, ' ');
  EXPECT_EQ(Load(cut + "60 1 a b c d 2"), 0);
  weights.clear();
  Put(weights, 50, 0, {1});
  Put(weights, 60, 1, {2});
  ExpectExactly(weights, {50, 60});
  ExpectLoadedLine(60);
}

// No slot holds a class above 8192, a negative class or a position above 3:
// such lines change nothing, while the lines around them load as usual.
TEST_F(SrCoefficientsTest, ClassesAndPositionsOutsideTheTableAreNeverWritten) {
  EXPECT_EQ(Load("8193 0 a b c d 1 1 1 1 1 1 1 1 1\n"
                 "8192 4 a b c d 1 1 1 1 1 1 1 1 1\n"
                 "9000 3 a b c d 1 1 1 1 1 1 1 1 1\n"
                 "65536 0 a b c d 1 1 1 1 1 1 1 1 1\n"
                 "1000000 0 a b c d 1 1 1 1 1 1 1 1 1\n"
                 "-1 3 a b c d 1 1 1 1 1 1 1 1 1\n"
                 "-8192 0 a b c d 1 1 1 1 1 1 1 1 1\n"
                 "5 4 a b c d 1 1 1 1 1 1 1 1 1\n"
                 "5 100 a b c d 1 1 1 1 1 1 1 1 1\n"
                 "8192 3 a b c d 1 2 3 4 5 6 7 8 9\n"
                 "16 0 a b c d 2\n"
                 "5 7 a b c d 1 1 1 1 1 1 1 1 1\n"),
            0);
  std::map<size_t, double> weights;
  Put(weights, 8192, 3, {1, 2, 3, 4, 5, 6, 7, 8, 9});
  Put(weights, 16, 0, {2});
  ExpectExactly(weights, {8192, 16});
}

// The loader's interface skips every position outside 0..3, negative ones
// too (which would otherwise land in the previous class's slots).
TEST_F(SrCoefficientsTest, NegativePositionsAreNeverWritten) {
  EXPECT_EQ(Load("5 -1 a b c d 1 1 1 1 1 1 1 1 1\n"
                 "1 -4 a b c d 1 1 1 1 1 1 1 1 1\n"
                 "8192 -100 a b c d 1 1 1 1 1 1 1 1 1\n"),
            0);
  ExpectExactly({}, {});
}

TEST_F(SrCoefficientsTest, TableAndFlagsAreZeroedBeforeLoading) {
  for (size_t i = 0; i < kSrTableDoubles; ++i) Table()[i] = 1e9 + static_cast<double>(i);
  for (int32_t c = 0; c < kSrClasses; ++c) Valid()[c] = static_cast<uint8_t>(c | 1);
  EXPECT_EQ(Load("300 2 a b c d 0.5 0.5\n"), 0);
  std::map<size_t, double> weights;
  Put(weights, 300, 2, {0.5, 0.5});
  ExpectExactly(weights, {300});

  // A second load starts from zero again, not from the first file's table.
  SetUp();
  EXPECT_EQ(Load("301 0 a b c d 1\n"), 0);
  weights.clear();
  Put(weights, 301, 0, {1});
  ExpectExactly(weights, {301});
}

// The number in the information line is the class field of the last line
// read, whatever the number of classes loaded.
TEST_F(SrCoefficientsTest, InfoLineNamesTheClassFieldOfTheLastLine) {
  EXPECT_EQ(Load("300 0 a b c d 1\n"
                 "300 1 a b c d 1\n"
                 "20 2 a b c d 1\n"
                 "7 3 a b c d 1\n"),
            0);
  ExpectLoadedLine(7);

  SetUp();
  EXPECT_EQ(Load("300 0 a b c d 1\n"
                 "400 0 a b c d 1\n"
                 "\n"),
            0);
  ExpectLoadedLine(0);
}

}  // namespace
}  // namespace Lumaforge
