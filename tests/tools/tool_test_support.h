// Tarnsysm tool tests: running the tarnsysm command and measuring what it wrote.
// Areas and extents are computed here from first principles, not by the library.
#pragma once

#include <dl_creationadapter.h>
#include <dl_dxf.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include "drawing.h"

namespace tarnsysm::tool::test {

constexpr double kPi = 3.141592653589793;

/// Signed area in the mathematical sense (counter-clockwise positive) of a closed polyline of
/// lines and bulge arcs: the shoelace sum over the vertices plus, for each arc, its circular
/// segment r^2/2 (theta - sin theta), added where the arc bows outwards. A positive bulge
/// bows to the right of travel, which on a counter-clockwise boundary is outwards.
inline double enclosedArea(const Polyline& p) {
  double area = 0.0;
  const auto& v = p.vertices;
  for (std::size_t i = 0; i < v.size(); ++i) {
    const Vertex& a = v[i];
    const Vertex& b = v[(i + 1) % v.size()];
    area += (a.x * b.y - b.x * a.y) / 2.0;
    if (a.bulge == 0.0)
      continue;
    const double chord = std::hypot(b.x - a.x, b.y - a.y);
    const double theta = 4.0 * std::atan(std::fabs(a.bulge));
    const double r = chord / (2.0 * std::sin(theta / 2.0));
    const double segment = r * r / 2.0 * (theta - std::sin(theta));
    area += a.bulge > 0.0 ? segment : -segment;
  }
  return area;
}

/// A fresh directory, removed with everything in it at the end of the test.
class TempDir {
 public:
  TempDir() {
    std::string pattern = (std::filesystem::temp_directory_path() / "tarnsysm-test-XXXXXX");
    if (mkdtemp(pattern.data()) == nullptr)
      throw std::runtime_error("mkdtemp failed");
    path_ = pattern;
  }
  ~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  std::string operator/(const std::string& name) const { return (path_ / name).string(); }
  const std::filesystem::path& path() const { return path_; }

  /// Names of the files in the directory, sorted.
  std::vector<std::string> files() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path_)) {
      names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
  }

 private:
  std::filesystem::path path_;
};

inline void writeFile(const std::string& path, const std::string& text) {
  std::ofstream out(path, std::ios::binary);
  out << text;
}

inline std::string readFile(const std::string& path) {
  std::ifstream in(path, std::ios::binary);
  std::ostringstream text;
  text << in.rdbuf();
  return text.str();
}

inline std::string quoted(const std::string& word) {
  std::string out = "'";
  for (char c : word)
    out += c == '\'' ? std::string("'\\''") : std::string(1, c);
  return out + "'";
}

struct RunResult {
  int status = -1;
  std::string out;
  std::string err;
};

/// Runs the tarnsysm command with the arguments, in the directory `dir`.
inline RunResult runTool(const TempDir& dir, const std::vector<std::string>& args) {
  std::string command = "cd " + quoted(dir.path().string()) + " && " + quoted(TARNSYSM_TOOL_PATH);
  for (const auto& a : args)
    command += " " + quoted(a);
  const std::string outPath =
      (std::filesystem::temp_directory_path() / ("tarnsysm-out-" + std::to_string(getpid())))
          .string();
  const std::string errPath = outPath + ".err";
  command += " >" + quoted(outPath) + " 2>" + quoted(errPath);
  RunResult result;
  const int raw = std::system(command.c_str());
  result.status = WIFEXITED(raw) ? WEXITSTATUS(raw) : -1;
  result.out = readFile(outPath);
  result.err = readFile(errPath);
  std::remove(outPath.c_str());
  std::remove(errPath.c_str());
  return result;
}

inline std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream in(text);
  std::string line;
  while (std::getline(in, line))
    lines.push_back(line);
  return lines;
}

/// Everything of a DXF file that the tests look at, read with dxflib.
class DxfContents : public DL_CreationAdapter {
 public:
  std::vector<std::string> layerNames;
  std::map<std::string, std::vector<Polyline>> polylinesByLayer;
  std::map<std::string, std::vector<Point>> pointsByLayer;

  void addLayer(const DL_LayerData& data) override { layerNames.push_back(data.name); }
  void addPolyline(const DL_PolylineData& data) override {
    Polyline p;
    p.closed = (data.flags & 1) != 0;
    p.layer = getAttributes().getLayer();
    auto& list = polylinesByLayer[p.layer];
    list.push_back(p);
    current_ = &list.back();
  }
  void addVertex(const DL_VertexData& data) override {
    if (current_ != nullptr)
      current_->vertices.push_back({data.x, data.y, data.bulge});
  }
  void addPoint(const DL_PointData& data) override {
    pointsByLayer[getAttributes().getLayer()].push_back({data.x, data.y});
  }

  static DxfContents read(const std::string& path) {
    DxfContents contents;
    DL_Dxf dxf;
    if (!dxf.in(path, &contents))
      throw std::runtime_error("cannot read " + path);
    return contents;
  }

 private:
  Polyline* current_ = nullptr;
};

}  // namespace tarnsysm::tool::test
