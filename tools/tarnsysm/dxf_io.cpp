// Tarnsysm tool: DXF drawings in and out, through dxflib.
// The writer emits the full table set that AutoCAD-compatible readers expect of an R2000 file.
#include "dxf_io.h"

#include <dl_creationadapter.h>
#include <dl_dxf.h>
#include <dl_writer_ascii.h>

#include <cmath>
#include <cstdio>
#include <memory>

namespace tarnsysm::tool {

namespace {

// POLYLINE flags that mark geometry other than a flat polyline: 3D polyline, polygon mesh,
// polyface mesh.
constexpr int kNotPlanarFlags = 8 | 16 | 64;
constexpr int kClosedFlag = 1;
// Largest x or y component of a unit extrusion direction that still counts as the z axis.
constexpr double kPlaneTolerance = 1e-12;

class PolylineCollector : public DL_CreationAdapter {
 public:
  std::vector<Polyline> polylines;
  std::size_t skipped = 0;

  void addBlock(const DL_BlockData&) override { ++blockDepth_; }
  void endBlock() override {
    if (blockDepth_ > 0)
      --blockDepth_;
  }

  void addPolyline(const DL_PolylineData& data) override {
    collecting_ = false;
    if (blockDepth_ > 0)
      return;
    // A polyline's own plane is given by its extrusion direction; only the drawing plane
    // itself, seen from above (0, 0, 1) or from below (0, 0, -1), can be offset here.
    const double* normal = getExtrusion() != nullptr ? getExtrusion()->getDirection() : nullptr;
    const bool tilted = normal != nullptr && (std::fabs(normal[0]) > kPlaneTolerance ||
                                              std::fabs(normal[1]) > kPlaneTolerance);
    if ((data.flags & kNotPlanarFlags) != 0 || tilted) {
      ++skipped;
      return;
    }
    Polyline polyline;
    polyline.closed = (data.flags & kClosedFlag) != 0;
    const DL_Attributes attributes = getAttributes();
    polyline.layer = attributes.getLayer();
    if (attributes.getHandle() >= 0) {
      char hex[24];
      std::snprintf(hex, sizeof hex, "%X", static_cast<unsigned>(attributes.getHandle()));
      polyline.handle = hex;
    }
    // A polyline whose plane faces down (extrusion 0,0,-1) has its own x axis pointing
    // to the left of the drawing's: mirror x, and with it the direction of every arc.
    mirrored_ = normal != nullptr && normal[2] < 0.0;
    polylines.push_back(std::move(polyline));
    collecting_ = true;
  }

  void addVertex(const DL_VertexData& data) override {
    if (!collecting_)
      return;
    const double sign = mirrored_ ? -1.0 : 1.0;
    polylines.back().vertices.push_back({sign * data.x, data.y, sign * data.bulge});
  }

  void endSequence() override { collecting_ = false; }

