// Tarnsysm tool: a picture of an offset, as SVG.
// Drawing coordinates map to pixels with y flipped, so the picture looks as the drawing does
// and a counter-clockwise arc stays counter-clockwise on screen. SVG's y axis points down, so
// its "positive angle" sweep (flag 1) is clockwise on screen: a positive bulge gets flag 0.
#include "svg.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <ostream>

namespace tarnsysm::tool {

namespace {

constexpr double kMaxWidth = 960.0;  // pixels
constexpr double kMaxHeight = 720.0;
constexpr double kMargin = 24.0;
constexpr double kCaptionHeight = 28.0;
constexpr double kLegendHeight = 28.0;
// An arc whose sagitta is below this many pixels is drawn as its chord: the picture is the
// same and renderers need not cope with radii of billions of pixels.
constexpr double kFlatSagitta = 0.01;

const char* const kInputColour = "#8c8c8c";
const char* const kFailedColour = "#e8590c";
const char* const kOffsetColour = "#1864ab";
const char* const kPickColour = "#c92a2a";

std::string escapeXml(const std::string& text) {
  std::string out;
  for (char c : text) {
    switch (c) {
      case '&':
        out += "&amp;";
        break;
      case '<':
        out += "&lt;";
        break;
      case '>':
        out += "&gt;";
        break;
      case '"':
        out += "&quot;";
        break;
      default:
        out += c;
    }
  }
  return out;
}

std::string px(double value) {
  char buffer[32];
  std::snprintf(buffer, sizeof buffer, "%.2f", value);
  return buffer;
}

// Drawing coordinates to pixels.
struct Frame {
  Extent extent;
  double scale = 1.0;
  double left = kMargin;
  double top = kMargin + kCaptionHeight;
  double width = 0.0;
  double height = 0.0;

