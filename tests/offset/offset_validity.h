// Tarnsysm: planar computational geometry for 2D drafting.
// Whether a polyline is an offset of another at a signed distance, decided from plane geometry
// alone (nothing here calls the library): exact point, line and arc distances, exact crossings.
#pragma once

#include <algorithm>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace tarnsysm_test {

/// One vertex row as the checker reads it: position and the bulge of the segment that starts here.
struct ValidityRow {
  double x, y, bulge;
};

/// The first three fields of n library rows.
inline std::vector<ValidityRow> validityRows(const double (*v)[5], int n) {
  std::vector<ValidityRow> rows;
  for (int i = 0; i < n; ++i)
    rows.push_back({v[i][0], v[i][1], v[i][2]});
  return rows;
}

namespace validity_detail {

constexpr double kTwoPi = 6.283185307179586;

struct P {
  double x, y;
  P operator+(P o) const { return {x + o.x, y + o.y}; }
  P operator-(P o) const { return {x - o.x, y - o.y}; }
  P operator*(double k) const { return {k * x, k * y}; }
  double dot(P o) const { return x * o.x + y * o.y; }
  double cross(P o) const { return x * o.y - y * o.x; }
  double len() const { return std::hypot(x, y); }
  P unit() const { return *this * (1.0 / len()); }
};

// A line from a to b, or an arc about c of radius r that starts at angle a0 and sweeps `sweep`
// (positive counter-clockwise). lo/hi bound it (an arc by its whole circle).
struct Seg {
  P a, b;
  bool arc;
  P c;
  double r, a0, sweep;
  P lo, hi;

  // Whether p, known to lie on the line or circle, lies on the segment, widened by slack (a
  // length) at both ends.
  bool holds(P p, double slack) const {
    if (!arc) {
      const double u = (p - a).dot(b - a) / (b - a).dot(b - a), du = slack / (b - a).len();
      return u >= -du && u <= 1.0 + du;
    }
    double t = std::fmod((std::atan2(p.y - c.y, p.x - c.x) - a0) * (sweep > 0 ? 1 : -1), kTwoPi);
    t += t < 0.0 ? kTwoPi : 0.0;
    return t <= std::fabs(sweep) + slack / r || t >= kTwoPi - slack / r;
  }

