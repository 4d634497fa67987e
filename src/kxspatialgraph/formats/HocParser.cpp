#include "kxspatialgraph/formats/HocParser.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxParamBundle.h"
#include "korva/core/KxWorkArea.h"
#include "kxspatialgraph/formats/SpatialGraphHOC.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/HierarchicalLabels.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"

namespace {

const Color kRootColor(0.8f, 0.8f, 0.8f);

// A section reference "name", "name[3]" or "name [ 3. ]": the name and the
// index (0 without one). False when the index does not fit an int.
bool splitReference(const std::string& reference, std::string& name, int& index) {
    size_t bracket = reference.find('[');
    index = 0;
    if (bracket == std::string::npos) {
        name = reference;
        return true;
    }
    name = reference.substr(0, reference.find_first_of(" \t["));
    size_t digits = reference.find_first_of("0123456789", bracket);
    const char* last = reference.data() + reference.size();
    return std::from_chars(reference.data() + digits, last, index).ec == std::errc();
}

std::string fixed(double value) {
    std::string text;
    appendHOCNumber(text, value);
    return text;
}

int64_t sectionKey(int array, int index) {
    return static_cast<int64_t>(array) << 32 | static_cast<uint32_t>(index);
}

// Exact coordinates as a hash key; -0 and 0 are one position.
std::string positionKey(const float* p) {
    float xyz[3] = {p[0] + 0.0f, p[1] + 0.0f, p[2] + 0.0f};
    return std::string(reinterpret_cast<const char*>(xyz), sizeof(xyz));
}

}  // namespace

HocParser::HocParser(const char* text, size_t length, bool debug)
    : scanner_(text, length), debug_(debug), graph_(new KxSpatialGraph) {
    graph_->addAttribute("thickness", KxSpatialGraph::POINT, PrimType::FLOAT32, 1);
    graph_->addNewLabelGroup("Ranks", true, false, false);
}

HocParser::~HocParser() = default;

// What addLabel does for a name new to the group whose labels so far have
// the ids 1 .. id - 1, without addLabel's searches through the whole tree,
// which would make deep trees (one label per rank) quadratic.
void HocParser::addLabelBundle(const char* group, const char* name, int id, const Color& color) {
    KxParamBundle* label = graph_->parameters().getBundle(group)->addBundle(name);
    label->setInt("Id", id);
    label->setColor(color);
}

int HocParser::nextTag() {
    if (pending_ != -2) {
        lastTag_ = pending_;
        pending_ = -2;
    } else {
        lastTag_ = scanner_.next();
    }
    return lastTag_;
}

int HocParser::peekTag() {
    if (pending_ == -2) {
        pending_ = scanner_.next();
    }
    return pending_;
}

int HocParser::expect(int tag) {
    return nextTag() == tag ? tag : -1;
}

bool HocParser::fail(int tag) {
    theMsg->printf("Error reading file at line %d. Tag: %d", scanner_.line(), tag);
    return false;
}

bool HocParser::parse() {
    theWorkArea->startWorking("Reading HOC file");
    bool ok = true;
    for (int tag = nextTag(); ok && tag != HocScanner::END; tag = nextTag()) {
        switch (tag) {
            case HocScanner::CREATE:
                ok = create();
                break;
            case HocScanner::ACCESS:
                current_ = nextTag() == HocScanner::IDENTIFIER ? lookupSection(scanner_.text()) : -1;
                ok = current_ >= 0 || fail(lastTag_);
                break;
            case HocScanner::IDENTIFIER:
                ok = selectByName();
                break;
            case HocScanner::BLOCK_BEGIN:
                if (!blocks_.empty()) {
                    ++blocks_.back().nesting;
                }
                break;
            case HocScanner::BLOCK_END:
                closeBlock();
                break;
            case HocScanner::PT3DCLEAR:
                ok = pt3dclear() >= 0 || fail(lastTag_);
                if (ok && current_ >= 0) {
                    sections_[static_cast<size_t>(current_)].points.clear();
                }
                if (ok && debug_) {
                    theMsg->printf("PT3DCLEAR");
                }
                break;
            case HocScanner::PT3DADD:
                ok = addPoint();
                break;
            case HocScanner::CONNECT:
                ok = connectStatement();
                break;
            case HocScanner::SCAN_ERROR:
                ok = fail(tag);
                break;
            case HocScanner::NEWLINE:
                if ((scanner_.line() & 0xfff) == 0) {
                    theWorkArea->setProgressValue(scanner_.fractionRead());
                }
                break;
            default:
                if (debug_) {
                    theMsg->printf("No useful tag detected: %d", tag);
                }
        }
    }
    theWorkArea->stopWorking();
    if (debug_ && !scanner_.echo().empty()) {
        theMsg->printf("Skipped characters: %s", scanner_.echo().c_str());
    }
    return ok;
}

