#include "kxspatialgraph/formats/SpatialGraphHOC.h"

#include <charconv>
#include <cmath>
#include <cstdio>
#include <limits>
#include <vector>

#include "korva/core/KxData.h"
#include "korva/core/KxMessageConsole.h"
#include "kxspatialgraph/formats/HocParser.h"
#include "kxspatialgraph/formats/SpatialGraphKorvaMesh.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/KxSpatialGraphInterface.h"

namespace {

bool gDebug = false;
int gColorCounter = 0;

// The whole file, or false when it cannot be opened or read, or is too
// large for the scanner's int lengths.
bool openHocFile(const char* filename, std::vector<char>& text) {
    FILE* file = std::fopen(filename, "rb");
    if (!file) {
        theMsg->printf("FILE IO Error");
        return false;
    }
    bool ok = std::fseek(file, 0, SEEK_END) == 0;
    long size = ok ? std::ftell(file) : -1;
    ok = size >= 0 && size < std::numeric_limits<int>::max() && std::fseek(file, 0, SEEK_SET) == 0;
    if (ok) {
        text.resize(static_cast<size_t>(size));
        ok = std::fread(text.data(), 1, text.size(), file) == text.size();
    }
    std::fclose(file);
    if (!ok) {
        theMsg->printf("FILE IO Error");
    }
    return ok;
}

// One frame of createRank's walk: the edge, its rank, the end being handed
// on (0 source, 1 target, 2 done), the rank handed on there and the next
// incident edge to look at (-1: the end is not started).
struct RankFrame {
    int edge;
    int rank;
    int end;
    int vertex;
    int nextRank;
    int next;
};

}  // namespace

void setHOCReaderDebug(bool on) {
    gDebug = on;
}

Color nextHOCLabelColor() {
    double hue = static_cast<double>(gColorCounter++) / 6.37;
    return Color::fromHSV(static_cast<float>(hue - std::floor(hue)), 0.8f, 0.8f);
}

void appendHOCNumber(std::string& out, double value) {
    char buffer[400];
    char* end = std::to_chars(buffer, buffer + sizeof(buffer), value, std::chars_format::fixed, 6).ptr;
    out.append(buffer, end);
}

KxSpatialGraph* loadHOCFromMemory(const char* text, size_t length, const char* name) {
    if (gDebug) {
        theMsg->printf("Hoc File Parser started read file: %s\n", name);
    }
    HocParser parser(text, length, gDebug);
    if (!parser.parse()) {
        return nullptr;
    }
    theMsg->printf("Close file\n");
    return parser.takeGraph();
}

KxSpatialGraph* loadHOCToKxSpatialGraph(const char* filename) {
    std::vector<char> text;
    if (!openHocFile(filename, text)) {
        theMsg->printf("Error reading file.\n");
        return nullptr;
    }
    return loadHOCFromMemory(text.data(), text.size(), filename);
}

int loadHOCToKorva(const char* filename) {
    return registerSpatialGraph(loadHOCToKxSpatialGraph(filename), filename);
}

void createRank(const KxSpatialGraph& graph, EdgeVertexAttribute* ranks, int rank, int edge,
                BitField& visited) {
    if (ranks->getIntDataAtIdx(edge) != 0) {
        return;
    }
    ranks->setIntDataAtIdx(edge, rank);
    std::vector<RankFrame> stack{RankFrame{edge, rank, 0, -1, 0, -1}};
    while (!stack.empty()) {
        RankFrame& f = stack.back();
        if (f.next < 0) {
            if (f.end == 2) {
                stack.pop_back();
                continue;
            }
            f.vertex = f.end++ == 0 ? graph.getEdgeSource(f.edge) : graph.getEdgeTarget(f.edge);
            if (visited.test(f.vertex)) {
                continue;
            }
            visited.set(f.vertex);
            const bool branching = graph.getIncidentEdges(f.vertex).size() >= 3;
            f.nextRank = branching ? f.rank + 1 : std::max(f.rank, 2);
            f.next = 0;
            continue;
        }
        const KxSpatialGraph::IncidenceList& incident = graph.getIncidentEdges(f.vertex);
        if (f.next >= incident.size()) {
            f.next = -1;
            continue;
        }
        const int other = incident[f.next++];
        if (other != f.edge && ranks->getIntDataAtIdx(other) == 0) {
            ranks->setIntDataAtIdx(other, f.nextRank);
            const int nextRank = f.nextRank;  // f dies when the stack grows
            stack.push_back(RankFrame{other, nextRank, 0, -1, 0, -1});
        }
    }
}

int kxspatialgraphReadHOC(const char* filename) {
    return loadHOCToKorva(filename);
}

int kxspatialgraphWriteHOC(KxData* data, const char* filename) {
    KxSpatialGraph* graph = dynamic_cast<KxSpatialGraph*>(data);
    if (!graph) {
        theMsg->printf("Error: HOC files hold spatial graphs, not %s.", data->getTypeName());
        return 0;
    }
    return writeHOC(graph->getSpatialGraphInterface(), filename);
}