  double x(double wx) const { return left + (wx - extent.low.x) * scale; }
  double y(double wy) const { return top + (extent.high.y - wy) * scale; }
};

Frame frameFor(const SvgPicture& picture) {
  std::vector<const Polyline*> all;
  for (const Polyline& p : picture.input)
    all.push_back(&p);
  for (const Polyline& p : picture.offsets)
    all.push_back(&p);
  Polyline picks;
  for (const Point& p : picture.picks)
    picks.vertices.push_back({p.x, p.y, 0.0});
  all.push_back(&picks);
  Frame frame;
  if (!extentOf(all, &frame.extent))
    frame.extent = Extent{{0.0, 0.0}, {1.0, 1.0}};
  const double dx = frame.extent.high.x - frame.extent.low.x;
  const double dy = frame.extent.high.y - frame.extent.low.y;
  const double fitX = dx > 0.0 ? (kMaxWidth - 2.0 * kMargin) / dx : HUGE_VAL;
  const double fitY = dy > 0.0 ? (kMaxHeight - 2.0 * kMargin - kCaptionHeight) / dy : HUGE_VAL;
  frame.scale = std::min(fitX, fitY);
  if (!std::isfinite(frame.scale) || frame.scale <= 0.0)
    frame.scale = 1.0;
  frame.width = std::max(dx * frame.scale + 2.0 * kMargin, 480.0);
  frame.height = dy * frame.scale + 2.0 * kMargin + kCaptionHeight + kLegendHeight;
  // Centre narrow drawings in the minimum width.
  frame.left = (frame.width - dx * frame.scale) / 2.0;
  return frame;
}

std::string pathData(const Frame& f, const Polyline& polyline) {
  const auto& v = polyline.vertices;
  std::string d;
  if (v.empty())
    return d;
  d = "M" + px(f.x(v[0].x)) + " " + px(f.y(v[0].y));
  const std::size_t segments = polyline.closed ? v.size() : v.size() - 1;
  for (std::size_t i = 0; i < segments; ++i) {
    const Vertex& a = v[i];
    const Vertex& b = v[(i + 1) % v.size()];
    const double halfChord = std::hypot(b.x - a.x, b.y - a.y) / 2.0;
    const double bulge = std::fabs(a.bulge);
    const std::string to = px(f.x(b.x)) + " " + px(f.y(b.y));
    if (bulge * halfChord * f.scale < kFlatSagitta) {
      d += " L" + to;
      continue;
    }
    // Radius from chord and bulge: sagitta = bulge * halfChord, r = (h^2 + s^2) / (2 s).
    const double radius = halfChord * (1.0 + bulge * bulge) / (2.0 * bulge) * f.scale;
    const char* large = bulge > 1.0 ? "1" : "0";
    const char* sweep = a.bulge > 0.0 ? "0" : "1";
    d += " A" + px(radius) + " " + px(radius) + " 0 " + large + " " + sweep + " " + to;
  }
  if (polyline.closed)
    d += " Z";
  return d;
}

}  // namespace

void writeSvg(std::ostream& out, const SvgPicture& picture) {
  const Frame f = frameFor(picture);
  out << "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      << "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" << px(f.width) << "\" height=\""
      << px(f.height) << "\" viewBox=\"0 0 " << px(f.width) << " " << px(f.height) << "\">\n"
      << "<title>" << escapeXml(picture.caption) << "</title>\n"
      << "<rect x=\"0\" y=\"0\" width=\"" << px(f.width) << "\" height=\"" << px(f.height)
      << "\" fill=\"#ffffff\"/>\n"
      << "<text x=\"" << px(kMargin) << "\" y=\"" << px(kMargin + 8.0)
      << "\" font-family=\"sans-serif\" font-size=\"15\" fill=\"#212529\">"
      << escapeXml(picture.caption) << "</text>\n";

  out << "<g id=\"input\" fill=\"none\" stroke=\"" << kInputColour
      << "\" stroke-width=\"1.2\" stroke-linejoin=\"round\" stroke-linecap=\"round\">\n";
  for (std::size_t i = 0; i < picture.input.size(); ++i) {
    const bool failed = i < picture.inputFailed.size() && picture.inputFailed[i];
    out << "<path d=\"" << pathData(f, picture.input[i]) << "\"";
    if (failed)
      out << " stroke=\"" << kFailedColour << "\" stroke-dasharray=\"6 4\"";
    out << "/>\n";
  }
  out << "</g>\n";

  out << "<g id=\"offset\" fill=\"none\" stroke=\"" << kOffsetColour
      << "\" stroke-width=\"2\" stroke-linejoin=\"round\" stroke-linecap=\"round\">\n";
  for (const Polyline& p : picture.offsets)
    out << "<path d=\"" << pathData(f, p) << "\"/>\n";
  out << "</g>\n";

  out << "<g id=\"pick\" fill=\"" << kPickColour << "\" stroke=\"#ffffff\" stroke-width=\"1\">\n";
  for (const Point& p : picture.picks) {
    out << "<circle cx=\"" << px(f.x(p.x)) << "\" cy=\"" << px(f.y(p.y)) << "\" r=\"3.5\"/>\n";
  }
  out << "</g>\n";

  // Legend: a short stroke of each style and what it means.
  const double y = f.height - kMargin + 4.0;
  double x = kMargin;
  auto entry = [&](const std::string& swatch, const char* label) {
    out << swatch << "<text x=\"" << px(x + 26.0) << "\" y=\"" << px(y + 4.0)
        << "\" font-family=\"sans-serif\" font-size=\"12\" fill=\"#495057\">" << label
        << "</text>\n";
    x += 26.0 + 7.0 * static_cast<double>(std::char_traits<char>::length(label)) + 18.0;
  };
  auto line = [&](const char* colour, const char* width, const char* dash) {
    return "<path d=\"M" + px(x) + " " + px(y) + " h20\" stroke=\"" + colour +
           "\" stroke-width=\"" + width + "\"" + dash + "/>";
  };
  entry(line(kInputColour, "1.2", ""), "input");
  entry(line(kOffsetColour, "2", ""), "offset");
  if (std::find(picture.inputFailed.begin(), picture.inputFailed.end(), true) !=
      picture.inputFailed.end()) {
    entry(line(kFailedColour, "1.2", " stroke-dasharray=\"6 4\""), "not offset");
  }
  if (!picture.picks.empty()) {
    entry("<circle cx=\"" + px(x + 10.0) + "\" cy=\"" + px(y) + "\" r=\"3.5\" fill=\"" +
              kPickColour + "\"/>",
          "pick point");
  }
  out << "</svg>\n";
}

}  // namespace tarnsysm::tool