bool HocParser::create() {
    do {
        if (nextTag() != HocScanner::IDENTIFIER) {
            return fail(lastTag_);
        }
        std::string name;
        int count = 0;
        if (!splitReference(scanner_.text(), name, count)) {
            return fail(lastTag_);
        }
        if (scanner_.text().find('[') == std::string::npos) {
            count = 1;
        }
        if (!graph_->getLabelGroup("topology")) {
            graph_->addNewLabelGroup("topology", true, false, false);
            graph_->getLabelGroup("topology")->setLabelColor(0, kRootColor);
        }
        const Color color = nextHOCLabelColor();
        if (const int* known = arrayByName_.lookup(name)) {
            // Creating a name again keeps the sections it has, adds the
            // missing ones and recolours the name's label.
            SectionArray& a = arrays_[static_cast<size_t>(*known)];
            a.count = std::max(a.count, count);
            graph_->getLabelGroup("topology")->setLabelColor(a.label, color);
        } else {
            const int label = static_cast<int>(arrays_.size()) + 1;
            addLabelBundle("topology", name.c_str(), label, color);
            arrayByName_.insert(name, static_cast<int>(arrays_.size()));
            arrays_.push_back(SectionArray{count, label});
        }
    } while (peekTag() == HocScanner::COMMA && nextTag() == HocScanner::COMMA);
    return true;
}

int HocParser::lookupSection(const std::string& reference) {
    std::string name;
    int index = 0;
    const int* array = splitReference(reference, name, index) ? arrayByName_.lookup(name) : nullptr;
    if (!array || index >= arrays_[static_cast<size_t>(*array)].count) {
        return -1;
    }
    int64_t key = sectionKey(*array, index);
    if (const int* known = sectionByKey_.lookup(key)) {
        return *known;
    }
    int s = static_cast<int>(sections_.size());
    sectionByKey_.insert(key, s);
    sections_.push_back(Section{*array, index, false, {}});
    return s;
}

bool HocParser::selectByName() {
    int s = lookupSection(scanner_.text());
    if (s < 0) {
        return fail(lastTag_);
    }
    current_ = s;
    if (peekTag() == HocScanner::BLOCK_BEGIN) {
        nextTag();
        blocks_.push_back(Block{s, 1});
    }
    return true;
}

void HocParser::closeBlock() {
    if (blocks_.empty()) {
        return;
    }
    if (--blocks_.back().nesting == 0) {
        blocks_.pop_back();
        if (!blocks_.empty()) {
            current_ = blocks_.back().section;
        }
    }
}

bool HocParser::addPoint() {
    float values[4];
    if (read4Vector(values) < 0) {
        return fail(lastTag_);
    }
    if (debug_) {
        theMsg->printf("PT3DADD (%s,%s,%s,%s)", fixed(values[0]).c_str(), fixed(values[1]).c_str(),
                       fixed(values[2]).c_str(), fixed(values[3]).c_str());
    }
    if (current_ >= 0) {
        std::vector<float>& points = sections_[static_cast<size_t>(current_)].points;
        points.insert(points.end(), values, values + 4);
    }
    return true;
}

bool HocParser::connectStatement() {
    std::string a, b;
    double x = 0, y = 0;
    if (connect(a, x, b, y) < 0) {
        return fail(lastTag_);
    }
    const int child = lookupSection(a);
    const int parent = lookupSection(b);
    if (child < 0 || parent < 0) {
        return fail(HocScanner::IDENTIFIER);
    }
    sections_[static_cast<size_t>(child)].isChild = true;
    connects_.push_back(Connect{child, x, parent, y, scanner_.line()});
    if (debug_) {
        theMsg->printf("CONNECT: %s(%s) with %s(%s).\n", a.c_str(), fixed(x).c_str(), b.c_str(),
                       fixed(y).c_str());
    }
    return true;
}

int HocParser::connect(std::string& nameA, double& positionA, std::string& nameB, double& positionB) {
    for (int k = 0; k < 2; ++k) {
        if ((k == 1 && expect(HocScanner::COMMA) < 0) || expect(HocScanner::IDENTIFIER) < 0) {
            return -1;
        }
        (k == 0 ? nameA : nameB) = scanner_.text();
        if (expect(HocScanner::OPEN) < 0 || expect(HocScanner::NUMBER) < 0) {
            return -1;
        }
        (k == 0 ? positionA : positionB) = scanner_.number();
        if (expect(HocScanner::CLOSE) < 0) {
            return -1;
        }
    }
    return lastTag_;
}

int HocParser::read4Vector(float values[4]) {
    if (expect(HocScanner::OPEN) < 0) {
        return -1;
    }
    for (int k = 0; k < 4; ++k) {
        if ((k > 0 && expect(HocScanner::COMMA) < 0) || expect(HocScanner::NUMBER) < 0) {
            return -1;
        }
        values[k] = static_cast<float>(scanner_.number());
        // A value past float's range would make an infinite coordinate or
        // diameter, which no later computation survives.
        if (!std::isfinite(values[k])) {
            return -1;
        }
    }
    return expect(HocScanner::CLOSE);
}

