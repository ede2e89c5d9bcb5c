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
};
inline P operator+(P a, P b) {
  return {a.x + b.x, a.y + b.y};
}
inline P operator-(P a, P b) {
  return {a.x - b.x, a.y - b.y};
}
inline P operator*(double k, P a) {
  return {k * a.x, k * a.y};
}
inline double dot(P a, P b) {
  return a.x * b.x + a.y * b.y;
}
inline double cross(P a, P b) {
  return a.x * b.y - a.y * b.x;
}
inline double len(P a) {
  return std::hypot(a.x, a.y);
}
inline P unit(P a) {
  return (1.0 / len(a)) * a;
}

// A line from a to b, or an arc about c of radius r that starts at angle a0 and sweeps `sweep`
// (positive counter-clockwise). lo/hi bound it (an arc by its whole circle).
struct Seg {
  P a, b;
  bool arc;
  P c;
  double r, a0, sweep;
  P lo, hi;
};

// A bulge b = tan(theta/4) puts the centre on the left of the chord at (1 - b^2)/(4b) chord
// lengths from its midpoint (on the right for b < 0 or b > 1), radius chord (1 + b^2)/(4|b|).
inline Seg makeSeg(const ValidityRow& s, const ValidityRow& e) {
  Seg g{};
  g.a = {s.x, s.y};
  g.b = {e.x, e.y};
  const double b = s.bulge;
  g.arc = std::fabs(b) > 1e-9;  // below this the sagitta is far under any tolerance used
  if (!g.arc) {
    g.lo = {std::min(s.x, e.x), std::min(s.y, e.y)};
    g.hi = {std::max(s.x, e.x), std::max(s.y, e.y)};
    return g;
  }
  const P chord = g.b - g.a;
  const double k = (1.0 - b * b) / (4.0 * b);
  g.c = 0.5 * (g.a + g.b) + k * P{-chord.y, chord.x};
  g.r = len(chord) * (1.0 + b * b) / (4.0 * std::fabs(b));
  g.a0 = std::atan2(g.a.y - g.c.y, g.a.x - g.c.x);
  g.sweep = 4.0 * std::atan(b);
  g.lo = g.c - P{g.r, g.r};
  g.hi = g.c + P{g.r, g.r};
  return g;
}

// Whether p, known to lie on the segment's line or circle, lies on the segment; slack (a length)
// widens it at both ends.
inline bool onSeg(const Seg& g, P p, double slack) {
  if (!g.arc) {
    const P d = g.b - g.a;
    const double u = dot(p - g.a, d) / dot(d, d), du = slack / len(d);
    return u >= -du && u <= 1.0 + du;
  }
  double t =
      std::fmod((std::atan2(p.y - g.c.y, p.x - g.c.x) - g.a0) * (g.sweep > 0 ? 1 : -1), kTwoPi);
  if (t < 0.0)
    t += kTwoPi;
  const double dt = slack / g.r;
  return t <= std::fabs(g.sweep) + dt || t >= kTwoPi - dt;
}

// Distance from p to the segment, and through *side its side (+1 right of travel, -1 left) when
// the nearest point is inside the segment, else 0.
inline double pointDist(const Seg& g, P p, int* side = nullptr) {
  const P d = g.b - g.a;
  double dist;
  bool inside;
  if (g.arc) {
    const double rho = len(p - g.c);
    inside = rho > 0.0 && onSeg(g, p, 0.0);
    dist = inside ? std::fabs(rho - g.r) : std::min(len(p - g.a), len(p - g.b));
    if (side)
      *side = inside && rho != g.r ? ((rho > g.r) == (g.sweep > 0) ? 1 : -1) : 0;
    return dist;
  }
  const double u = dot(p - g.a, d) / dot(d, d);
  inside = u > 0.0 && u < 1.0;
  dist = len(p - (g.a + std::clamp(u, 0.0, 1.0) * d));
  if (side)
    *side = inside && cross(d, p - g.a) != 0.0 ? (cross(d, p - g.a) < 0.0 ? 1 : -1) : 0;
  return dist;
}

struct Hits {
  P p[4];
  int n = 0;
  void add(P q) {
    if (n < 4)
      p[n++] = q;
  }
};

