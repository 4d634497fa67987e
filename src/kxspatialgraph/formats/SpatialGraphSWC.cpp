#include "kxspatialgraph/formats/SpatialGraphSWC.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <string>

#include "korva/base/DecimalParser.h"
#include "korva/base/HashTable.h"
#include "korva/base/HugePages.h"
#include "korva/core/KxFileContents.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxParamBundle.h"
#include "korva/core/KxSafeFile.h"
#include "korva/core/KxWorkArea.h"
#include "kxspatialgraph/formats/MorphologyTextWriter.h"
#include "kxspatialgraph/formats/SpatialGraphKorvaMesh.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/KxSpatialGraphInterface.h"
#include "kxspatialgraph/model/PointAttribute.h"

namespace {

// One SWC id: what its line said, and how many lines name it as parent.
struct SWCRecord {
    int id = 0;
    int type = 0;
    Vec3f position;
    float radius = 0.0f;
    int parent = -1;
    int parentRecord = -1;  // index of the parent id's record; -1 for a root
    int childCount = 0;
    int vertex = -1;
    bool defined = false;  // false for an id only named as a parent
};

// Record indices by SWC id. Files number their lines mostly 1, 2, 3 ...,
// so the ids from -1 up to about twice the number of lines index a plain
// array: no hashing, and neighbouring ids share cache lines. Any other id
// goes to a hash table.
class SWCIdIndex {
public:
    explicit SWCIdIndex(size_t numLines) {
        HugePages::reserve(dense_, 2 * numLines + 18);
        dense_.assign(dense_.capacity(), -1);
    }

    // The index of id's record; if id is new, next is stored and inserted set.
    int findOrInsert(int id, int next, bool& inserted) {
        const size_t slot = static_cast<size_t>(static_cast<int64_t>(id) + 1);
        if (slot < dense_.size()) {
            int& index = dense_[slot];
            inserted = index < 0;
            if (inserted) {
                index = next;
            }
            return index;
        }
        return sparse_.findOrInsert(id, next, inserted);
    }

private:
    std::vector<int> dense_;  // id + 1 -> record index, -1 where none
    HashTable<int, int> sparse_;
};

// Deliberate: the counter lives for the whole process, so label colours
// differ from file to file within one session.
int sLabelColorCounter = 0;

SbColor nextLabelColor() {
    float hue = static_cast<float>(sLabelColorCounter++) / 6.37f;
    return Color::fromHSV(hue - std::floor(hue), 0.8f, 0.8f);
}

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f';
}

const char* skipBlanks(const char* p, const char* end) {
    while (p < end && isBlank(*p)) {
        ++p;
    }
    return p;
}

// An explicit '+' is allowed before a number, as C's conversions allow it.
const char* skipPlus(const char* p, const char* end) {
    return end - p > 1 && *p == '+' && p[1] != '-' && p[1] != '+' ? p + 1 : p;
}

bool parseNumber(const char* p, const char* end, int& value) {
    p = skipPlus(p, end);
    std::from_chars_result r = std::from_chars(p, end, value);
    return r.ec == std::errc() && r.ptr == end;
}

// A number too small for a float reads as the float nearest to it (0 or a
// subnormal), as C's strtof has it; one too large is refused.
bool parseNumber(const char* p, const char* end, float& value) {
    p = skipPlus(p, end);
    std::from_chars_result r = DecimalParser::parse(p, end, value);
    if (r.ec == std::errc::result_out_of_range) {
        long double wide = 0;
        r = std::from_chars(p, end, wide);
        value = static_cast<float>(wide);
    }
    return r.ec == std::errc() && r.ptr == end && std::isfinite(value);
}

// Parses the lines into records keyed by id, then walks the runs.
class SWCReader {
public:
    SWCReader(const char* bytes, size_t size, const char* name)
        : begin_(bytes),
          end_(bytes + size),
          name_(name),
          numLines_(static_cast<size_t>(std::count(begin_, end_, '\n'))),
          ids_(numLines_ + 1) {}

    bool parse();
    KxSpatialGraph* build();

private:
    bool parseLine(const char* p, const char* end, int line);
    void addRecord(int id, int type, const Vec3f& position, float radius, int parent, int line);
    int recordOf(int id);
    void warnAboutGaps() const;
    int vertexOf(KxSpatialGraph* graph, SWCRecord& r);
    void appendPoint(const SWCRecord& r);
    void walkRun(KxSpatialGraph* graph, int start);
    void addAttributes(KxSpatialGraph* graph);

