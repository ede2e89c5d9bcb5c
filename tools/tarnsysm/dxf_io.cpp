// Tarnsysm tool: DXF drawings in and out, through dxflib.
// The writer emits the full table set that AutoCAD-compatible readers expect of an R2000 file.
#include "dxf_io.h"

#include <dl_creationadapter.h>
#include <dl_dxf.h>
#include <dl_writer_ascii.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <sstream>

#include "dxf_scan.h"

namespace tarnsysm::tool {

namespace {

// POLYLINE flags that mark geometry other than a flat polyline: 3D polyline, polygon mesh,
// polyface mesh.
constexpr int k3dPolylineFlag = 8;
constexpr int kMeshFlags = 16 | 64;
constexpr int kClosedFlag = 1;
// Largest x or y component of a unit extrusion direction that still counts as the z axis.
constexpr double kPlaneTolerance = 1e-12;

std::string hexHandle(unsigned long handle) {
  char hex[24];
  std::snprintf(hex, sizeof hex, "%lX", handle);
  return hex;
}

class PolylineCollector : public DL_CreationAdapter {
 public:
  std::vector<Polyline> polylines;
  std::vector<std::string> leftOut;

  void addBlock(const DL_BlockData&) override { ++blockDepth_; }
  void endBlock() override {
    if (blockDepth_ > 0)
      --blockDepth_;
  }

