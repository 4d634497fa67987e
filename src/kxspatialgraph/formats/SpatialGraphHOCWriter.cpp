// The HOC writer and its connection walk (declared in SpatialGraphHOC.h).
#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <vector>

#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxSafeFile.h"
#include "korva/core/KxWorkArea.h"
#include "kxspatialgraph/formats/SpatialGraphHOC.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraphInterface.h"
#include "kxspatialgraph/model/PointAttribute.h"

namespace {

// One frame of connectSections' walk: the edge, the end whose edges are
// being visited (0 source, 1 target) and the next of them to look at.
struct ConnectFrame {
    int edge;
    int end;
    int next;
};

// An int or float attribute with one component, else null.
template <class A>
A* singleValued(A* attribute, PrimType type) {
    return attribute && attribute->getPrimType() == type && attribute->getNumDataVar() == 1 ? attribute
                                                                                            : nullptr;
}

// Text gathered in large pieces before it goes to the file.
class HocOutput {
public:
    explicit HocOutput(KxSafeFile& file) : file_(file) { text_.reserve(kChunk + 4096); }

    std::string& text() { return text_; }
    void flushIfFull() {
        if (text_.size() >= kChunk) {
            flush();
        }
    }
    void flush() {
        file_.write(text_);
        text_.clear();
    }

private:
    static constexpr size_t kChunk = 1 << 20;
    KxSafeFile& file_;
    std::string text_;
};

// True if name can name a section array: a HOC identifier that is no word of
// the language or of the statements read back, and that no other label took.
bool isFreeSectionName(const String& name, std::set<std::string>& taken) {
    static const std::set<std::string> kKeywords = {
        "access", "begintemplate", "break",     "connect",  "continue", "create", "delete",    "double",
        "else",   "endtemplate",   "for",       "forall",   "forsec",   "func",   "if",        "ifsec",
        "insert", "iterator",      "local",     "localobj", "new",      "obfunc", "objectvar", "objref",
        "proc",   "pt3dadd",       "pt3dclear", "public",   "return",   "strdef", "while"};
    const std::string text = name.std();
    // ASCII letters, digits and '_', whatever the locale.
    auto isWordChar = [](char c) {
        return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '_';
    };
    const bool identifier = !text.empty() && !(text[0] >= '0' && text[0] <= '9') &&
                            std::all_of(text.begin(), text.end(), isWordChar);
    return identifier && !kKeywords.count(text) && taken.insert(text).second;
}

// Section names: "label[i.]" for the i-th edge of a "topology" label, else
// "section_e". Writes the create statements. Deliberate: a label without
// edges gets no create statement, since NEURON refuses arrays of size 0.
// A label whose name is not a free section name (a blank, a keyword, the
// name of another label in another branch of the tree) leaves its edges
// "section_e" too: its create statement would not be read back, or would
// join the other label's sections.
std::vector<std::string> nameSections(const KxSpatialGraphInterface* graph, std::string& out) {
    struct Label {
        String name;  // empty: the id names no label
        int count = 0;
    };
    const int numEdges = graph->doGetNumEdges();
    std::vector<std::string> names(static_cast<size_t>(numEdges));
    EdgeVertexAttribute* topology = singleValued(graph->doFindEdgeAttribute("topology"), PrimType::INT32);
    if (topology && !graph->doHasLabel(topology)) {
        topology = nullptr;
    }
    // Only the labels the edges use, each looked up once.
    std::map<int, Label> labels;
    std::set<std::string> taken;
    std::vector<int> unlabelled;
    for (int e = 0; e < numEdges; ++e) {
        const int id = topology ? topology->getIntDataAtIdx(e) : 0;
        auto found = labels.find(id);
        if (found == labels.end()) {
            found = labels.emplace(id, Label()).first;
            if (id >= 1 && (!graph->doGetLabelName(topology, id, found->second.name) ||
                            !isFreeSectionName(found->second.name, taken))) {
                found->second.name = String();
            }
        }
        Label& label = found->second;
        if (id >= 1 && !label.name.isEmpty()) {
            names[static_cast<size_t>(e)] =
                String::format("%s[%d.]", label.name.getString(), label.count++).std();
        } else {
            names[static_cast<size_t>(e)] = "section_" + std::to_string(e);
            unlabelled.push_back(e);
        }
    }
    for (const auto& [id, label] : labels) {
        if (label.count > 0) {
            out += String::format("create %s[%20d.]\n", label.name.getString(), label.count).std();
        }
    }
    for (int e : unlabelled) {
        out += "create " + names[static_cast<size_t>(e)] + "\n";
    }
    return names;
}

void writeSection(const KxSpatialGraphInterface* graph, PointAttribute* thickness, int e,
                  const std::string& name, std::string& out) {
    out += name;
    out += " {\npt3dclear()\n";
    int n = 0;
    const Vec3f* points = graph->doGetEdgePoints(e, n);
    for (int i = 0; i < n; ++i) {
        out += "pt3dadd(";
        for (int k = 0; k < 3; ++k) {
            appendHOCNumber(out, points[i][k]);
            out += ',';
        }
        appendHOCNumber(out, thickness ? thickness->getFloatDataAtPoint(e, i) : 0.0f);
        out += ")\n";
    }
    out += "}\n\n";
}

// Where child and parent meet: the positions (0 at the source, 1 at the
// target) of their shared end, the child's 0 end preferred.
void meetingEnds(const KxSpatialGraphInterface* graph, int child, int parent, int& childEnd, int& parentEnd) {
    const int childEnds[2] = {graph->doGetEdgeSource(child), graph->doGetEdgeTarget(child)};
    const int parentEnds[2] = {graph->doGetEdgeSource(parent), graph->doGetEdgeTarget(parent)};
    for (int c = 0; c < 2; ++c) {
        for (int p : {1, 0}) {
            if (childEnds[c] == parentEnds[p]) {
                childEnd = c;
                parentEnd = p;
                return;
            }
        }
    }
    childEnd = 0;
    parentEnd = 1;
}

}  // namespace