    const char* begin_;
    const char* end_;
    const char* name_;
    size_t numLines_;
    SWCIdIndex ids_;
    std::vector<SWCRecord> records_;  // in the order the lines first name their ids
    HashTable<int, int> types_;       // the types that occur, in order of appearance
    int lastType_ = 0;
    int lastId_ = 0;
    int lastIndex_ = -1;
    int numRepeated_ = 0;
    int firstRepeatedLine_ = 0;
    // The graph being built: the run being walked and every point's radius and type.
    DArray<Vec3f> run_;
    std::vector<float> radii_;
    std::vector<int> pointTypes_;
};

bool SWCReader::parse() {
    HugePages::reserve(records_, numLines_ + 1);
    theWorkArea->startWorking(String::format("Reading %s", name_), 0);
    int line = 0;
    for (const char* p = begin_; p < end_;) {
        ++line;
        const char* newline = static_cast<const char*>(std::memchr(p, '\n', static_cast<size_t>(end_ - p)));
        if (!newline) {
            // Deliberate: a last line without a newline is not read; saying so
            // keeps it from vanishing unnoticed.
            const char* first = skipBlanks(p, end_);
            if (first < end_ && *first != '#') {
                theMsg->printf("Warning: %s: line %d has no newline at its end and is ignored.", name_, line);
            }
            break;
        }
        if (!parseLine(p, newline, line)) {
            theWorkArea->stopWorking();
            return false;
        }
        p = newline + 1;
        if ((line & 0xffff) == 0) {
            theWorkArea->setProgressValue(static_cast<float>(p - begin_) / static_cast<float>(end_ - begin_));
        }
    }
    theWorkArea->stopWorking();
    if (numRepeated_ > 0) {
        theMsg->printf(
            "Warning: %s: %d line(s) repeat an id read before (the first in line %d); each replaces the "
            "earlier "
            "point, whose parent keeps counting it as a child.",
            name_, numRepeated_, firstRepeatedLine_);
    }
    warnAboutGaps();
    return true;
}

bool SWCReader::parseLine(const char* p, const char* end, int line) {
    static const char* const kColumns[] = {"id", "type", "x", "y", "z", "radius", "parent"};
    const char* tokens[7];
    const char* tokenEnds[7];
    int n = 0;
    p = skipBlanks(p, end);
    if (p == end || *p == '#') {
        return true;
    }
    // A '#' after the columns starts a comment.
    while (n < 7 && p < end && *p != '#') {
        tokens[n] = p;
        while (p < end && !isBlank(*p) && *p != '#') {
            ++p;
        }
        tokenEnds[n++] = p;
        p = skipBlanks(p, end);
    }
    if (n < 7) {
        theMsg->printf(
            "Error: %s, line %d: expected 7 numbers (id, type, x, y, z, radius, parent) but found %d.", name_,
            line, n);
        return false;
    }
    int ints[3];
    float floats[4];
    for (int i = 0; i < 7; ++i) {
        bool isInt = i < 2 || i == 6;
        bool ok = isInt ? parseNumber(tokens[i], tokenEnds[i], ints[i < 2 ? i : 2])
                        : parseNumber(tokens[i], tokenEnds[i], floats[i - 2]);
        if (!ok) {
            std::string token(tokens[i],
                              static_cast<size_t>(std::min<ptrdiff_t>(tokenEnds[i] - tokens[i], 40)));
            theMsg->printf("Error: %s, line %d: the %s column \"%s\" is not %s.", name_, line, kColumns[i],
                           token.c_str(), isInt ? "an integer" : "a finite number");
            return false;
        }
    }
    addRecord(ints[0], ints[1], Vec3f(floats[0], floats[1], floats[2]), floats[3], ints[2], line);
    return true;
}

int SWCReader::recordOf(int id) {
    bool inserted = false;
    int index = ids_.findOrInsert(id, static_cast<int>(records_.size()), inserted);
    if (inserted) {
        records_.emplace_back().id = id;
    }
    return index;
}

void SWCReader::addRecord(int id, int type, const Vec3f& position, float radius, int parent, int line) {
    int index = recordOf(id);
    SWCRecord& r = records_[static_cast<size_t>(index)];
    if (r.defined && numRepeated_++ == 0) {
        firstRepeatedLine_ = line;
    }
    r.type = type;
    r.position = position;
    r.radius = radius;
    r.parent = parent;
    r.defined = true;
    if (type != lastType_ || types_.isEmpty()) {
        types_.insert(type, 0);
        lastType_ = type;
    }
    // The -1 record is counted like any other, so that the table holds the
    // same records the reading rules name; being a root's parent, it is never walked.
    // Most lines name the line before as parent.
    int parentIndex = parent == lastId_ && lastIndex_ >= 0 ? lastIndex_ : recordOf(parent);
    records_[static_cast<size_t>(parentIndex)].childCount++;
    records_[static_cast<size_t>(index)].parentRecord = parent == -1 ? -1 : parentIndex;
    lastId_ = id;
    lastIndex_ = index;
}

