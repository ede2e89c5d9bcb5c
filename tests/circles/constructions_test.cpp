// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the circle constructions: every returned circle meets its conditions on random
// configurations (also far from the origin), picks at the touching points of a chosen circle
// bring that circle back, stated orders, ties and failures, and hostile numbers.
#include <Tarnsysm.h>

#include "circle_checks.h"

#include <array>
#include <cstring>
#include <functional>
#include <vector>

namespace {

using namespace circles_test;

// Every object a construction may read: circles, lines, points, their picks, a radius.
struct Scene {
  Circ c[3];
  Line l[3];
  Pt p[3];
  Pt pc[3];  // circle picks
  Pt pl[3];  // line picks
  double R;
};
constexpr int kSceneDoubles = sizeof(Scene) / sizeof(double);

#define CIRC(k) s.pc[k].x, s.pc[k].y, s.c[k].r, s.c[k].x, s.c[k].y
#define LINE(k) s.pl[k].x, s.pl[k].y, s.l[k].x1, s.l[k].y1, s.l[k].x2, s.l[k].y2
#define PT(k) s.p[k].x, s.p[k].y
#define OUT &o.x, &o.y, &o.r

struct Row {
  const char* name;
  // The objects in argument order: C circle, L tangent line, M centre line, P point, R radius.
  const char* layout;
  std::function<int(const Scene&, Out&)> call;
  // Forwarders put the centre on a constructed line: the objects lie on one line through it.
  bool collinear = false;
  bool writesOnFailure = false;
};

int radiusOnly(int found, const Scene& s, Out& o) {
  if (found)
    o.r = s.R;
  return found;
}

const std::vector<Row>& rows() {
  static const std::vector<Row> table = {
      {"PP", "PP", [](const Scene& s, Out& o) { return DGetPPCircle(kEps, PT(0), PT(1), OUT); },
       true, true},
      {"PPP", "PPP",
       [](const Scene& s, Out& o) { return DGetPPPCircle(kEps, PT(0), PT(1), PT(2), OUT); }},
      {"CCR", "CCR",
       [](const Scene& s, Out& o) {
         return radiusOnly(DGetCCRCircle(kEps, CIRC(0), CIRC(1), s.R, &o.x, &o.y), s, o);
       }},
      {"CLR", "CLR",
       [](const Scene& s, Out& o) {
         return radiusOnly(DGetCLRCircle(kEps, CIRC(0), LINE(0), s.R, &o.x, &o.y), s, o);
       }},
      {"LLR", "LLR",
       [](const Scene& s, Out& o) {
         return radiusOnly(DGetLLRCircle(kEps, LINE(0), LINE(1), s.R, &o.x, &o.y), s, o);
       }},
      {"CCLPer", "CCM",
       [](const Scene& s, Out& o) {
         return DGetCCLPerCircle(kEps, CIRC(0), CIRC(1), LINE(0), OUT);
       }},
      {"LLCPer", "MLC",
       [](const Scene& s, Out& o) {
         return DGetLLCPerCircle(kEps, LINE(0), LINE(1), CIRC(0), OUT);
       }},
      {"LLPPer", "MLP",
       [](const Scene& s, Out& o) { return DGetLLPPerCircle(kEps, LINE(0), LINE(1), PT(0), OUT); }},
      {"CLPPer", "CMP",
       [](const Scene& s, Out& o) { return DGetCLPPerCircle(kEps, CIRC(0), LINE(0), PT(0), OUT); }},
      {"LLLPer", "MLL",
       [](const Scene& s, Out& o) {
         return DGetLLLPerCircle(kEps, LINE(0), LINE(1), LINE(2), OUT);
       }},
      {"PPLPer", "PPM",
       [](const Scene& s, Out& o) { return DGetPPLPerCircle(kEps, PT(0), PT(1), LINE(0), OUT); }},
      {"CCC", "CCC",
       [](const Scene& s, Out& o) {
         return DGetCCCTanCircle(kEps, CIRC(0), CIRC(1), CIRC(2), OUT);
       }},
      {"CCL", "CCL",
       [](const Scene& s, Out& o) {
         return DGetCCLTanCircle(kEps, CIRC(0), CIRC(1), LINE(0), OUT);
       }},
      {"CCP", "CCP",
       [](const Scene& s, Out& o) { return DGetCCPTanCircle(kEps, CIRC(0), CIRC(1), PT(0), OUT); }},
      {"LLC", "LLC",
       [](const Scene& s, Out& o) {
         return DGetLLCTanCircle(kEps, LINE(0), LINE(1), CIRC(0), OUT);
       }},
      {"LLL", "LLL",
       [](const Scene& s, Out& o) {
         return DGetLLLTanCircle(kEps, LINE(0), LINE(1), LINE(2), OUT);
       }},
      {"LLP", "LLP",
       [](const Scene& s, Out& o) { return DGetLLPTanCircle(kEps, LINE(0), LINE(1), PT(0), OUT); }},
      {"PPL", "PPL",
       [](const Scene& s, Out& o) { return DGetPPLTanCircle(kEps, PT(0), PT(1), LINE(0), OUT); }},
      {"PPC", "PPC",
       [](const Scene& s, Out& o) { return DGetPPCTanCircle(kEps, PT(0), PT(1), CIRC(0), OUT); }},
      {"CLP", "CLP",
       [](const Scene& s, Out& o) { return DGetCLPTanCircle(kEps, CIRC(0), LINE(0), PT(0), OUT); }},
      {"CC", "CC",
       [](const Scene& s, Out& o) { return DGetCCTanCircle(kEps, CIRC(0), CIRC(1), OUT); }, true},
      {"CL", "CL",
       [](const Scene& s, Out& o) { return DGetCLTanCircle(kEps, CIRC(0), LINE(0), OUT); }, true},
      {"CP", "CP",
       [](const Scene& s, Out& o) { return DGetCPTanCircle(kEps, CIRC(0), PT(0), OUT); }, true},
      {"LP", "LP",
       [](const Scene& s, Out& o) { return DGetLPTanCircle(kEps, LINE(0), PT(0), OUT); }, true},
  };
  return table;
}

// The conditions a row's result must meet, read from its layout; forwarders add the line their
// centre must lie on (through both centres or points, or the perpendicular to the line).
std::vector<Condition> conditions(const Row& row, const Scene& s) {
  std::vector<Condition> out;
  int ci = 0, li = 0, pi = 0;
  std::vector<Pt> anchors;
  const Line* tangentLine = nullptr;
  for (const char* k = row.layout; *k; ++k) {
    Condition c{};
    if (*k == 'C') {
      c = {Kind::tangentCircle, s.c[ci], {}, {}};
      anchors.push_back({s.c[ci].x, s.c[ci].y});
      ++ci;
    } else if (*k == 'L' || *k == 'M') {
      c = {*k == 'L' ? Kind::tangentLine : Kind::centreOn, {}, s.l[li], {}};
      tangentLine = &s.l[li++];
    } else if (*k == 'P') {
      c = {Kind::through, {}, {}, s.p[pi]};
      anchors.push_back(s.p[pi++]);
    } else {
      continue;
    }
    out.push_back(c);
  }
  if (row.collinear) {
    const Pt a = anchors[0];
    Line on{a.x, a.y, a.x, a.y};
    if (anchors.size() == 2) {
      on.x2 = anchors[1].x;
      on.y2 = anchors[1].y;
    } else {  // the perpendicular from the one anchor to the line
      on.x2 = a.x + (tangentLine->y2 - tangentLine->y1);
      on.y2 = a.y - (tangentLine->x2 - tangentLine->x1);
    }
    out.push_back({Kind::centreOn, {}, on, {}});
  }
  return out;
}

Scene randomScene(Draw& d) {
  Scene s{};
  for (int k = 0; k < 3; ++k) {
    s.c[k] = d.circle();
    s.l[k] = d.line();
    s.p[k] = d.point();
    s.pc[k] = d.point();
    s.pl[k] = d.point();
  }
  s.R = d.uniform(0.5, 6);
  return s;
}

// A scene whose objects all touch, pass through or centre the circle k: circles tangent to it
// of either kind (enclosing, enclosed, outside), lines tangent to it, points on it, centre
// lines through its centre, each picked where it touches k.
Scene sceneAround(Draw& d, const Row& row, const Circ& k) {
  Scene s = randomScene(d);
  const double first = d.uniform(0, kTwoPi);
  int ci = 0, li = 0, pi = 0, j = 0;
  for (const char* c = row.layout; *c; ++c) {
    if (*c == 'R') {
      s.R = k.r;
      continue;
    }
    // Objects a third of a turn apart (jittered): near-coincident touching points would let a
    // second candidate score within eps, and then the earlier one wins, as stated.
    const double a = first + (row.collinear ? kPi * j : kTwoPi / 3 * j + d.uniform(-0.4, 0.4));
    const Pt u{std::cos(a), std::sin(a)};
    const Pt touch{k.x + k.r * u.x, k.y + k.r * u.y};
    ++j;
    if (*c == 'C') {
      const double sigma = d.uniform(0, 1) < 0.5 ? 1.0 : -1.0;
      const double r = k.r * (d.uniform(0, 1) < 0.5 ? d.uniform(0.3, 0.7) : d.uniform(1.4, 2.5));
      s.c[ci] = {r, k.x + (k.r + sigma * r) * u.x, k.y + (k.r + sigma * r) * u.y};
      s.pc[ci++] = touch;
    } else if (*c == 'L') {
      const double t1 = d.uniform(1, 5), t2 = -d.uniform(1, 5);
      s.l[li] = {touch.x - t1 * u.y, touch.y + t1 * u.x, touch.x - t2 * u.y, touch.y + t2 * u.x};
      s.pl[li++] = touch;
    } else if (*c == 'M') {
      const double t1 = d.uniform(1, 5), t2 = -d.uniform(1, 5);
      s.l[li++] = {k.x + t1 * u.x, k.y + t1 * u.y, k.x + t2 * u.x, k.y + t2 * u.y};
    } else {
      s.p[pi++] = touch;
    }
  }
  return s;
}

class Constructions : public testing::TestWithParam<Pt> {};

TEST_P(Constructions, results_meet_their_conditions_on_random_configurations) {
  for (const Row& row : rows()) {
    Draw d(7, GetParam().x, GetParam().y);
    int found = 0;
    for (int trial = 0; trial < 400; ++trial) {
      const Scene s = randomScene(d);
      Out o;
      if (!row.call(s, o))
        continue;
      ++found;
      // The configuration spans at most about 30; a huge result carries its own scale.
      const double size = std::fmax(30.0, o.r);
      for (const Condition& c : conditions(row, s))
        ASSERT_LE(miss(c, {o.x, o.y}, o.r), 1e-9 * size) << row.name << " trial " << trial;
    }
    EXPECT_GT(found, 40) << row.name;
  }
}

TEST_P(Constructions, picks_at_the_touching_points_select_the_circle_they_touch) {
  for (const Row& row : rows()) {
    Draw d(11, GetParam().x, GetParam().y);
    int wrong = 0;
    for (int trial = 0; trial < 200; ++trial) {
      const Pt c = d.point();
      const Circ k{d.uniform(1, 4), c.x, c.y};
      const Scene s = sceneAround(d, row, k);
      Out o;
      const bool same = row.call(s, o) && std::fabs(o.x - k.x) < 1e-6 &&
                        std::fabs(o.y - k.y) < 1e-6 && std::fabs(o.r - k.r) < 1e-6;
      if (!same)
        ++wrong;
    }
    // A near-double root makes two almost equal candidates that score within eps; the earlier
    // wins, as stated. A missing sign combination would miss a quarter of the draws or more.
    EXPECT_LE(wrong, 2) << row.name;
  }
}

TEST_P(Constructions, hostile_numbers_give_zero_or_finite_circles) {
  for (const Row& row : rows()) {
    Draw d(13, GetParam().x, GetParam().y);
    HostileNumbers hostile(17);
    for (int trial = 0; trial < 300; ++trial) {
      std::array<double, kSceneDoubles> v;
      const Scene valid = randomScene(d);
      std::memcpy(v.data(), &valid, sizeof valid);
      for (double& x : v)
        if (d.uniform(0, 1) < 0.2)
          x = hostile();
      Scene s;
      std::memcpy(&s, v.data(), sizeof s);
      Out o;
      if (row.call(s, o)) {
        ASSERT_TRUE(std::isfinite(o.x) && std::isfinite(o.y) && std::isfinite(o.r)) << row.name;
      } else if (!row.writesOnFailure) {
        ASSERT_TRUE(o.untouched()) << row.name << " trial " << trial;
      }
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Placement, Constructions, testing::Values(Pt{0, 0}, Pt{1e6, -1e6}),
                         [](const testing::TestParamInfo<Pt>& info) {
                           return info.param.x == 0 ? std::string("at_origin")
                                                    : std::string("shifted_far");
                         });

// Cases whose results follow from the stated orders, tie rules and failure outputs.
struct Case {
  const char* name;
  std::function<int(Out&)> call;
  int result;
  Out expected;  // sentinels where an output stays untouched
};

std::ostream& operator<<(std::ostream& os, const Case& c) {
  return os << c.name;
}

class StatedCases : public testing::TestWithParam<Case> {};

TEST_P(StatedCases, result_and_outputs) {
  const Case& c = GetParam();
  Out o;
  ASSERT_EQ(c.call(o), c.result);
  EXPECT_NEAR(o.x, c.expected.x, 1e-6);
  EXPECT_NEAR(o.y, c.expected.y, 1e-6);
  EXPECT_NEAR(o.r, c.expected.r, 1e-6);
}

constexpr double S = kSentinel;
const double kRoot3 = std::sqrt(3.0);

INSTANTIATE_TEST_SUITE_P(
    Table, StatedCases,
    testing::Values(
        Case{"pp_coincident_writes_the_midpoint_only",
             [](Out& o) { return DGetPPCircle(kEps, 1, 2, 1, 2, OUT); },
             0,
             {1, 2, S}},
        Case{"ppp_collinear",
             [](Out& o) { return DGetPPPCircle(kEps, 0, 0, 1, 1, 2, 2, OUT); },
             0,
             {S, S, S}},
        Case{"ppp_second_and_third_coincide",
             [](Out& o) { return DGetPPPCircle(kEps, 0, 0, 1, 0, 1, 0, OUT); },
             0,
             {S, S, S}},
        Case{
            "ccr_concentric",
            [](Out& o) { return DGetCCRCircle(kEps, 1, 0, 1, 0, 0, 2, 0, 2, 0, 0, 1, &o.x, &o.y); },
            0,
            {S, S, S}},
        Case{"llr_parallel",
             [](Out& o) {
               return DGetLLRCircle(kEps, 0, 1, 0, 0, 1, 0, 0, 2, 0, 3, 1, 3, 1, &o.x, &o.y);
             },
             0,
             {S, S, S}},
        // Unit circle, line y = -2, R = 1: only (+-sqrt 3, -1) touch both. A pick straight
        // below scores both alike; the earlier, x = +sqrt 3, wins whichever side the line's
        // pick (never read) is on.
        Case{"clr_tie_goes_to_the_earlier_candidate",
             [](Out& o) {
               return DGetCLRCircle(kEps, 0, -5, 1, 0, 0, 0, 9, 0, -2, 1, -2, 1, &o.x, &o.y);
             },
             1,
             {kRoot3, -1, S}},
        Case{"clr_line_pick_not_read",
             [](Out& o) {
               return DGetCLRCircle(kEps, 0, -5, 1, 0, 0, -7, -9, 0, -2, 1, -2, 1, &o.x, &o.y);
             },
             1,
             {kRoot3, -1, S}},
        Case{"ccl_per_line_through_both_centres_outer",
             [](Out& o) {
               return DGetCCLPerCircle(kEps, -1, 0, 1, 0, 0, 11, 0, 1, 10, 0, 0, 0, 0, 0, 1, 0,
                                       OUT);
             },
             1,
             {5, 0, 6}},
        // Unit circle at (0, 4), the x axis, centre line x = 0: the circle picked at its bottom
        // is touched from outside by (0, 1.5) r 1.5, at its top from inside by (0, 2.5) r 2.5.
        Case{"llc_per_outside_tangency",
             [](Out& o) {
               return DGetLLCPerCircle(kEps, 0, 0, 0, 0, 0, 1, 0, 0, -1, 0, 1, 0, 0, 3, 1, 0, 4,
                                       OUT);
             },
             1,
             {0, 1.5, 1.5}},
        Case{"llc_per_inside_tangency",
             [](Out& o) {
               return DGetLLCPerCircle(kEps, 0, 0, 0, 0, 0, 1, 0, 0, -1, 0, 1, 0, 0, 5, 1, 0, 4,
                                       OUT);
             },
             1,
             {0, 2.5, 2.5}},
        Case{"ppl_per_on_the_bisector",
             [](Out& o) { return DGetPPLPerCircle(kEps, -1, 0, 1, 0, 0, 0, 0, -1, 0, 1, OUT); },
             1,
             {0, 0, 1}},
        Case{"ppl_per_across_the_bisector",
             [](Out& o) { return DGetPPLPerCircle(kEps, -1, 0, 1, 0, 0, 0, -5, 1, 5, 1, OUT); },
             1,
             {0, 1, std::sqrt(2.0)}},
        Case{"ppl_per_parallel_to_the_bisector",
             [](Out& o) { return DGetPPLPerCircle(kEps, -1, 0, 1, 0, 0, 0, 2, -1, 2, 1, OUT); },
             0,
             {S, S, S}},
        Case{"ppl_per_zero_length_line",
             [](Out& o) { return DGetPPLPerCircle(kEps, -1, 0, 1, 0, 0, 0, 2, 1, 2, 1, OUT); },
             0,
             {S, S, S}},
        // Points 1e-6 off parallel to the line also give a circle of radius ~8e12 scoring
        // within eps of the small one: the smaller wins.
        Case{"ppl_tie_goes_to_the_smaller_circle",
             [](Out& o) {
               return DGetPPLTanCircle(kEps, -1, 1, 1, 1 + 1e-6, 0, 0, -5, 0, 5, 0, OUT);
             },
             1,
             {0, 1, 1}},
        Case{"cc_concentric",
             [](Out& o) { return DGetCCTanCircle(kEps, 1, 0, 1, 0, 0, 3, 0, 3, 0, 0, OUT); },
             0,
             {S, S, S}},
        Case{"cl_centre_on_the_line",
             [](Out& o) { return DGetCLTanCircle(kEps, 1, 0, 1, 0, 0, 0, 0, -1, 0, 1, 0, OUT); },
             0,
             {S, S, S}},
        Case{"lp_point_on_the_line",
             [](Out& o) { return DGetLPTanCircle(kEps, 0, 0, -1, 0, 1, 0, 3, 0, OUT); },
             0,
             {S, S, S}},
        Case{"cl_short_line",
             [](Out& o) { return DGetCLTanCircle(kEps, 1, 0, 1, 0, 0, 0, 0, 5, 5, 5, 5, OUT); },
             0,
             {S, S, S}}),
    [](const testing::TestParamInfo<Case>& info) { return std::string(info.param.name); });

TEST(DGetCCTanLine, picks_choose_among_outer_and_inner_tangents) {
  // Unit circles at (0, 0) and (10, 0); inner tangents cross at (5, 0), touching at cos = 1/5.
  const double s = std::sqrt(24.0) / 5;
  const double cases[][8] = {{0, 2, 10, 2, 0, 1, 10, 1},
                             {0, -2, 10, -2, 0, -1, 10, -1},
                             {0, -2, 10, 2, 0.2, -s, 9.8, s},
                             {0, 2, 10, -2, 0.2, s, 9.8, -s}};
  for (const auto& c : cases) {
    double t[4] = {S, S, S, S};
    ASSERT_EQ(
        DGetCCTanLine(kEps, c[0], c[1], 1, 0, 0, c[2], c[3], 1, 10, 0, &t[0], &t[1], &t[2], &t[3]),
        1);
    for (int i = 0; i < 4; ++i)
      EXPECT_NEAR(t[i], c[4 + i], 1e-12) << c[1] << " " << c[3];
  }
  // Nested, and touching from inside: no common tangent, outputs untouched.
  double t[4] = {S, S, S, S};
  EXPECT_EQ(DGetCCTanLine(kEps, 0, 0, 1, 0, 0, 0, 0, 5, 0, 0.5, &t[0], &t[1], &t[2], &t[3]), 0);
  EXPECT_EQ(DGetCCTanLine(kEps, 0, 0, 1, 0, 0, 0, 0, 2, 1, 0, &t[0], &t[1], &t[2], &t[3]), 0);
  EXPECT_EQ(t[0], S);
}

}  // namespace