void connectSections(const KxSpatialGraphInterface* graph, int edge, int parentEdge, DArray<int>& parentOf,
                     DArray<int>& treeOf, int tree) {
    parentOf[edge] = parentEdge;
    treeOf[edge] = tree;
    std::vector<ConnectFrame> stack{ConnectFrame{edge, 0, 0}};
    while (!stack.empty()) {
        ConnectFrame& f = stack.back();
        if (f.end == 2) {
            stack.pop_back();
            continue;
        }
        const int vertex = f.end == 0 ? graph->doGetEdgeSource(f.edge) : graph->doGetEdgeTarget(f.edge);
        // An end left at -1 by a vertex removal leads nowhere.
        const bool attached = vertex >= 0 && vertex < graph->doGetNumVertices();
        if (!attached || f.next >= graph->doGetIncidentEdges(vertex).size()) {
            ++f.end;
            f.next = 0;
            continue;
        }
        const int other = graph->doGetIncidentEdges(vertex)[f.next++];
        if (parentOf[other] < 0) {
            parentOf[other] = f.edge;
            treeOf[other] = tree;
            stack.push_back(ConnectFrame{other, 0, 0});
        }
    }
}

int writeHOC(const KxSpatialGraphInterface* graph, const char* filename) {
    EdgeVertexAttribute* ranks = singleValued(graph->doFindEdgeAttribute("Ranks"), PrimType::INT32);
    if (!ranks) {
        theMsg->printf("Error: No root segments specified!\n");
        // Graphs read from SWC or built by hand have no ranks yet: say how to get them.
        theMsg->printf(
            "The edge attribute \"Ranks\" marks them; korva trees FILE -o OUT.hoc numbers the "
            "branch ranks and writes the HOC file.\n");
        return 0;
    }
    KxSafeFile file(filename, "HOC file");
    if (!file.open()) {
        return 0;
    }
    for (int v = 0; v < graph->doGetNumVertices(); ++v) {
        if (graph->doGetIncidentEdges(v).size() == 0) {
            theMsg->printf("Warning: Isolated node %d will be ignored!\n", v);
        }
    }
    const int numEdges = graph->doGetNumEdges();
    theWorkArea->startWorking("Writing HOC file", numEdges);
    HocOutput output(file);
    std::string& out = output.text();
    const std::vector<std::string> names = nameSections(graph, out);
    PointAttribute* thickness = singleValued(graph->doFindEdgePointAttribute("thickness"), PrimType::FLOAT32);
    for (int e = 0; e < numEdges; ++e) {
        writeSection(graph, thickness, e, names[static_cast<size_t>(e)], out);
        output.flushIfFull();
        theWorkArea->step();
    }

    DArray<int> parentOf(numEdges, -1);
    DArray<int> treeOf(numEdges, -1);
    int numTrees = 0;
    for (int e = 0; e < numEdges; ++e) {
        if (ranks->getIntDataAtIdx(e) == 1 && parentOf[e] < 0) {
            connectSections(graph, e, e, parentOf, treeOf, numTrees++);
        }
    }
    for (int e = 0; e < numEdges; ++e) {
        const int parent = parentOf[e];
        if (parent >= 0 && parent != e) {
            int childEnd = 0, parentEnd = 1;
            meetingEnds(graph, e, parent, childEnd, parentEnd);
            out += String::format("connect %s(%d), %s(%d)\n", names[static_cast<size_t>(e)].c_str(), childEnd,
                                  names[static_cast<size_t>(parent)].c_str(), parentEnd)
                       .std();
            output.flushIfFull();
        }
    }
    theWorkArea->stopWorking();
    output.flush();
    return file.commit() ? 1 : 0;
}