// Points of the line through a with direction u (unit) that lie on circle (c, r), within slack.
inline void lineCircle(P a, P u, P c, double r, double slack, Hits& out, const Seg& s,
                       const Seg& t) {
  const P foot = a + dot(c - a, u) * u;
  const double h = len(foot - c);
  if (h > r + slack)
    return;
  const double half = std::sqrt(std::max(0.0, r * r - h * h));  // round-off at tangency
  for (double sign : {-1.0, 1.0}) {
    const P q = foot + (sign * half) * u;
    if (onSeg(s, q, slack) && onSeg(t, q, slack))
      out.add(q);
    if (half == 0.0)
      break;
  }
}

// Points shared by two segments within slack (overlapping pieces give their end points).
inline Hits crossings(const Seg& s, const Seg& t, double slack) {
  Hits out;
  if (s.lo.x > t.hi.x + slack || t.lo.x > s.hi.x + slack || s.lo.y > t.hi.y + slack ||
      t.lo.y > s.hi.y + slack)
    return out;
  auto overlapEnds = [&] {
    for (const Seg* g : {&s, &t}) {
      const Seg& o = g == &s ? t : s;
      for (P q : {g->a, g->b})
        if (pointDist(o, q) <= slack)
          out.add(q);
    }
  };
  if (!s.arc && !t.arc) {
    const P d1 = s.b - s.a, d2 = t.b - t.a;
    const double den = cross(d1, d2);
    if (std::fabs(den) > 1e-12 * len(d1) * len(d2)) {
      const P q = s.a + (cross(t.a - s.a, d2) / den) * d1;
      if (onSeg(s, q, slack) && onSeg(t, q, slack))
        out.add(q);
    } else if (std::fabs(cross(d1, t.a - s.a)) / len(d1) <= slack) {
      overlapEnds();
    }
  } else if (!s.arc || !t.arc) {
    const Seg& line = s.arc ? t : s;
    const Seg& arc = s.arc ? s : t;
    lineCircle(line.a, unit(line.b - line.a), arc.c, arc.r, slack, out, s, t);
  } else {
    const P e = t.c - s.c;
    const double dcc = len(e);
    if (dcc <= 1e-12 * (s.r + t.r)) {
      if (std::fabs(s.r - t.r) <= slack)
        overlapEnds();
    } else if (dcc <= s.r + t.r + slack && dcc >= std::fabs(s.r - t.r) - slack) {
      // The common chord is perpendicular to the centre line, at m from s's centre.
      const double m = (s.r * s.r - t.r * t.r + dcc * dcc) / (2.0 * dcc);
      lineCircle(s.c + m * unit(e), unit(P{-e.y, e.x}), s.c, s.r, slack, out, s, t);
    }
  }
  return out;
}

// Candidate nearest points on s against t: its ends and the interior points where the shortest
// connection can be normal to both (the point of a circle facing the other's line or centre, the
// foot of the other circle's centre on a line); the distance to t from the best of them.
inline double candidateDist(const Seg& s, const Seg& t) {
  double best = std::min(pointDist(t, s.a), pointDist(t, s.b));
  auto consider = [&](P q) {
    if (onSeg(s, q, 0.0))
      best = std::min(best, pointDist(t, q));
  };
  if (s.arc) {
    const P dir = t.arc ? t.c - s.c : P{t.a.y - t.b.y, t.b.x - t.a.x};
    if (len(dir) > 0.0) {
      consider(s.c + s.r * unit(dir));
      consider(s.c - s.r * unit(dir));
    }
  } else if (t.arc) {
    const P u = unit(s.b - s.a);
    consider(s.a + dot(t.c - s.a, u) * u);
  }
  return best;
}

// Exact distance between two segments: 0 where they meet, else the nearest candidate pair.
inline double segDist(const Seg& s, const Seg& t) {
  if (crossings(s, t, 0.0).n > 0)
    return 0.0;
  return std::min(candidateDist(s, t), candidateDist(t, s));
}