void SWCReader::warnAboutGaps() const {
    int numMissing = 0;
    int firstMissing = 0;
    for (const SWCRecord& r : records_) {
        if (r.id != -1 && !r.defined && numMissing++ == 0) {
            firstMissing = r.id;
        }
    }
    if (numMissing > 0) {
        theMsg->printf(
            "Warning: %s: %d parent id(s) have no line of their own (the first: %d); each becomes a point at "
            "the "
            "origin with radius 0 and type 0.",
            name_, numMissing, firstMissing);
    }
}

int SWCReader::vertexOf(KxSpatialGraph* graph, SWCRecord& r) {
    if (r.vertex < 0) {
        r.vertex = graph->addVertex(r.position);
    }
    return r.vertex;
}

void SWCReader::appendPoint(const SWCRecord& r) {
    run_.append(r.position);
    radii_.push_back(r.radius);
    pointTypes_.push_back(r.type);
}

// The run from record start (an end or branch point with a parent) up to the
// next branch point or root. Deliberate: a run that ends at a root with one
// child ends with the root's point twice.
void SWCReader::walkRun(KxSpatialGraph* graph, int start) {
    run_.clear();
    appendPoint(records_[static_cast<size_t>(start)]);
    int current = records_[static_cast<size_t>(start)].parentRecord;
    while (records_[static_cast<size_t>(current)].childCount == 1) {
        const SWCRecord& r = records_[static_cast<size_t>(current)];
        appendPoint(r);
        if (r.parent == -1) {
            break;
        }
        current = r.parentRecord;
    }
    appendPoint(records_[static_cast<size_t>(current)]);
    int source = vertexOf(graph, records_[static_cast<size_t>(start)]);
    int target = vertexOf(graph, records_[static_cast<size_t>(current)]);
    graph->addEdge(source, target, run_);
}

// The points keep their SWC types as values, so each type's label "Label%d"
// takes the type as its id: the value of a point then names its own type's
// label. Labels are added by ascending type, which gives the ids 1, 2, 3 ...
// that addLabel would give when the types are 1 to n. Type 0 (undefined)
// falls to the group's root; negative types and types past kMaxTypeLabel
// (ids that large would make every table indexed by label id huge) get no
// label.
void SWCReader::addAttributes(KxSpatialGraph* graph) {
    constexpr int kMaxTypeLabel = 255;
    graph->addAttribute("thickness", KxSpatialGraph::POINT, PrimType::FLOAT32, 1,
                        radii_.empty() ? nullptr : radii_.data());
    graph->addNewLabelGroup("Topology", false, false, true);
    GraphAttribute* topology = graph->findEdgePointAttribute("Topology");
    std::copy(pointTypes_.begin(), pointTypes_.end(), static_cast<int*>(topology->dataPtr()));
    KxParamBundle* root = graph->parameters().getBundle("Topology");
    root->setColor(Color(0.8f, 0.8f, 0.8f));
    std::vector<int> types;
    types_.forEach([&](int type, int) { types.push_back(type); });
    std::sort(types.begin(), types.end());
    for (int type : types) {
        if (type >= 1 && type <= kMaxTypeLabel) {
            KxParamBundle* label = root->addBundle(String::format("Label%d", type).getString());
            label->setInt("Id", type);
            label->setColor(nextLabelColor());
        }
    }
}

KxSpatialGraph* SWCReader::build() {
    int numRuns = 0;
    for (const SWCRecord& r : records_) {
        numRuns += r.childCount != 1 && r.parent != -1 ? 1 : 0;
    }
    KxSpatialGraph* graph = new KxSpatialGraph;
    const int numRecords = static_cast<int>(records_.size());
    graph->setSizeHint(numRuns + 1, numRuns, numRecords + 2 * numRuns);
    const size_t numPoints = records_.size() + 2 * static_cast<size_t>(numRuns);
    HugePages::reserve(radii_, numPoints);
    HugePages::reserve(pointTypes_, numPoints);
    for (int i = 0; i < numRecords; ++i) {
        SWCRecord& r = records_[static_cast<size_t>(i)];
        if (r.childCount == 1) {
            continue;
        }
        if (r.parent == -1) {
            if (r.childCount == 0) {
                vertexOf(graph, r);
                theMsg->printf("Warning point (%f,%f,%f) is isolated ...\n", r.position.x, r.position.y,
                               r.position.z);
            }
            continue;
        }
        walkRun(graph, i);
    }
    addAttributes(graph);
    graph->isConsistent();
    return graph;
}

}  // namespace

