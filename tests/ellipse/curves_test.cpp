// Tarnsysm: planar computational geometry for 2D drafting.
// Tests of the ellipse intersections (points on both curves, counts against sign changes, the arc
// filter's status codes, rows written no further than counted) and of the nearest points, feet
// of normals, tangent points, normal offsets and fillet centres against sampling and geometry.
#include "ellipse_checks.h"

#include <memory>

namespace {

using namespace tarnsysm::test;

// Random crossings of an ellipse e with a line (kind 0), a circle (1) or another ellipse (2)
// against the sign changes of the other curve's implicit value along e: away from tangency the
// counts match, and the crossings (for the quartics 99% of those steeper than 5 degrees) are found
// within 1e-9 of the size. Rows past the count stay untouched; a line's come in its direction.
TEST(EllipseIntersections, crossings_lie_on_both_curves_and_match_sign_changes) {
  for (int kind = 0; kind < 3; ++kind) {
    EllipseDraws draws(21 + kind, kind == 0 ? 0.01 : 2, kind == 0 ? 50 : 20, kind == 0 ? 50 : 10);
    int steep = 0, steepHit = 0, clearCases = 0, countsMatch = 0;
    for (int i = 0; i < 1500; ++i) {
      const TSellipse e = draws();
      TSellipse o = draws();  // the other curve; a line runs from its centre along its rotation
      o.b = kind == 1 ? o.a : o.b;
      o.rotation = kind == 1 ? 0 : o.rotation;
      const double cr = std::cos(o.rotation), sr = std::sin(o.rotation), reach = std::max(e.a, e.b);
      const TSline line = segment(o.center[0], o.center[1], o.center[0] + cr, o.center[1] + sr);
      const TSarc c{{0, 0, 0, 0}, {o.center[0], o.center[1], 0}, o.a, 0, kTwoPi};
      double rows[5][3] = {{kSentinel}, {kSentinel}, {kSentinel}, {kSentinel}, {kSentinel}}, p[3],
             n[2];
      const int count = kind == 0   ? SkLineEllipseAided(&line, &e, rows)
                        : kind == 1 ? SkCircleEllipseAided(&c, &e, rows)
                                    : SkEllipseEllipseAided(&o, &e, rows);
      ASSERT_TRUE(count >= 0 && count <= 4 - 2 * (kind == 0) && rows[count][0] == kSentinel) << i;
      EXPECT_TRUE(kind || count < 2 ||
                  (rows[0][0] - rows[1][0]) * cr + (rows[0][1] - rows[1][1]) * sr > 0);
      const auto f = [&](double t) {  // n: half the gradient, a line's distance scaled by e's size
        n[0] = -sr / reach / 2;
        n[1] = cr / reach / 2;
        pointAt(e, t, p);
        return kind ? implicit(o, p, n)
                    : ((p[1] - o.center[1]) * cr - (p[0] - o.center[0]) * sr) / reach;
      };
      bool clear = true;
      const std::vector<double> truth = signChanges(f, 0, kTwoPi, 2048, 1e-3, &clear);
      clearCases += clear;
      countsMatch += clear && count == static_cast<int>(truth.size());
      const double size = kind ? std::max({e.a, e.b, o.a, o.b}) + 10 : reach + 20;
      for (double t : truth) {
        const double slope = std::fabs(f(t + 1e-6) - f(t - 1e-6)) / 2e-6;  // |grad F| |P'| sin
        f(t);  // p and n at the crossing
        if (kind && slope < std::sin(kPi / 36) * 2 * std::hypot(n[0], n[1]) * speed(e, t))
          continue;
        ++steep;
        steepHit +=
            std::any_of(rows, rows + count, [&](double* r) { return dist(r, p) < 1e-9 * size; });
      }
    }
    EXPECT_TRUE(steepHit >= (kind ? 0.99 : 1.0) * steep && clearCases > 1000 &&
                countsMatch >= (kind ? 0.99 : 1.0) * clearCases)
        << "kind " << kind << ": " << steepHit << " of " << steep << ", " << countsMatch << " of "
        << clearCases;
  }
}

TEST(EllipseArcIntersections, status_codes_special_points_and_coincidence) {
  const TSellipse upper = ellipse(0, 0, 2, 1, 0, 0, kPi);
  const struct {
    const char* name;
    double x1, y1, x2, y2;
    int mode, n, codes[2];
  } rows[] = {
      {"segment_ends_inside_the_arc", 0, 3, 0, 1, 0, 1, {2}},
      {"ends_meet", 2, 0, 3, 0, 0, 1, {4}},
      {"extension_dropped_without_bit_1", 0, 3, 0, 2, 0, 0, {}},
      {"extension_kept_with_bit_1", 0, 3, 0, 2, 1, 1, {8}},
      {"off_both_kept_with_both_bits", 0, 3, 0, 2, 3, 2, {8, 8}},
      {"extension_at_an_arc_end_is_4", 3, 0, 4, 0, 1, 2, {4, 4}},
  };
  for (const auto& r : rows) {
    const TSline line = segment(r.x1, r.y1, r.x2, r.y2);
    auto out = std::make_unique<TSinterpoint[]>(2);  // exactly the room, so overruns show
    out[0].status = out[1].status = -7;
    ASSERT_EQ(SkLineEllipsearc(&line, &upper, r.mode, out.get()), r.n) << r.name;
    for (int k = 0; k < 2; ++k)
      EXPECT_TRUE(out[k].status == (k < r.n ? r.codes[k] : -7) &&
                  (k >= r.n || offCurve(upper, out[k].point) < 1e-12))
          << r.name << " " << k;
  }
  // The lower half of the unit circle about (0, 1) crosses the upper half at y = (sqrt 52 - 2) / 6.
  const TSarc arc{{0, 0, 0, 0}, {0, 1, 0}, 1, kPi, kTwoPi};
  TSinterpoint out[4];
  ASSERT_EQ(SkArcEllipsearc(&arc, &upper, 0, out), 2);
  EXPECT_TRUE(out[0].status == 1 && out[1].status == 1);
  EXPECT_NEAR(out[1].point[1], (std::sqrt(52.0) - 2) / 6, 1e-12);
  // The circle's leftmost point (angle pi, w = infinity) lies on the ellipse: written once.
  const TSellipse e = ellipse(0, 0, 2, 1, 0), f = ellipse(1, 2, 3, 1, 0.5);
  const TSarc c{{0, 0, 0, 0}, {-1, 0, 0}, 1, 0, kTwoPi};
  double pts[4][3] = {{kSentinel}}, left[3] = {-2, 0, 0};
  int atLeft = 0;
  for (int k = 0, n = SkCircleEllipseAided(&c, &e, pts); k < n; ++k)
    atLeft += dist(pts[k], left) < 1e-6;
  EXPECT_EQ(atLeft, 1);
  // So is the point of parameter pi of an ellipse turned by 0.5, lying on a unit circle.
  double far[3] = {-2 * std::cos(0.5), -2 * std::sin(0.5), 0};
  const TSellipse turned = ellipse(0, 0, 2, 1, 0.5), unit = ellipse(far[0] - 1, far[1], 1, 1, 0);
  atLeft = 0;
  for (int k = 0, n = SkEllipseEllipseAided(&turned, &unit, pts); k < n; ++k)
    atLeft += dist(pts[k], far) < 1e-6;
  EXPECT_EQ(atLeft, 1);
  const TSline dot = segment(1, 0, 1, 0);  // no direction, no crossing
  EXPECT_EQ(SkLineEllipseAided(&dot, &e, pts), 0);
  // Two equal ellipses coincide: -1 and no rows; the arc filter then keeps nothing.
  pts[0][0] = kSentinel;
  EXPECT_TRUE(SkEllipseEllipseAided(&f, &f, pts) == -1 && pts[0][0] == kSentinel);
  EXPECT_EQ(SkEllipsearcEllipsearc(&f, &f, 3, out), 0);
}

// Distance from p to the normal line at the curve point `foot` (0 when p lies on that normal),
// or with `tangent` to the tangent line there.
double offLine(const TSellipse& e, const double* foot, const double* p, bool tangent = false) {
  double f[2], q[2], n[2];
  toLocal(e, foot, f);
  toLocal(e, p, q);
  implicit(e, foot, n);
  const double cross = tangent ? n[0] * (q[0] - f[0]) + n[1] * (q[1] - f[1])
                               : n[0] * (q[1] - f[1]) - n[1] * (q[0] - f[0]);
  return std::fabs(cross) / std::hypot(n[0], n[1]);
}

// Random ellipses with semi-axes from 2 (the tangent quadratic's and the quartic's tolerances are
// absolute) and ratios to 20: nearest points no farther than dense sampling, tangents from a
// point, offsets along the normal, and feet of normals.
TEST(EllipseNormals, nearest_points_feet_tangents_and_normal_offsets) {
  EllipseDraws draws(32, 2, 20, 20);
  int inside = 0;
  for (int i = 0; i < 400; ++i) {
    TSellipse e = draws(), w = e;
    w.end = w.start + kTwoPi;
    e.end = i % 3 == 0 ? w.end : e.end;  // a third whole
    const double size = std::max(e.a, e.b), c2 = std::fabs(e.a * e.a - e.b * e.b), t = draws.turn();
    double p[3] = {e.center[0] + 1.5 * size * std::cos(i), e.center[1] + size * std::sin(3 * i), 0};
    double out[3] = {kSentinel, kSentinel, kSentinel}, t1[3], t2[3], on[3], q[3], rows[4][3];
    const double d = DPnearEllipseArc(e, p, out);
    // The closed-form feet are good to a few 1e-6 of the size at worst (see the header).
    EXPECT_TRUE(std::fabs(d - dist(out, p)) < 1e-6 * size && offCurve(e, out) < 1e-6 * size &&
                out[2] == 0.0)
        << i;
    EXPECT_LE(d, sampledDistance(e, p, 20000) + 1e-7 * size) << i;
    pointAt(ellipse(e.center[0], e.center[1], 2 * e.a, 1.5 * e.b, e.rotation), t, p);
    ASSERT_EQ(DLthrPtangEllipse(1e-9, w, p, t1, t2), 2) << i;
    for (const double* r : {t1, t2})
      EXPECT_LT(std::max(offCurve(e, r), offLine(e, r, p, true)), 1e-8 * size);
    EXPECT_EQ(DLthrPtangEllipse(1e-9, w, e.center, t1, t2), 0);
    // An offset shorter than the smallest radius of curvature keeps its side and distance.
    const double off = 0.5 * std::min(e.a, e.b) * std::min(e.a, e.b) / size;
    pointAt(e, t, on);
    for (int side : {1, -1}) {
      EllipseAngleDistPoint(w, side, t, off, q);
      EXPECT_NEAR(dist(q, on), off, 1e-12 * size);
      EXPECT_TRUE(PointInEllipse(w, q) == side && offLine(e, on, q) < 1e-12 * size);
    }
    // Feet of normals from well inside (0.4) or outside (1.8) the evolute
    // (a x)^(2/3) + (b y)^(2/3) = c2^(2/3); near an axis line they degrade (see the header).
    const double s = i % 2 == 0 ? 0.4 : 1.8;
    double local[3] = {s * c2 / e.a * std::pow(std::cos(t), 3),
                       s * c2 / e.b * std::pow(std::sin(t), 3), 0};
    if (std::fabs(local[0]) < 1e-2 * size || std::fabs(local[1]) < 1e-2 * size)
      continue;
    EllipseToWc(e, local, p);
    const int n = GetEllipsePerpoint(w, p, rows);
    ASSERT_EQ(n, i % 2 == 0 ? 4 : 2) << i;
    inside += n == 4;
    for (int k = 0; k < n; ++k)
      EXPECT_LT(std::max(offCurve(e, rows[k]), offLine(e, rows[k], p)), 1e-6 * size);
  }
  EXPECT_GT(inside, 100);
  // On the curve: 0 and p itself, even off the arc; the centre takes the lower second-axis end.
  const TSellipse upper = ellipse(0, 0, 3, 1, 0, 0, kPi);
  double below[3] = {3 * std::cos(1.0), -std::sin(1.0), 5}, centre[3] = {0, 0, 0}, out[3];
  EXPECT_TRUE(DPnearEllipseArc(upper, below, out) == 0.0 && out[0] == below[0] &&
              out[1] == below[1] && out[2] == 0.0);
  EXPECT_EQ(DPnearEllipseArc(upper, centre, out), 1.0);
  EXPECT_NEAR(out[1], -1.0, 1e-15);
  // On an axis line: the vertex on its side, here 2 away on either axis.
  double left[3] = {-5, 0, 0}, low[3] = {0, -3, 0};
  EXPECT_TRUE(DPnearEllipseArc(ellipse(0, 0, 3, 1, 0), left, out) == 2.0 && out[0] == -3.0);
  EXPECT_TRUE(DPnearEllipseArc(ellipse(0, 0, 3, 1, 0), low, out) == 2.0 && out[1] == -1.0);
  // A circle-shaped record about (2, 2): from (2, 5), its top (2, 3), 2 away.
  double above[3] = {2, 5, 0};
  EXPECT_NEAR(DPnearEllipseArc(ellipse(2, 2, 1, 1, 0), above, out), 2.0, 1e-15);
  EXPECT_TRUE(std::fabs(out[0] - 2.0) < 1e-15 && std::fabs(out[1] - 3.0) < 1e-15);
}

TEST(DLineNearEllipse, tangent_point_parallel_to_the_line) {
  const TSellipse e = ellipse(0, 0, 3, 1, 0, 0.5, 3.0);
  double out[3] = {kSentinel, kSentinel, kSentinel}, p[3] = {2, 0.3, 0};
  EXPECT_EQ(DLineNearEllipse(segment(-5, 0, 5, 0), e, out), 0.0);
  EXPECT_TRUE(out[0] == -3.0 && out[2] == kSentinel);  // a tie goes to the second point
  // y = x + 5 lies above the ellipse: both tangent points of slope 1 are right of it and the
  // smaller signed distance picks the lower, farther one (parameter about 5.1, off the arc).
  const double d = DLineNearEllipse(segment(0, 5, 1, 6), e, out);
  EXPECT_NEAR(-(out[0] / 9) / out[1], 1.0, 1e-14);  // slope of the tangent
  EXPECT_NEAR(d, (out[1] - out[0] - 5) / std::sqrt(2.0), 1e-14);
  EXPECT_TRUE(d < 0 && out[0] > 0);
  EXPECT_EQ(DLineNearEllipsearc(segment(0, 5, 1, 6), e, out), -1.0);
  EXPECT_EQ(DLineNearEllipsearc(segment(0, 5, 1, 6), ellipse(0, 0, 3, 1, 0, 4, 6), out), d);
  // The one-step estimate moves p by the distance it returns (frame = world here).
  const double r = DPnearEllipseArc_means(ellipse(0, 0, 3, 1, 0), p, out);
  EXPECT_TRUE(r >= 0 && std::fabs(dist(out, p) - r) < 1e-12);
}

TEST(EllipseDistPoint, fillet_centres_touch_both_arcs_on_the_stated_sides) {
  EllipseDraws draws(34, 2, 10, 3);
  int found = 0;
  // Draw 40 is fixed: a pair on which a search for the distance from the arc's start would
  // settle on a farther dip.
  for (int i = 0; i <= 40; ++i) {
    TSellipse e1 = draws(), e2 = draws();
    e2.center[0] = e1.center[0] + e1.a * 0.8;  // near enough to cross
    e2.center[1] = e1.center[1];
    if (i == 40) {
      e1 = ellipse(0, 0, 5, 7.9, 0.39, 1.86, 5.54);
      e2 = ellipse(4, 0, 9.9, 3.8, 4.13, 0.09, 6.13);
    }
    const double d = 0.2 + 0.3 * (i % 4);
    double out[3] = {kSentinel, kSentinel, kSentinel}, c1[3] = {e1.center[0], e1.center[1], 0};
    ASSERT_TRUE(EllipseDistPoint(1e-7, e1, e2, i % 2 ? -d : d, out) == 1 && out[2] == 0.0) << i;
    if (std::isnan(out[0]))
      continue;
    ++found;
    EXPECT_NEAR(sampledDistance(e1, out, 100000), d, 1e-6) << i;
    EXPECT_NEAR(sampledDistance(e2, out, 100000), d, 1e-6) << i;
    EXPECT_TRUE(PointInEllipse(e1, out) == (PointInEllipse(e1, e2.center) == 1 ? 1 : -1) &&
                PointInEllipse(e2, out) == (PointInEllipse(e2, c1) == 1 ? 1 : -1))
        << i;
  }
  EXPECT_GT(found, 13);  // 15 of the 41 pairs with these draws; a coarser walk misses some
  double out[3];
  EllipseDistPoint(1e-3, ellipse(0, 0, 2, 1, 0), ellipse(1, 0, 2, 1, 0), 1e-4, out);  // |d| < eps
  EXPECT_TRUE(std::isnan(out[0]));
}

}  // namespace
