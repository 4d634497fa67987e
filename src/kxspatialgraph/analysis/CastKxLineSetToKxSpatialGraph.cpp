#include "kxspatialgraph/analysis/CastKxLineSetToKxSpatialGraph.h"

#include <cstring>
#include <memory>

#include "korva/core/KxClassRegistry.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObjectPool.h"
#include "korva/data/KxLineSet.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"

namespace {

std::string columnName(int d) {
    return "Data" + std::to_string(d);
}

// Builds the edges of one line: every point used by more than one line
// ends an edge and starts the next one.
class LineSplitter {
public:
    LineSplitter(const KxLineSet& lineSet, KxSpatialGraph& graph,
                 const std::vector<PointAttribute*>& attributes, const std::vector<int>& useCount)
        : lineSet_(lineSet),
          graph_(graph),
          attributes_(attributes),
          useCount_(useCount),
          vertexOf_(static_cast<size_t>(lineSet.getNumPoints()), -1) {}

    void addLine(int line) {
        int m = lineSet_.getLineLength(line);
        int pos = 0;
        while (pos < m - 1) {
            int start = lineSet_.getLineIndex(line, pos);
            std::vector<int> points{start};
            do {
                ++pos;
                points.push_back(lineSet_.getLineIndex(line, pos));
            } while (pos < m - 1 && useCount_[static_cast<size_t>(points.back())] == 1);
            addEdge(points);
        }
    }

private:
    int vertexAt(int point) {
        int& v = vertexOf_[static_cast<size_t>(point)];
        if (v < 0) {
            v = graph_.addVertex(lineSet_.getPoint(point));
        }
        return v;
    }

    void addEdge(const std::vector<int>& points) {
        DArray<Vec3f> coords;
        for (int p : points) {
            coords.append(lineSet_.getPoint(p));
        }
        int s = vertexAt(points.front());
        int t = vertexAt(points.back());
        int e = graph_.addEdge(s, t, coords);
        for (size_t d = 0; d < attributes_.size(); ++d) {
            for (size_t k = 0; k < points.size(); ++k) {
                attributes_[d]->setFloatDataAtPoint(lineSet_.getData(static_cast<int>(d), points[k]), e,
                                                    static_cast<int>(k));
            }
        }
    }

    const KxLineSet& lineSet_;
    KxSpatialGraph& graph_;
    const std::vector<PointAttribute*>& attributes_;
    const std::vector<int>& useCount_;
    std::vector<int> vertexOf_;
};

}  // namespace

CastKxLineSetToKxSpatialGraph::CastKxLineSetToKxSpatialGraph()
    : KxCompModule({"KxLineSet"}),
      portMapToThickness(this, "mapToThickness", "Map To Thickness", 0),
      portAction(this, "action", "Action") {
    portMapToThickness.hide();
    setCreateButton(&portAction);
}

bool CastKxLineSetToKxSpatialGraph::isOfType(const char* typeName) const {
    return std::strcmp(typeName, "CastKxLineSetToKxSpatialGraph") == 0 || KxCompModule::isOfType(typeName);
}

void CastKxLineSetToKxSpatialGraph::update() {
    auto* lineSet = portData.getSource<KxLineSet>();
    int columns = lineSet ? lineSet->getNumDataColumns() : 0;
    portMapToThickness.setNumItems(columns);
    for (int d = 0; d < columns; ++d) {
        portMapToThickness.setItemLabel(d, columnName(d).c_str());
    }
    portMapToThickness.setVisible(columns >= 2);
}

KxSpatialGraph* CastKxLineSetToKxSpatialGraph::makeSpatialGraphWithAttrib(
    const KxLineSet& lineSet, const std::vector<std::string>& names) {
    if (!lineSet.isValid()) {
        return nullptr;
    }
    std::vector<int> useCount(static_cast<size_t>(lineSet.getNumPoints()), 0);
    for (int l = 0; l < lineSet.getNumLines(); ++l) {
        for (int k = 0; k < lineSet.getLineLength(l); ++k) {
            ++useCount[static_cast<size_t>(lineSet.getLineIndex(l, k))];
        }
    }
    int branching = 0;
    for (int count : useCount) {
        branching += count >= 2 ? count - 1 : 0;
    }
    theMsg->printf("total branching points %d", branching);

    auto graph = std::make_unique<KxSpatialGraph>();
    std::vector<PointAttribute*> attributes;
    for (int d = 0; d < lineSet.getNumDataColumns(); ++d) {
        std::string name = d < static_cast<int>(names.size()) ? names[static_cast<size_t>(d)] : columnName(d);
        attributes.push_back(static_cast<PointAttribute*>(
            graph->addAttribute(name.c_str(), KxSpatialGraph::POINT, PrimType::FLOAT32, 1)));
    }
    LineSplitter splitter(lineSet, *graph, attributes, useCount);
    for (int l = 0; l < lineSet.getNumLines(); ++l) {
        splitter.addLine(l);
    }
    return graph.release();
}

void CastKxLineSetToKxSpatialGraph::compute() {
    auto* lineSet = portData.getSource<KxLineSet>();
    if (!portAction.wasHit() || !lineSet) {
        return;
    }
    std::vector<std::string> names;
    int columns = lineSet->getNumDataColumns();
    for (int d = 0; d < columns; ++d) {
        bool thickness = columns == 1 || d == portMapToThickness.getValue();
        names.push_back(thickness ? "thickness" : columnName(d));
    }
    KxSpatialGraph* graph = makeSpatialGraphWithAttrib(*lineSet, names);
    if (!graph) {
        return;
    }
    graph->isConsistent();
    graph->setTransform(lineSet->getTransform());
    graph->setLabel((std::string(lineSet->getLabel()) + "-SG").c_str());
    setResult(graph);
}

void CastKxLineSetToKxSpatialGraph::registerClass() {
    registerCreatingClass("CastKxLineSetToKxSpatialGraph", "kxspatialgraph",
                          []() -> KxObject* { return new CastKxLineSetToKxSpatialGraph; });
}