  void addPolyline(const DL_PolylineData& data) override {
    collecting_ = false;
    if (blockDepth_ > 0)
      return;
    Polyline polyline;
    polyline.closed = (data.flags & kClosedFlag) != 0;
    const DL_Attributes attributes = getAttributes();
    polyline.layer = attributes.getLayer();
    if (attributes.getHandle() >= 0)
      polyline.handle = hexHandle(static_cast<unsigned long>(attributes.getHandle()));
    // A polyline's own plane is given by its extrusion direction; only the drawing plane
    // itself, seen from above (0, 0, 1) or from below (0, 0, -1), can be offset here.
    const DL_Extrusion* extrusion = getExtrusion();
    if (extrusion != nullptr) {
      const double* normal = extrusion->getDirection();
      polyline.extrusion = {normal[0], normal[1], normal[2]};
      polyline.elevation = extrusion->getElevation();
    }
    const auto& normal = polyline.extrusion;
    const bool tilted =
        std::fabs(normal[0]) > kPlaneTolerance || std::fabs(normal[1]) > kPlaneTolerance;
    const char* why = (data.flags & k3dPolylineFlag) != 0 ? "a 3D polyline"
                      : (data.flags & kMeshFlags) != 0    ? "a mesh"
                      : tilted                            ? "in a tilted plane"
                                                          : nullptr;
    if (why != nullptr) {
      const std::string place = placeOf(polyline);
      leftOut.push_back("polyline" + (place.empty() ? "" : " (" + place + ")") + ": " + why);
      return;
    }
    // A polyline whose plane faces down (extrusion 0,0,-1) has its own x axis pointing
    // to the left of the drawing's: mirror x, and with it the direction of every arc.
    mirrored_ = normal[2] < 0.0;
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

// dxflib's DL_WriterA writes to a file of its own and cannot tell whether a write failed. This
// one keeps the text in memory instead (the output is written, and checked, by the caller) and
// prints numbers so that they read back bit-identical.
class TextWriter : public DL_WriterA {
 public:
  // The base opens no file: an empty name fails to open, and nothing is written through it.
  TextWriter() : DL_WriterA("", DL_Codes::AC1015) {}
  mutable std::string text;

  void dxfReal(int gc, double value) const override {
    char buffer[32];
    const auto end = std::to_chars(buffer, buffer + sizeof buffer, value == 0.0 ? 0.0 : value);
    put(gc, std::string_view(buffer, static_cast<std::size_t>(end.ptr - buffer)));
  }
  void dxfInt(int gc, int value) const override { put(gc, std::to_string(value)); }
  void dxfHex(int gc, int value) const override {
    put(gc, hexHandle(static_cast<unsigned int>(value)));
  }
  void dxfString(int gc, const char* value) const override { put(gc, value ? value : ""); }
  void dxfString(int gc, const std::string& value) const override { put(gc, value); }

 private:
  // A group code right-aligned in three columns, then its value, each on a line.
  void put(int gc, std::string_view value) const {
    const std::string code = std::to_string(gc);
    text.append(code.size() < 3 ? 3 - code.size() : 0, ' ');
    text += code;
    text += '\n';
    text += value;
    text += '\n';
  }
};

// Entity colours: 256 means "as the layer says".
constexpr int kWhite = 7;
constexpr int kDefaultLineWeight = -3;
// Largest magnitude of a number written: every coordinate and extent stays a plain number
// that any DXF reader can hold.
constexpr double kLargestWritable = 1e100;
// The block record of the model space, which owns every entity written: dxflib writes the
// block records with fixed handles.
constexpr int kModelSpaceRecord = 0x1F;
const int kPaperSpaceRecords[] = {0x1B, 0x23};

// An entity's common part: type, handle, owner, layer.
void entityStart(DL_WriterA& dw, const char* type, const std::string& layer) {
  dw.dxfString(0, type);
  dw.handle();
  dw.dxfHex(330, kModelSpaceRecord);
  dw.dxfString(100, "AcDbEntity");
  dw.dxfString(8, layer.empty() ? "0" : layer);
}

void writePolylineEntity(DL_WriterA& dw, const Polyline& polyline) {
  entityStart(dw, "LWPOLYLINE", polyline.layer);
  dw.dxfString(100, "AcDbPolyline");
  dw.dxfInt(90, static_cast<int>(polyline.vertices.size()));
  dw.dxfInt(70, polyline.closed ? kClosedFlag : 0);
  if (polyline.elevation != 0.0)
    dw.dxfReal(38, polyline.elevation);
  // Back into the polyline's own coordinates: one seen from below is mirrored in x.
  const double sign = polyline.extrusion[2] < 0.0 ? -1.0 : 1.0;
  for (const Vertex& v : polyline.vertices) {
    dw.dxfReal(10, sign * v.x);
    dw.dxfReal(20, v.y);
    if (v.bulge != 0.0)
      dw.dxfReal(42, sign * v.bulge);
  }
  if (polyline.extrusion != std::array<double, 3>{0.0, 0.0, 1.0}) {
    dw.dxfReal(210, polyline.extrusion[0]);
    dw.dxfReal(220, polyline.extrusion[1]);
    dw.dxfReal(230, polyline.extrusion[2]);
  }
}

void writePointEntity(DL_WriterA& dw, const Point& p, const std::string& layer) {
  entityStart(dw, "POINT", layer);
  dw.dxfString(100, "AcDbPoint");
  dw.dxfReal(10, p.x);
  dw.dxfReal(20, p.y);
  dw.dxfReal(30, 0.0);
}

// A dictionary owned by `owner`, with its entries (name, handle).
void writeDictionary(DL_WriterA& dw, int handle, int owner,
                     const std::vector<std::pair<const char*, int>>& entries) {
  dw.dxfString(0, "DICTIONARY");
  dw.dxfHex(5, handle);
  dw.dxfHex(330, owner);
  dw.dxfString(100, "AcDbDictionary");
  dw.dxfInt(281, 1);
  for (const auto& [name, entry] : entries) {
    dw.dxfString(3, name);
    dw.dxfHex(350, entry);
  }
}

// A layout (a page of plot settings) for one block record, owned by the layout dictionary.
void writeLayout(DL_WriterA& dw, int handle, int owner, const char* name, int order,
                 int blockRecord) {
  dw.dxfString(0, "LAYOUT");
  dw.dxfHex(5, handle);
  dw.dxfHex(330, owner);
  dw.dxfString(100, "AcDbPlotSettings");
  dw.dxfString(1, "");
  dw.dxfString(4, "");
  dw.dxfString(6, "");
  dw.dxfInt(70, order == 0 ? 1712 : 688);
  dw.dxfString(100, "AcDbLayout");
  dw.dxfString(1, name);
  dw.dxfInt(70, 1);
  dw.dxfInt(71, order);
  dw.dxfHex(330, blockRecord);
}

// The objects every drawing has: the root dictionary, the group dictionary and the layouts of
// the model space and the two paper spaces. Each object names its owner (code 330), and the
// handles come after every entity's, so none is used twice however many entities there are.
void writeObjects(DL_WriterA& dw) {
  const int root = static_cast<int>(dw.getNextHandle());
  const int groups = root + 1;
  const int layouts = root + 2;
  const int model = root + 3;
  const int paper[] = {root + 4, root + 5};
  dw.sectionObjects();
  writeDictionary(dw, root, 0, {{"ACAD_GROUP", groups}, {"ACAD_LAYOUT", layouts}});
  writeDictionary(dw, groups, root, {});
  writeDictionary(dw, layouts, root,
                  {{"Layout1", paper[0]}, {"Layout2", paper[1]}, {"Model", model}});
  writeLayout(dw, model, layouts, "Model", 0, kModelSpaceRecord);
  writeLayout(dw, paper[0], layouts, "Layout1", 1, kPaperSpaceRecords[0]);
  writeLayout(dw, paper[1], layouts, "Layout2", 2, kPaperSpaceRecords[1]);
  dw.dxfString(0, "ENDSEC");
}

// The header: version, the next free handle and the drawing's extent.
void writeHeader(DL_WriterA& dw, unsigned long handleSeed, const std::vector<Polyline>& polylines) {
  dw.dxfString(0, "SECTION");
  dw.dxfString(2, "HEADER");
  dw.dxfString(9, "$ACADVER");
  dw.dxfString(1, "AC1015");
  dw.dxfString(9, "$HANDSEED");
  dw.dxfString(5, hexHandle(handleSeed));
  std::vector<const Polyline*> all;
  for (const Polyline& p : polylines)
    all.push_back(&p);
  Extent extent;
  if (extentOf(all, &extent)) {
    dw.dxfString(9, "$EXTMIN");
    dw.dxfReal(10, extent.low.x);
    dw.dxfReal(20, extent.low.y);
    dw.dxfReal(30, 0.0);
    dw.dxfString(9, "$EXTMAX");
    dw.dxfReal(10, extent.high.x);
    dw.dxfReal(20, extent.high.y);
    dw.dxfReal(30, 0.0);
  }
  dw.dxfString(0, "ENDSEC");
}

}  // namespace

Drawing readDxf(const std::string& text, const std::string& name) {
  const std::size_t length = checkDxfText(text, name);
  PolylineCollector collector;
  DL_Dxf dxf;
  std::istringstream in(text.substr(0, length));
  if (!dxf.in(in, &collector))
    throw UserError("cannot read DXF file '" + name + "'");
  Drawing drawing;
  drawing.polylines = std::move(collector.polylines);
  drawing.leftOut = std::move(collector.leftOut);
  return drawing;
}

DxfContent offsetDrawing(const std::vector<Polyline>& input, const std::vector<Polyline>& offsets,
                         const std::vector<Point>& picks) {
  DxfContent content;
  content.layers = {{kInputLayer, 8}, {kOffsetLayer, 5}, {kPickLayer, 1}};
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

std::string dxfText(const DxfContent& content) {
  std::vector<const Polyline*> all;
  for (const Polyline& p : content.polylines) {
    all.push_back(&p);
    for (const Vertex& v : p.vertices) {
      if (!isVertexWithin(v, kLargestWritable) ||
          !isVertexWithin({p.elevation, p.extrusion[0], p.extrusion[1]}, kLargestWritable))
        throw std::runtime_error("a vertex is out of range");
    }
  }
  for (const Point& p : content.points) {
    if (!isVertexWithin({p.x, p.y, 0.0}, kLargestWritable))
      throw std::runtime_error("a point is out of range");
  }
  Extent extent;
  if (extentOf(all, &extent) &&
      !(isVertexWithin({extent.low.x, extent.low.y, 0.0}, kLargestWritable) &&
        isVertexWithin({extent.high.x, extent.high.y, 0.0}, kLargestWritable))) {
    throw std::runtime_error("the drawing's extent is out of range");
  }

  // Everything after the header first, so that the header can give the next free handle.
  DL_Dxf dxf;
  TextWriter dw;
  // The tables every reader looks up by name: viewport, line types, layers, text style,
  // view, user coordinate systems, application ids, dimension style and block records.
  dw.sectionTables();
  dxf.writeVPort(dw);
  dw.tableLinetypes(3);
  dxf.writeLinetype(dw, DL_LinetypeData("BYBLOCK", "", 0, 0, 0.0));
  dxf.writeLinetype(dw, DL_LinetypeData("BYLAYER", "", 0, 0, 0.0));
  dxf.writeLinetype(dw, DL_LinetypeData("CONTINUOUS", "Solid line", 0, 0, 0.0));
  dw.tableEnd();
  std::vector<DxfLayer> layers{{"0", kWhite}};
  layers.insert(layers.end(), content.layers.begin(), content.layers.end());
  dw.tableLayers(static_cast<int>(layers.size()));
  for (const DxfLayer& layer : layers) {
    dxf.writeLayer(dw, DL_LayerData(layer.name, 0),
                   DL_Attributes("", layer.colour, kDefaultLineWeight, "CONTINUOUS", 1.0));
  }
  dw.tableEnd();
  dw.tableStyle(1);
  dxf.writeStyle(dw, DL_StyleData("Standard", 0, 0.0, 1.0, 0.0, 0, 2.5, "txt", ""));
  dw.tableEnd();
  dxf.writeView(dw);
  dxf.writeUcs(dw);
  dw.tableAppid(1);
  dxf.writeAppid(dw, "ACAD");
  dw.tableEnd();
  dxf.writeDimStyle(dw, 2.5, 0.625, 0.625, 0.625, 2.5);
  dxf.writeBlockRecord(dw);
  dw.tableEnd();
  dw.sectionEnd();

  dw.sectionBlocks();
  for (const char* name : {"*Model_Space", "*Paper_Space", "*Paper_Space0"}) {
    dxf.writeBlock(dw, DL_BlockData(name, 0, 0.0, 0.0, 0.0));
    dxf.writeEndBlock(dw, name);
  }
  dw.sectionEnd();

  dw.sectionEntities();
  for (const Polyline& p : content.polylines)
    writePolylineEntity(dw, p);
  for (const Point& p : content.points)
    writePointEntity(dw, p, content.pointLayer);
  dw.sectionEnd();
  writeObjects(dw);
  dw.dxfString(0, "EOF");

  TextWriter header;
  writeHeader(header, dw.getNextHandle() + 6, content.polylines);
  return header.text + dw.text;
}

}  // namespace tarnsysm::tool