  // Distance from p, and through *side its side (+1 right of travel, -1 left) when the nearest
  // point is inside the segment, else 0.
  double distance(P p, int* side = nullptr) const {
    const double u = (p - a).dot(b - a) / (b - a).dot(b - a), rho = (p - c).len();
    const bool inside = arc ? rho > 0.0 && holds(p, 0.0) : u > 0.0 && u < 1.0;
    const double off = arc ? (rho - r) * (sweep > 0 ? 1 : -1) : -(b - a).cross(p - a);
    if (side)
      *side = inside && off != 0.0 ? (off > 0.0 ? 1 : -1) : 0;
    if (arc)
      return inside ? std::fabs(rho - r) : std::min((p - a).len(), (p - b).len());
    return (p - (a + (b - a) * std::clamp(u, 0.0, 1.0))).len();
  }
};

// A bulge b = tan(theta/4) puts the centre on the left of the chord at (1 - b^2)/(4b) chord
// lengths from its midpoint (on the right for b < 0 or b > 1), radius chord (1 + b^2)/(4|b|).
inline Seg makeSeg(const ValidityRow& s, const ValidityRow& e) {
  const double b = s.bulge;
  Seg g{{s.x, s.y}, {e.x, e.y}, std::fabs(b) > 1e-9, {0, 0}, 0, 0, 0, {0, 0}, {0, 0}};
  g.lo = {std::min(s.x, e.x), std::min(s.y, e.y)};
  g.hi = {std::max(s.x, e.x), std::max(s.y, e.y)};
  if (!g.arc)  // below 1e-9 the sagitta is far under any tolerance used
    return g;
  const P chord = g.b - g.a;
  g.c = (g.a + g.b) * 0.5 + P{-chord.y, chord.x} * ((1.0 - b * b) / (4.0 * b));
  g.r = chord.len() * (1.0 + b * b) / (4.0 * std::fabs(b));
  g.a0 = std::atan2(g.a.y - g.c.y, g.a.x - g.c.x);
  g.sweep = 4.0 * std::atan(b);
  g.lo = g.c - P{g.r, g.r};
  g.hi = g.c + P{g.r, g.r};
  return g;
}

// Distance between two boxes (a point is a box of its own): never more than between their contents.
inline double boxGap(P lo1, P hi1, P lo2, P hi2) {
  return std::hypot(std::max({0.0, lo1.x - hi2.x, lo2.x - hi1.x}),
                    std::max({0.0, lo1.y - hi2.y, lo2.y - hi1.y}));
}

// Points shared by two segments within slack (overlapping pieces give their end points).
inline std::vector<P> crossings(const Seg& s, const Seg& t, double slack) {
  std::vector<P> out;
  if (boxGap(s.lo, s.hi, t.lo, t.hi) > slack)
    return out;
  const auto keep = [&](P q) {
    if (s.holds(q, slack) && t.holds(q, slack))
      out.push_back(q);
  };
  const auto overlapEnds = [&] {
    for (P q : {s.a, s.b, t.a, t.b})
      if (s.distance(q) <= slack && t.distance(q) <= slack)
        out.push_back(q);
  };
  // The line through `from` in unit direction u against the circle (c, r).
  const auto lineCircle = [&](P from, P u, P c, double r) {
    const P foot = from + u * (c - from).dot(u);
    const double h = (foot - c).len();
    const double half = std::sqrt(std::max(0.0, r * r - h * h));  // round-off at tangency
    if (h <= r + slack)
      for (double sign : {-1.0, 1.0})
        keep(foot + u * (sign * half));
  };
  if (!s.arc && !t.arc) {
    const P d1 = s.b - s.a, d2 = t.b - t.a;
    const double den = d1.cross(d2);
    if (std::fabs(den) > 1e-12 * d1.len() * d2.len())
      keep(s.a + d1 * ((t.a - s.a).cross(d2) / den));
    else if (std::fabs(d1.cross(t.a - s.a)) / d1.len() <= slack)
      overlapEnds();
  } else if (!s.arc || !t.arc) {
    const Seg& line = s.arc ? t : s;
    const Seg& arc = s.arc ? s : t;
    lineCircle(line.a, (line.b - line.a).unit(), arc.c, arc.r);
  } else {
    const P e = t.c - s.c;
    const double dcc = e.len();
    if (dcc <= 1e-12 * (s.r + t.r) && std::fabs(s.r - t.r) <= slack)
      overlapEnds();
    else if (dcc > 1e-12 * (s.r + t.r) && dcc <= s.r + t.r + slack &&
             dcc >= std::fabs(s.r - t.r) - slack)  // the common chord, square to the centre line
      lineCircle(s.c + e.unit() * ((s.r * s.r - t.r * t.r + dcc * dcc) / (2.0 * dcc)),
                 P{-e.y, e.x}.unit(), s.c, s.r);
  }
  return out;
}

// Exact distance between two segments: 0 where they meet; else reached at an end of one, or
// where the connection is normal to both (a circle's points facing the other's centre or square
// to its line, the foot of a centre on a line).
inline double segDist(const Seg& s, const Seg& t) {
  if (!crossings(s, t, 0.0).empty())
    return 0.0;
  double best = std::numeric_limits<double>::infinity();
  for (const auto& [u, w] : {std::pair<const Seg&, const Seg&>(s, t), {t, s}}) {
    best = std::min({best, w.distance(u.a), w.distance(u.b)});
    std::vector<P> inner;
    const P dir = w.arc ? w.c - u.c : P{w.a.y - w.b.y, w.b.x - w.a.x};
    if (u.arc && dir.len() > 0.0)
      inner = {u.c + dir.unit() * u.r, u.c - dir.unit() * u.r};
    else if (!u.arc && w.arc)
      inner = {u.a + (u.b - u.a).unit() * (w.c - u.a).dot((u.b - u.a).unit())};
    for (P q : inner)
      if (u.holds(q, 0.0))
        best = std::min(best, w.distance(q));
  }
  return best;
}

inline std::vector<Seg> segments(const std::vector<ValidityRow>& v, bool closed, double minLen) {
  std::vector<Seg> out;
  const size_t n = v.size(), count = n < 2 ? 0 : closed ? n : n - 1;
  for (size_t i = 0; i < count; ++i)
    if (std::hypot(v[(i + 1) % n].x - v[i].x, v[(i + 1) % n].y - v[i].y) > minLen)
      out.push_back(makeSeg(v[i], v[(i + 1) % n]));
  return out;
}

// Signed area, positive counter-clockwise: shoelace terms plus each arc's circular segment
// r^2 (theta - sin theta)/2, which carries theta's sign.
inline double area(const std::vector<Seg>& segs) {
  double sum = 0.0;
  for (const Seg& g : segs)
    sum += g.a.cross(g.b) / 2.0 + (g.arc ? g.r * g.r * (g.sweep - std::sin(g.sweep)) / 2.0 : 0.0);
  return sum;
}

inline int sideOf(const std::vector<Seg>& src, P q, double tol, double* nearest = nullptr) {
  double best = std::numeric_limits<double>::infinity();
  for (const Seg& s : src)
    if (boxGap(q, q, s.lo, s.hi) < best)
      best = std::min(best, s.distance(q));
  int right = 0, left = 0, side = 0;
  for (const Seg& s : src)
    if (boxGap(q, q, s.lo, s.hi) <= best + tol && s.distance(q, &side) <= best + tol)
      (side > 0 ? right : left) += side != 0;
  if (nearest)
    *nearest = best;
  return right > 0 && left == 0 ? 1 : left > 0 && right == 0 ? -1 : 0;
}

}  // namespace validity_detail