KxSpatialGraph* readSWC(const char* bytes, size_t size, const char* name) {
    SWCReader reader(bytes, size, name);
    return reader.parse() ? reader.build() : nullptr;
}

int loadSWCToKorva(const char* filename) {
    KxFileContents contents;
    std::string error;
    if (!contents.load(filename, error)) {
        theMsg->printf("Error while opening \"%s\" ...\n", filename);
        theMsg->printf("Error: cannot read %s: %s.", filename, error.c_str());
        return 0;
    }
    return registerSpatialGraph(readSWC(contents.data(), contents.size(), filename), filename);
}

// ---------------------------------------------------------------------------
// Writing

namespace {

// Where a written edge leaves the walk: the vertex at its far end, the point
// reached there, the id that the lines hanging there take as parent, and the
// next of that vertex's edges to look at.
struct SWCWalkFrame {
    int vertex;
    Vec3f reached;
    int parent;
    int nextIncident;
};

// Writes the lines of single edges.
class SWCEdgeWriter {
public:
    SWCEdgeWriter(const KxSpatialGraphInterface* graph, const GraphAttribute* topology,
                  const PointAttribute* thickness, std::vector<bool>& visited, MorphologyTextWriter& file)
        : graph_(graph),
          pointTopology_(dynamic_cast<const PointAttribute*>(topology)),
          edgeTopology_(pointTopology_ ? nullptr : dynamic_cast<const EdgeVertexAttribute*>(topology)),
          thickness_(thickness),
          visited_(visited),
          file_(file) {}

    // Writes edge's own lines (unless visited), entering it at fromVertex,
    // and answers where the walk goes on.
    SWCWalkFrame write(int edge, int fromVertex, const Vec3f& from, int parent, int& next);

private:
    int typeAt(int edge, int p) const {
        return pointTopology_  ? pointTopology_->getIntDataAtPoint(edge, p)
               : edgeTopology_ ? edgeTopology_->getIntDataAtIdx(edge)
                               : 1;
    }

    const KxSpatialGraphInterface* graph_;
    const PointAttribute* pointTopology_;
    const EdgeVertexAttribute* edgeTopology_;
    const PointAttribute* thickness_;
    std::vector<bool>& visited_;
    MorphologyTextWriter& file_;
};

// Deliberate: the end at which the walk enters an edge is the end at the
// vertex it comes from, rather than the end whose position equals the point
// reached. Both agree on every edge whose ends lie apart; on an edge whose
// two ends share one position (a leaf placed on the soma's centre) the
// position test would write the wrong end's radius and type.
SWCWalkFrame SWCEdgeWriter::write(int edge, int fromVertex, const Vec3f& from, int parent, int& next) {
    int n = 0;
    const Vec3f* points = graph_->doGetEdgePoints(edge, n);
    if (visited_[static_cast<size_t>(edge)]) {
        return SWCWalkFrame{fromVertex, from, parent, 0};
    }
    const bool forward = graph_->doGetEdgeSource(edge) == fromVertex;
    int lastId = parent;
    for (int k = parent == -1 ? 0 : 1; k < n; ++k) {
        const int p = forward ? k : n - 1 - k;
        const Vec3f& point = points[p];
        file_.character(' ').integer(next).character(' ').integer(typeAt(edge, p)).character(' ');
        file_.fixed(point.x).character(' ').fixed(point.y).character(' ').fixed(point.z).character(' ');
        file_.fixed(thickness_ ? thickness_->getFloatDataAtPoint(edge, p) : 1.0);
        file_.character(' ').integer(lastId).character('\n');
        lastId = next++;
    }
    visited_[static_cast<size_t>(edge)] = true;
    const int far = forward ? graph_->doGetEdgeTarget(edge) : graph_->doGetEdgeSource(edge);
    return SWCWalkFrame{far, n > 0 ? points[forward ? n - 1 : 0] : from, lastId, 0};
}

const GraphAttribute* findIntAttribute(const GraphAttribute* a) {
    return a && a->getPrimType() == PrimType::INT32 ? a : nullptr;
}

}  // namespace

