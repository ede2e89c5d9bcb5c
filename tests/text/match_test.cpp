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

TEST(match, single_character_items) {
  checkMatchTable("single", {{"a?c", "ABC", 0},
                             {"#1", "21", 0},
                             {"#", "x", 1},
                             {"@", "1", 1},
                             {"@@", "zQ", 0},
                             {".", "a", 1},
                             {".", "-", 0},
                             {"?", "", 1},
                             {"ab", "aB", 0},
                             {"a~", "a~", 0},
                             {"a~", "a!", 1},
                             {"ab", "a", 1},
                             {"", "", 0},
                             {"", "a", 1},
                             {"\xe9", "\xe9", 0}});
}

TEST(match, runs) {
  checkMatchTable("star", {{"A*", "abc", 0},
                           {"*c", "abc", 0},
                           {"*b", "abc", 1},
                           {"*", "", 0},
                           {"*a*a*a*a*a*a*b", std::string(40, 'a'), 1},
                           {"*[abc", "xyz", 1}});
}

TEST(match, sets) {
  checkMatchTable("set", {{"[a-c]x", "Bx", 1},
                          {"[abc]x", "Bx", 0},
                          {"[abc", "a", -1},
                          {"[]]", "]", 0},
                          {"[a-]", "-", 0},
                          {"[c-a]", "b", 1},
                          {"[\xc0-\xff]", "\xe9", 0},
                          {"[a]", "", 1},
                          {"[a,b]", "a", 0},
                          // The negated form tests '[' against the members after the first.
                          {"[~ab]", "z", 0},
                          {"[~ab]", "", 1},
                          {"[~]", "a", -1},
                          {"[~aA-]]", "z", 1},
                          {"[~a", "a", -1}});
}

TEST(match, escapes_negation_and_backslashes_in_the_name) {
  checkMatchTable("escape", {{"\\", "a", -1},
                             {"\\*", "*", 0},
                             {"\\*", "a", 1},
                             {"\\A", "a", 0},
                             {"`x", "X", 0},
                             {"`\\x", "x", 0},
                             {"`", "x", -1},
                             {"`\\", "x", -1},
                             {"~a*", "bcd", 0},
                             {"~a*", "abc", 1},
                             {"~[a", "abc", 0},
                             {"ab", "a\\b", 0, "ab"},
                             {"a", "\\\\", 1, "\\"}});
  // Past the limit everything is accepted.
  checkMatchTable("limit", {{"x", "abc", 0}, {"ab", "abc", 0}}, -1);
  checkMatchTable("limit", {{"abx", "abc", 0}}, 1);
}

TEST(Match, splits_the_list_at_every_comma_and_trims_each_pattern) {
  struct ListCase {
    const char* list;
    const char* name;
    int limit, expected;
  } const cases[] = {
      {"foo , bar*", "barrel", 99, 1},
      {"", "", 99, 0},
      {"a,", "", 99, 0},
      {",a", "", 99, 1},
      {"[a,b]", "a", 99, 0},
      {" x ,\t[a-c ", "B", 99, 0},
      {"abd", "abc", 1, 1},
      {"abd", "abc", 2, 0},
      // The first pattern deletes one backslash, the second the other, so '?' meets the 'a'.
      {"b,?a", "\\\\a", 99, 0},
  };
  for (const ListCase& c : cases)
    EXPECT_EQ(Match(c.name, c.list, c.limit), c.expected) << c.list << " on " << c.name;
}

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
  const CString s = " abca\t";
  EXPECT_EQ(s.Find('a'), 1);
  EXPECT_EQ(s.Find('a', 2), 4);
  EXPECT_EQ(s.Find('z'), -1);
  EXPECT_EQ(s.Find('a', -1), -1);
  EXPECT_EQ(s.Find('a', 6), -1);
  EXPECT_EQ(s.Find("ca"), 3);
  EXPECT_EQ(s.Find("ab", 2), -1);
  EXPECT_EQ(s.Find("", 6), 6);
  EXPECT_EQ(s.Find("", 7), -1);
  EXPECT_STREQ(s.Left(-3), "");
  EXPECT_STREQ(s.Left(3), " ab");
  EXPECT_STREQ(s.Left(99), " abca\t");
  EXPECT_STREQ(s.Right(2), "a\t");
  EXPECT_STREQ(s.Right(-1), "");
  EXPECT_STREQ(s.Right(99), " abca\t");
  EXPECT_EQ(s.GetAt(6), '\0');
  EXPECT_EQ(s[-1], '\0');
  CString t = s;
  EXPECT_STREQ(t.TrimLeft().TrimRight(), "abca");
  EXPECT_EQ(t.GetLength(), 4);
  const CString none = nullptr;
  EXPECT_TRUE(none.IsEmpty());
  EXPECT_STREQ(none, "");
}

}  // namespace