/// Signed area enclosed by the rows taken as closed, positive counter-clockwise.
inline double signedArea(const std::vector<ValidityRow>& rows) {
  return validity_detail::area(validity_detail::segments(rows, true, 0.0));
}

/// The side of point p from the source, +1 right of travel, -1 left, judged by the source
/// segments nearest to p (within tol) whose nearest point lies inside them: -1 or +1 when they
/// all agree, 0 when there is none or they disagree.
inline int sideOf(const std::vector<ValidityRow>& source, bool closed, double px, double py,
                  double tol = 1e-6) {
  return validity_detail::sideOf(validity_detail::segments(source, closed, 0.0), {px, py}, tol);
}

/// Empty when the polyline neither crosses nor touches itself (neighbouring segments meet only
/// at their shared row, within tol), else which segments meet.
inline std::string selfCrossing(const std::vector<ValidityRow>& rows, bool closed,
                                double tol = 1e-6) {
  const auto segs = validity_detail::segments(rows, closed, tol * 1e-3);
  for (size_t i = 0, m = segs.size(); i < m; ++i)
    for (size_t j = i + 1; j < m; ++j)
      for (const auto& q : validity_detail::crossings(segs[i], segs[j], tol * 1e-3))
        if (!(j == i + 1 && (q - segs[i].b).len() <= tol) &&
            !(closed && i == 0 && j == m - 1 && (q - segs[0].a).len() <= tol))
          return "crosses itself at segments " + std::to_string(i) + " and " + std::to_string(j);
  return "";
}

/// The exact least distance between the result and the source (0 where they meet), and through
/// *sameWay whether, both being closed, they enclose areas of the same sign (true otherwise).
inline double offsetGap(const std::vector<ValidityRow>& source, bool sourceClosed,
                        const std::vector<ValidityRow>& result, bool resultClosed,
                        bool* sameWay = nullptr, double minLen = 0.0) {
  using namespace validity_detail;
  const std::vector<Seg> src = segments(source, sourceClosed, 0.0);
  const std::vector<Seg> res = segments(result, resultClosed, minLen);
  double nearest = std::numeric_limits<double>::infinity();
  for (const Seg& r : res)
    for (const Seg& s : src)
      if (boxGap(r.lo, r.hi, s.lo, s.hi) < nearest)
        nearest = std::min(nearest, segDist(r, s));
  if (sameWay)
    *sameWay = !sourceClosed || !resultClosed || area(src) * area(res) >= 0.0;
  return nearest;
}

/// Empty when `result` (closed or open) is an offset of `source` by the signed `distance`
/// (positive to the right of travel), else a short reason: every point of the result lies at
/// least |distance| - tol from the source and some point within tol of |distance| (exact line
/// and arc distances); its vertices and segment midpoints that lie at |distance| (within tol) lie
/// on the side the sign asks for (see sideOf); a closed result of a closed source runs the same
/// way round; the result does not cross or touch itself (see selfCrossing).
inline std::string offsetValidity(const std::vector<ValidityRow>& source, bool sourceClosed,
                                  const std::vector<ValidityRow>& result, bool resultClosed,
                                  double distance, double tol = 1e-6) {
  using namespace validity_detail;
  for (const ValidityRow& r : result)
    if (!std::isfinite(r.x) || !std::isfinite(r.y) || !std::isfinite(r.bulge))
      return "a row is not finite";
  const std::vector<Seg> src = segments(source, sourceClosed, 0.0);
  const std::vector<Seg> res = segments(result, resultClosed, tol * 1e-3);
  if (src.empty() || res.empty())
    return "no segments";
  const double d = std::fabs(distance);
  bool sameWay = true;
  const double nearest =
      offsetGap(source, sourceClosed, result, resultClosed, &sameWay, tol * 1e-3);
  if (nearest < d - tol || nearest > d + tol)
    return "nearest approach " + std::to_string(nearest) + ", not " + std::to_string(d);
  for (const Seg& r : res) {
    const double half = r.a0 + r.sweep / 2, want = distance > 0.0 ? 1 : -1;
    const P mid = r.arc ? r.c + P{std::cos(half), std::sin(half)} * r.r : (r.a + r.b) * 0.5;
    double at;
    for (P q : {r.a, mid})
      if (sideOf(src, q, tol, &at) == -want && at <= d + tol)
        return "lies on the wrong side";
  }
  if (!sameWay)
    return "runs the other way round";
  return selfCrossing(result, resultClosed, tol);
}

}  // namespace tarnsysm_test