int HocParser::pt3dclear() {
    return expect(HocScanner::OPEN) < 0 || expect(HocScanner::CLOSE) < 0 ? -1 : HocScanner::PT3DCLEAR;
}

const float* HocParser::endPoint(int section, double position) const {
    const std::vector<float>& points = sections_[static_cast<size_t>(section)].points;
    if (points.empty() || (position != 0 && position != 1)) {
        return nullptr;
    }
    return &points[position == 0 ? 0 : points.size() - 4];
}

// The graph joins sections only where their end points coincide; a connect
// at an inner position (soma(0.5)) or between ends that lie apart is lost,
// and the sections it hangs below a root keep rank 0. Saying so keeps that
// from going unnoticed.
void HocParser::warnAboutConnectsOffTheEnds() const {
    int count = 0;
    int firstLine = 0;
    for (const Connect& c : connects_) {
        if (sections_[static_cast<size_t>(c.child)].points.empty() ||
            sections_[static_cast<size_t>(c.parent)].points.empty()) {
            continue;
        }
        const float* a = endPoint(c.child, c.childPosition);
        const float* b = endPoint(c.parent, c.parentPosition);
        if ((!a || !b || !std::equal(a, a + 3, b)) && count++ == 0) {
            firstLine = c.line;
        }
    }
    if (count > 0) {
        theMsg->printf(
            "Warning: %d connect statement(s) join sections where their end points do not meet (the first "
            "in line %d); the graph does not join those sections, and what hangs only there gets rank 0.",
            count, firstLine);
    }
}

KxSpatialGraph* HocParser::takeGraph() {
    warnAboutConnectsOffTheEnds();
    std::vector<int> order;
    for (size_t s = 0; s < sections_.size(); ++s) {
        if (!sections_[s].points.empty()) {
            order.push_back(static_cast<int>(s));
        }
    }
    // Sections in the order "create" named them.
    std::sort(order.begin(), order.end(), [this](int a, int b) {
        const Section& p = sections_[static_cast<size_t>(a)];
        const Section& q = sections_[static_cast<size_t>(b)];
        return p.array != q.array ? p.array < q.array : p.index < q.index;
    });
    KxSpatialGraph& g = *graph_;
    PointAttribute* thickness = g.findEdgePointAttribute("thickness");
    EdgeVertexAttribute* topology = g.findEdgeAttribute("topology");
    size_t numPoints = 0;
    for (int s : order) {
        numPoints += sections_[static_cast<size_t>(s)].points.size() / 4;
    }
    g.setSizeHint(static_cast<int>(order.size()) + 1, static_cast<int>(order.size()),
                  static_cast<int>(numPoints));
    HashTable<std::string, int> vertexAt;
    DArray<Vec3f> points;
    DArray<int> roots;
    // Deliberate: a section of one point becomes a loop edge of one point,
    // which the consistency check reports; the graph is kept all the same.
    theWorkArea->startWorking("Building the graph", static_cast<int>(order.size()));
    for (int s : order) {
        const Section& section = sections_[static_cast<size_t>(s)];
        const int n = static_cast<int>(section.points.size() / 4);
        int ends[2];
        for (int k = 0; k < 2; ++k) {
            const float* p = &section.points[static_cast<size_t>(k == 0 ? 0 : 4 * (n - 1))];
            std::string key = positionKey(p);
            if (!vertexAt.lookup(key, ends[k])) {
                ends[k] = g.addVertex(Vec3f(p[0], p[1], p[2]));
                vertexAt.insert(key, ends[k]);
            }
        }
        points.resize(n);
        for (int i = 0; i < n; ++i) {
            const float* p = &section.points[4 * static_cast<size_t>(i)];
            points[i] = Vec3f(p[0], p[1], p[2]);
        }
        const int e = g.addEdge(ends[0], ends[1], points);
        for (int i = 0; i < n; ++i) {
            thickness->setFloatDataAtPoint(section.points[4 * static_cast<size_t>(i) + 3], e, i);
        }
        topology->setIntDataAtIdx(e, arrays_[static_cast<size_t>(section.array)].label);
        if (!section.isChild) {
            roots.append(e);
        }
        theWorkArea->step();
    }
    theWorkArea->stopWorking();

    EdgeVertexAttribute* ranks = g.findEdgeAttribute("Ranks");
    BitField visited(g.getNumVertices());
    for (int i = 0; i < roots.size(); ++i) {
        createRank(g, ranks, 1, roots[i], visited);
    }
    int maxRank = 0;
    for (int e = 0; e < g.getNumEdges(); ++e) {
        maxRank = std::max(maxRank, ranks->getIntDataAtIdx(e));
    }
    for (int r = 1; r <= maxRank; ++r) {
        addLabelBundle("Ranks", String::format("Rank%d", r), r, nextHOCLabelColor());
    }
    g.getLabelGroup("Ranks")->setLabelColor(0, kRootColor);
    g.isConsistent();
    return graph_.release();
}