int writeEdge(int edge, const Vec3f& from, int parent, int next, std::vector<bool>& visited,
              const KxSpatialGraphInterface* graph, const GraphAttribute* topology,
              const PointAttribute* thickness, MorphologyTextWriter& file) {
    SWCEdgeWriter writer(graph, topology, thickness, visited, file);
    // Depth first like a recursion over the far vertices' edges, in incidence order.
    std::vector<SWCWalkFrame> stack;
    const int source = graph->doGetEdgeSource(edge);
    const int fromVertex = graph->doGetVertexCoords(source) == from ? source : graph->doGetEdgeTarget(edge);
    stack.push_back(writer.write(edge, fromVertex, from, parent, next));
    while (!stack.empty()) {
        SWCWalkFrame& frame = stack.back();
        const SmallArray<int, 2>& incident = graph->doGetIncidentEdges(frame.vertex);
        while (frame.nextIncident < incident.size() &&
               visited[static_cast<size_t>(incident[frame.nextIncident])]) {
            ++frame.nextIncident;
        }
        if (frame.nextIncident == incident.size()) {
            stack.pop_back();
            continue;
        }
        int e = incident[frame.nextIncident++];
        SWCWalkFrame child = writer.write(e, frame.vertex, frame.reached, frame.parent, next);
        stack.push_back(child);
    }
    return next;
}

bool writeSWC(const KxSpatialGraphInterface* graph, std::ostream& out) {
    const EdgeVertexAttribute* ranks = graph->doFindEdgeAttribute("Ranks");
    if (ranks && ranks->getPrimType() != PrimType::INT32) {
        ranks = nullptr;
    }
    const PointAttribute* thickness = graph->doFindEdgePointAttribute("thickness");
    if (thickness && thickness->getPrimType() != PrimType::FLOAT32) {
        thickness = nullptr;
    }
    const GraphAttribute* topology = findIntAttribute(graph->doFindEdgeAttribute("Topology"));
    if (!topology) {
        topology = findIntAttribute(graph->doFindEdgePointAttribute("Topology"));
    }
    const int numEdges = graph->doGetNumEdges();
    std::vector<int> ranked, unranked;
    for (int e = 0; e < numEdges; ++e) {
        int rank = ranks ? ranks->getIntDataAtIdx(e) : 0;
        if (rank == 1) {
            ranked.push_back(e);
        } else if (rank == 0) {
            unranked.push_back(e);
        }
    }
    if (!unranked.empty()) {
        theMsg->printf("Warning: Not all segments have rank information specified!\n");
    }
    MorphologyTextWriter file(out);
    std::vector<bool> visited(static_cast<size_t>(numEdges), false);
    int next = 1;
    for (const std::vector<int>* list : {&ranked, &unranked}) {
        for (int e : *list) {
            Vec3f first = graph->doGetNumEdgePoints(e) > 0
                              ? graph->doGetEdgePoint(e, 0)
                              : graph->doGetVertexCoords(graph->doGetEdgeSource(e));
            int start = next;
            next = writeEdge(e, first, -1, next, visited, graph, topology, thickness, file);
            next = writeEdge(e, first, start, next, visited, graph, topology, thickness, file);
        }
    }
    for (int v = 0; v < graph->doGetNumVertices(); ++v) {
        if (graph->doGetIncidentEdges(v).size() > 0) {
            continue;
        }
        theMsg->printf("Warning: Isolated node %i ...\n", v);
        Vec3f c = graph->doGetVertexCoords(v);
        file.character(' ').integer(next++).text(" 0 ");
        file.fixed(c.x).character(' ').fixed(c.y).character(' ').fixed(c.z).text(" 0.0 -1\n");
    }
    file.flush();
    return out.good();
}

int writeSWC(const KxSpatialGraphInterface* graph, const char* filename) {
    if (!graph) {
        theMsg->printf("Error: no graph to write to %s.", filename);
        return 0;
    }
    KxSafeFile file(filename, "SWC file");
    if (!file.open()) {
        return 0;
    }
    writeSWC(graph, file.stream());
    return file.commit() ? 1 : 0;
}

int kxspatialgraphReadSWC(const char* filename) {
    return loadSWCToKorva(filename);
}

int kxspatialgraphWriteSWC(KxData* data, const char* filename) {
    const KxSpatialGraphInterface* graph = spatialGraphToWrite(data, "SWC");
    return graph ? writeSWC(graph, filename) : 0;
}
