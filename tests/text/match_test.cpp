// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of wildcard matching and of the string class it takes: one table per item kind, pattern
// lists, and random draws against the plain recursive matcher.
#include <Tarnsysm.h>

#include "plain_match.h"

#include <gtest/gtest.h>

#include <random>
#include <string>

namespace {

struct MatchCase {
  const char* pattern;
  std::string name;
  int expected;
  const char* nameAfter = nullptr;  // null: unchanged
};

void checkMatchTable(const char* kind, std::initializer_list<MatchCase> cases, int limit = 99) {
  for (const MatchCase& c : cases) {
    std::string name = c.name;
    EXPECT_EQ(match(0, limit, &name[0], c.pattern), c.expected)
        << kind << ": " << c.pattern << " on " << c.name;
    EXPECT_EQ(std::string(name.c_str()), c.nameAfter ? std::string(c.nameAfter) : c.name)
        << kind << ": " << c.pattern;
  }
}

// One row per line would hide the tables.
// clang-format off
TEST(match, every_item_kind) {
  checkMatchTable("single", {{"a?c", "ABC", 0}, {"#1", "21", 0}, {"#", "x", 1}, {"@", "1", 1},
      {"@@", "zQ", 0}, {".", "a", 1}, {".", "-", 0}, {"?", "", 1}, {"ab", "aB", 0},
      {"a~", "a~", 0}, {"a~", "a!", 1}, {"ab", "a", 1}, {"", "", 0}, {"", "a", 1},
      {"\xe9", "\xe9", 0}});
  checkMatchTable("star", {{"A*", "abc", 0}, {"*c", "abc", 0}, {"*b", "abc", 1}, {"*", "", 0},
      {"*a*a*a*a*a*a*b", std::string(40, 'a'), 1}, {"*[abc", "xyz", 1}});
  // The negated form tests '[' against the members after the first, through the ']'.
  checkMatchTable("set", {{"[a-c]x", "Bx", 1}, {"[abc]x", "Bx", 0}, {"[abc", "a", -1},
      {"[]]", "]", 0}, {"[a-]", "-", 0}, {"[c-a]", "b", 1}, {"[\xc0-\xff]", "\xe9", 0},
      {"[a]", "", 1}, {"[a,b]", "a", 0}, {"[~ab]", "z", 0}, {"[~ab]", "", 1}, {"[~]", "a", -1},
      {"[~aA-]]", "z", 1}, {"[~a", "a", -1}});
  checkMatchTable("escape", {{"\\", "a", -1}, {"\\*", "*", 0}, {"\\*", "a", 1}, {"\\A", "a", 0},
      {"`x", "X", 0}, {"`\\x", "x", 0}, {"`", "x", -1}, {"`\\", "x", -1}, {"~a*", "bcd", 0},
      {"~a*", "abc", 1}, {"~[a", "abc", 0}, {"ab", "a\\b", 0, "ab"}, {"a", "\\\\", 1, "\\"}});
  checkMatchTable("limit", {{"x", "abc", 0}, {"ab", "abc", 0}}, -1);
  checkMatchTable("limit", {{"abx", "abc", 0}}, 1);
}

TEST(Match, splits_the_list_at_every_comma_and_trims_each_pattern) {
  // "b" deletes the first backslash, "?a" the second, so '?' takes the 'a' and "b,?a" fails.
  const struct {
    const char *list, *name;
    int limit, expected;
  } cases[] = {{"foo , bar*", "barrel", 99, 1},
               {"", "", 99, 0},
               {"a,", "", 99, 0},
               {",a", "", 99, 1},
               {"[a,b]", "a", 99, 0},
               {" x ,\t[a-c ", "B", 99, 0},
               {"abd", "abc", 1, 1},
               {"abd", "abc", 2, 0},
               {"b,?a", "\\\\a", 99, 0}};
  for (const auto& c : cases)
    EXPECT_EQ(Match(c.name, c.list, c.limit), c.expected) << c.list << " on " << c.name;
}
// clang-format on

TEST(match, agrees_with_plain_recursion_on_random_short_inputs) {
  const char alphabet[] = "aAb1\\*?#@.[]~`-,x ";
  std::mt19937 rng(1002);
  std::uniform_int_distribution<int> length(0, 12), pick(0, sizeof alphabet - 2), limit(-1, 13);
  for (int draw = 0; draw < 30000; ++draw) {
    std::string name, pattern;
    for (int k = length(rng); k > 0; --k)
      name += alphabet[pick(rng)];
    for (int k = length(rng); k > 0; --k)
      pattern += alphabet[pick(rng)];
    const int lim = limit(rng);
    std::string ours = name, theirs = name;
    ASSERT_EQ(match(0, lim, &ours[0], pattern.c_str()),
              plain::match(0, lim, &theirs[0], pattern.c_str()))
        << pattern << " on " << name;
    ASSERT_EQ(ours, theirs) << pattern << " on " << name;
    ASSERT_EQ(Match(name.c_str(), pattern.c_str(), lim), plain::matchList(name, pattern, lim))
        << pattern << " on " << name;
  }
}

TEST(CString, finds_nothing_outside_the_text_and_clamps_slices) {
  CString s = " abca\t";
  // A character search from the length finds nothing, not even the terminator; a text search
  // from there finds the empty text.
  const int finds[] = {s.Find('a', 2),  s.Find('z'),  s.Find('a', -1), s.Find('\0', 6),
                       s.Find("ab", 2), s.Find("ab"), s.Find("", 6),   s.Find("", 7)};
  const int expected[] = {4, -1, -1, -1, -1, 1, 6, -1};
  for (int k = 0; k < 8; ++k)
    EXPECT_EQ(finds[k], expected[k]) << "find " << k;
  EXPECT_STREQ(s.Left(-3), "");
  EXPECT_STREQ(s.Left(99), s);
  EXPECT_STREQ(s.Right(2), "a\t");
  EXPECT_STREQ(s.Right(-1), "");
  EXPECT_EQ(s.GetAt(6) + s[-1], 0);
  EXPECT_STREQ(s.TrimLeft().TrimRight(), "abca");
  EXPECT_TRUE(CString(nullptr).IsEmpty());
}

}  // namespace