 private:
  int blockDepth_ = 0;
  bool collecting_ = false;
  bool mirrored_ = false;
};

// Entity colours: 256 means "as the layer says".
constexpr int kByLayer = 256;
constexpr int kWhite = 7;
constexpr int kGrey = 8;
constexpr int kBlue = 5;
constexpr int kRed = 1;
constexpr int kDefaultLineWeight = -3;
// Largest magnitude of a number handed to dxflib's writer (see writeDxf).
constexpr double kLargestWritable = 1e100;

DL_Attributes onLayer(const std::string& layer) {
  return DL_Attributes(layer, kByLayer, kDefaultLineWeight, "BYLAYER", 1.0);
}

void writePolylineEntity(DL_Dxf& dxf, DL_WriterA& dw, const Polyline& polyline) {
  const int count = static_cast<int>(polyline.vertices.size());
  dxf.writePolyline(dw, DL_PolylineData(count, 0, 0, polyline.closed ? kClosedFlag : 0),
                    onLayer(polyline.layer.empty() ? "0" : polyline.layer));
  for (const Vertex& v : polyline.vertices) {
    dxf.writeVertex(dw, DL_VertexData(v.x, v.y, 0.0, v.bulge));
  }
  dxf.writePolylineEnd(dw);
}

void writeExtentVariables(DL_WriterA& dw, const std::vector<Polyline>& polylines) {
  std::vector<const Polyline*> all;
  for (const Polyline& p : polylines)
    all.push_back(&p);
  Extent extent;
  if (!extentOf(all, &extent))
    return;
  dw.dxfString(9, "$EXTMIN");
  dw.dxfReal(10, extent.low.x);
  dw.dxfReal(20, extent.low.y);
  dw.dxfReal(30, 0.0);
  dw.dxfString(9, "$EXTMAX");
  dw.dxfReal(10, extent.high.x);
  dw.dxfReal(20, extent.high.y);
  dw.dxfReal(30, 0.0);
}

}  // namespace

Drawing readDxf(const std::string& path) {
  PolylineCollector collector;
  DL_Dxf dxf;
  if (!dxf.in(path, &collector))
    throw UserError("cannot read DXF file '" + path + "'");
  Drawing drawing;
  drawing.polylines = std::move(collector.polylines);
  drawing.skipped = collector.skipped;
  return drawing;
}

DxfContent offsetDrawing(const std::vector<Polyline>& input, const std::vector<Polyline>& offsets,
                         const std::vector<Point>& picks) {
  DxfContent content;
  content.layers = {{kInputLayer, kGrey}, {kOffsetLayer, kBlue}, {kPickLayer, kRed}};
  for (const Polyline& p : input) {
    content.polylines.push_back(p);
    content.polylines.back().layer = kInputLayer;
  }
  for (const Polyline& p : offsets) {
    content.polylines.push_back(p);
    content.polylines.back().layer = kOffsetLayer;
  }
  content.points = picks;
  content.pointLayer = kPickLayer;
  return content;
}

void writeDxf(const std::string& path, const DxfContent& content) {
  // dxflib prints each number in fixed-point notation into a buffer of a few hundred
  // characters, which numbers beyond about 1e238 overflow: refuse them before writing.
  std::vector<const Polyline*> all;
  for (const Polyline& p : content.polylines) {
    all.push_back(&p);
    for (const Vertex& v : p.vertices) {
      if (!isVertexWithin(v, kLargestWritable))
        throw std::runtime_error("cannot write '" + path + "': a vertex is out of range");
    }
  }
  for (const Point& p : content.points) {
    if (!isVertexWithin({p.x, p.y, 0.0}, kLargestWritable))
      throw std::runtime_error("cannot write '" + path + "': a point is out of range");
  }
  Extent extent;
  if (extentOf(all, &extent) &&
      !(isVertexWithin({extent.low.x, extent.low.y, 0.0}, kLargestWritable) &&
        isVertexWithin({extent.high.x, extent.high.y, 0.0}, kLargestWritable))) {
    throw std::runtime_error("cannot write '" + path + "': the drawing's extent is out of range");
  }

  DL_Dxf dxf;
  std::unique_ptr<DL_WriterA> dw(dxf.out(path.c_str(), DL_Codes::AC1015));
  if (!dw || dw->openFailed())
    throw std::runtime_error("cannot write '" + path + "'");

  dxf.writeHeader(*dw);
  writeExtentVariables(*dw, content.polylines);
  dw->sectionEnd();

  // The tables every reader looks up by name: viewport, line types, layers, text style,
  // view, user coordinate systems, application ids, dimension style and block records.
  dw->sectionTables();
  dxf.writeVPort(*dw);
  dw->tableLinetypes(3);
  dxf.writeLinetype(*dw, DL_LinetypeData("BYBLOCK", "", 0, 0, 0.0));
  dxf.writeLinetype(*dw, DL_LinetypeData("BYLAYER", "", 0, 0, 0.0));
  dxf.writeLinetype(*dw, DL_LinetypeData("CONTINUOUS", "Solid line", 0, 0, 0.0));
  dw->tableEnd();
  std::vector<DxfLayer> layers{{"0", kWhite}};
  layers.insert(layers.end(), content.layers.begin(), content.layers.end());
  dw->tableLayers(static_cast<int>(layers.size()));
  for (const DxfLayer& layer : layers) {
    dxf.writeLayer(*dw, DL_LayerData(layer.name, 0),
                   DL_Attributes("", layer.colour, kDefaultLineWeight, "CONTINUOUS", 1.0));
  }
  dw->tableEnd();
  dw->tableStyle(1);
  dxf.writeStyle(*dw, DL_StyleData("Standard", 0, 0.0, 1.0, 0.0, 0, 2.5, "txt", ""));
  dw->tableEnd();
  dxf.writeView(*dw);
  dxf.writeUcs(*dw);
  dw->tableAppid(1);
  dxf.writeAppid(*dw, "ACAD");
  dw->tableEnd();
  dxf.writeDimStyle(*dw, 2.5, 0.625, 0.625, 0.625, 2.5);
  dxf.writeBlockRecord(*dw);
  dw->tableEnd();
  dw->sectionEnd();

  dw->sectionBlocks();
  dxf.writeBlock(*dw, DL_BlockData("*Model_Space", 0, 0.0, 0.0, 0.0));
  dxf.writeEndBlock(*dw, "*Model_Space");
  dxf.writeBlock(*dw, DL_BlockData("*Paper_Space", 0, 0.0, 0.0, 0.0));
  dxf.writeEndBlock(*dw, "*Paper_Space");
  dxf.writeBlock(*dw, DL_BlockData("*Paper_Space0", 0, 0.0, 0.0, 0.0));
  dxf.writeEndBlock(*dw, "*Paper_Space0");
  dw->sectionEnd();

  dw->sectionEntities();
  for (const Polyline& p : content.polylines)
    writePolylineEntity(dxf, *dw, p);
  for (const Point& p : content.points) {
    dxf.writePoint(*dw, DL_PointData(p.x, p.y, 0.0), onLayer(content.pointLayer));
  }
  dw->sectionEnd();

  dxf.writeObjects(*dw);
  dxf.writeObjectsEnd(*dw);
  dw->dxfEOF();
  dw->close();
}

}  // namespace tarnsysm::tool