// Distance between two boxes (a point is a box of its own): never more than between their contents.
inline double boxGap(P lo1, P hi1, P lo2, P hi2) {
  return std::hypot(std::max({0.0, lo1.x - hi2.x, lo2.x - hi1.x}),
                    std::max({0.0, lo1.y - hi2.y, lo2.y - hi1.y}));
}

inline std::vector<Seg> segments(const std::vector<ValidityRow>& v, bool closed, double minLen) {
  std::vector<Seg> out;
  const size_t n = v.size(), count = closed ? n : (n > 0 ? n - 1 : 0);
  for (size_t i = 0; i < count && n > 1; ++i) {
    const ValidityRow& e = v[(i + 1) % n];
    if (std::hypot(e.x - v[i].x, e.y - v[i].y) > minLen)
      out.push_back(makeSeg(v[i], e));
  }
  return out;
}

// Signed area, positive counter-clockwise: shoelace terms plus each arc's circular segment
// r^2 (theta - sin theta)/2, which carries theta's sign.
inline double area(const std::vector<Seg>& segs) {
  double sum = 0.0;
  for (const Seg& g : segs) {
    sum += cross(g.a, g.b) / 2.0;
    if (g.arc)
      sum += g.r * g.r * (g.sweep - std::sin(g.sweep)) / 2.0;
  }
  return sum;
}

}  // namespace validity_detail

/// Empty when `result` (closed or open) is an offset of `source` by the signed `distance`
/// (positive to the right of travel), else a short reason: every point of the result lies at
/// least |distance| - tol from the source and some point within tol of |distance|; the result
/// lies on the side the sign asks for (judged where a point's nearest source point is inside a
/// segment); a closed result of a closed source runs the same way round; the result does not
/// cross or touch itself (adjacent segments meet only at their shared row, within tol).
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

  // Exact nearest approach of the result to the source.
  double nearest = std::numeric_limits<double>::infinity();
  for (const Seg& r : res)
    for (const Seg& s : src)
      if (boxGap(r.lo, r.hi, s.lo, s.hi) < nearest)
        nearest = std::min(nearest, segDist(r, s));
  if (nearest < d - tol)
    return "comes within " + std::to_string(nearest) + " of the source";
  if (nearest > d + tol)
    return "stays " + std::to_string(nearest) + " away from the source";

  // Side, at vertices and midpoints: a point is on the wrong side when every source segment
  // that is nearest to it (within tol) and has its nearest point inside says so.
  const int want = distance > 0.0 ? 1 : -1;
  for (const Seg& r : res) {
    const P mid = r.arc ? r.c + r.r * P{std::cos(r.a0 + r.sweep / 2), std::sin(r.a0 + r.sweep / 2)}
                        : 0.5 * (r.a + r.b);
    for (P q : {r.a, mid}) {
      double best = std::numeric_limits<double>::infinity();
      for (const Seg& s : src)
        if (boxGap(q, q, s.lo, s.hi) < best)
          best = std::min(best, pointDist(s, q));
      int right = 0, wrong = 0;
      for (const Seg& s : src) {
        int side = 0;
        if (boxGap(q, q, s.lo, s.hi) <= best + tol && pointDist(s, q, &side) <= best + tol)
          (side == want ? right : wrong) += side != 0;
      }
      if (wrong > 0 && right == 0)
        return "lies on the wrong side";
    }
  }

  if (sourceClosed && resultClosed && area(src) * area(res) < 0.0)
    return "runs the other way round";

  // Self-crossing: any shared point, except at the shared row of neighbouring segments.
  const size_t m = res.size();
  for (size_t i = 0; i < m; ++i) {
    for (size_t j = i + 1; j < m; ++j) {
      const bool next = j == i + 1, wrap = resultClosed && i == 0 && j == m - 1;
      const Hits hits = crossings(res[i], res[j], tol * 1e-3);
      for (int k = 0; k < hits.n; ++k) {
        const P q = hits.p[k];
        if ((next && len(q - res[i].b) <= tol) || (wrap && len(q - res[0].a) <= tol))
          continue;
        return "crosses itself at segments " + std::to_string(i) + " and " + std::to_string(j);
      }
    }
  }
  return "";
}

}  // namespace tarnsysm_test
