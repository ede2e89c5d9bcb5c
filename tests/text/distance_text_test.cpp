// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of distance texts: one table of literal texts per mode, each written into a buffer of
// exactly its length; the sized form at that size and one short; the documented room.
#include <Tarnsysm.h>

#include <gtest/gtest.h>

#include <cstring>
#include <limits>
#include <memory>
#include <string>

namespace {

const double kNaN = std::numeric_limits<double>::quiet_NaN();

struct TextCase {
  int prec, zeros, style;
  double value;
  const char* expected;
};

// Each text is written into a heap buffer of exactly its length, then by the sized form at that
// size and one short (-1, out untouched).
void checkTexts(int mode, std::initializer_list<TextCase> cases) {
  for (const TextCase& c : cases) {
    SCOPED_TRACE(testing::Message() << "mode " << mode << ": " << c.expected);
    const std::size_t room = std::strlen(c.expected) + 1;
    std::unique_ptr<char[]> out(new char[room]);
    EXPECT_EQ(DnTos(mode, c.prec, c.zeros, c.style, c.value, out.get()), 1);
    EXPECT_STREQ(out.get(), c.expected);
    std::memset(out.get(), '#', room);
    EXPECT_EQ(DnTos(mode, c.prec, c.zeros, c.style, c.value, out.get(), room - 1), -1);
    EXPECT_EQ(std::string(out.get(), room), std::string(room, '#'));
    EXPECT_EQ(DnTos(mode, c.prec, c.zeros, c.style, c.value, out.get(), room), 1);
    EXPECT_STREQ(out.get(), c.expected);
  }
}

// One row per line would hide the tables.
// clang-format off
TEST(DnTos, every_mode) {
  // Scientific
  checkTexts(1, {{2, 0, 0, 1500, "1.50e+03"}, {-1, 0, 0, 0.5, "5.000000e-01"},
      {0, 0, 0, -2.5, "-2e+00"}, {2, 0, 0, 1e300, "1.00e+300"}, {3, 0, 0, kNaN, "nan"}});
  // Decimal with zero suppression
  checkTexts(2, {{3, 12, 0, 0.5, ".5"}, {2, 12, 0, 0, "0"}, {2, 8, 0, 2, "2"}, {3, 12, 0, 10, "10"},
      {2, 4, 0, 0.05, ".05"}, {-1, 8, 0, 1.25, "1.25"}, {2, 3, 0, 1.5, "1.50"},
      {2, -1, 0, 0.5, "0.50"}, {0, 12, 0, 0.5, "0"}, {2, 0, 0, 0.125, "0.12"},
      {2, 0, 0, 0.375, "0.38"}, {2, 0, 0, -0.0, "-0.00"}, {2, 8, 0, -0.0, "-0"},
      {1200, 8, 0, 1.5, "1.5"}});
  // Feet and decimal inches
  checkTexts(3, {{2, 0, 0, 30.5, "2'-6.50\""}, {2, 0, 1, 30.5, "2'6.50\""}, {2, 0, 0, 6.5, "6.50\""},
      {2, 1, 0, 6.5, "0'-6.50\""}, {2, 2, 0, 6.5, "0'-6.50\""}, {2, 3, 0, 6.5, "6.50\""},
      {2, 0, 0, -6.5, "6.50\""}, {2, 0, 0, -30.5, "-2'-6.50\""}, {2, 0, 0, 11.999, "12.00\""},
      {2, 4, 0, 0.5, ".50\""}, {0, 4, 0, 24, "2'"}, {0, 4, 0, 0, "0\""}, {2, 8, 0, 6.5, "6.50\""},
      {2, 0, 0, kNaN, "nan"}, {2, 0, 0, 1e300, "1.000000e+300"},
      {0, 4, 0, 1.2e18, "100000000000000000'"}});
  // Feet, inches and fractions
  checkTexts(4, {{4, 0, 0, 30.5, "2'-6 1/2\""}, {4, 0, 1, 30.5, "2'6-1/2\""}, {4, 0, 0, 24, "2'"},
      {4, 1, 0, 24, "2'-0\""}, {4, 2, 0, 24, "2'"}, {4, 3, 0, 6, "6\""}, {4, 3, 0, 0, "0\""},
      {4, 0, 0, 0, "0\""}, {2, 0, 0, 0.125, "0 1/4\""}, {2, 0, 0, 6.9, "6 1/1\""},
      {4, 0, 0, -30.5, "-2'-6 1/2\""}, {2, 0, 0, 0.1, "0\""}, {100, 0, 0, 0.5, "0 1/2\""},
      {-3, 0, 0, 0.5, "0 1/1\""}, {2, 0, 0, -1e300, "-1.000000e+300"}});
  // Whole units and fractions
  checkTexts(5, {{2, 0, 0, 0, "0\""}, {2, 0, 0, 2.25, "2 1/4"}, {2, 0, 1, 2.25, "2-1/4"},
      {2, 0, 0, -2.25, "-2 1/4"}, {2, 0, 0, -0.25, "1/4"}, {2, 0, 0, 3, "3"},
      {2, 0, 0, 1e19, "1.000000e+19"}});
}
// clang-format on

// The widest texts of each mode in buffers of exactly the documented room are the dntos fuzz
// target's seeds (decimal_widest and the other *_widest inputs), replayed with the tests.
TEST(DnTos, unknown_mode_leaves_out_untouched) {
  char out[4] = "ab";
  EXPECT_EQ(DnTos(0, 2, 0, 0, 1.0, out) + DnTos(6, 2, 0, 0, 1.0, out, sizeof out), 0);
  EXPECT_STREQ(out, "ab");
}

}  // namespace
