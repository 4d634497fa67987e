#include "kxspatialgraph/analysis/CastKxSpatialGraphToKxLineSet.h"

#include <cstring>
#include <numeric>
#include <vector>

#include "korva/core/KxClassRegistry.h"
#include "korva/data/KxLineSet.h"
#include "kxspatialgraph/model/KxSpatialGraphInterface.h"
#include "kxspatialgraph/model/PointAttribute.h"

CastKxSpatialGraphToKxLineSet::CastKxSpatialGraphToKxLineSet()
    : KxCompModule({"KxSpatialGraphInterface"}), portAction(this, "action", "Action") {
    setCreateButton(&portAction);
}

bool CastKxSpatialGraphToKxLineSet::isOfType(const char* typeName) const {
    return std::strcmp(typeName, "CastKxSpatialGraphToKxLineSet") == 0 || KxCompModule::isOfType(typeName);
}

bool CastKxSpatialGraphToKxLineSet::isValidAttribut(const GraphAttribute* attribute) {
    // Besides float, 32-bit int values are accepted and converted.
    return attribute && attribute->getNumDataVar() == 1 &&
           (attribute->getPrimType() == PrimType::FLOAT32 || attribute->getPrimType() == PrimType::INT32);
}

KxLineSet* CastKxSpatialGraphToKxLineSet::makeLineSetFromSpatialGraph(const KxSpatialGraphInterface& graph) {
    std::vector<const PointAttribute*> columns;
    const PointAttribute* thickness = graph.doFindEdgePointAttribute("thickness");
    if (isValidAttribut(thickness)) {
        columns.push_back(thickness);
    }
    for (int i = 0; i < graph.doGetNumEdgePointAttributes(); ++i) {
        const PointAttribute* a = graph.doGetEdgePointAttribute(i);
        if (a != thickness && isValidAttribut(a)) {
            columns.push_back(a);
        }
    }
    auto* lineSet = new KxLineSet;
    lineSet->setNumDataColumns(static_cast<int>(columns.size()));
    std::vector<int> indices;
    for (int e = 0; e < graph.doGetNumEdges(); ++e) {
        int n = 0;
        const Vec3f* points = graph.doGetEdgePoints(e, n);
        int first = lineSet->addPoints(points, n);
        indices.resize(static_cast<size_t>(n));
        std::iota(indices.begin(), indices.end(), first);
        lineSet->addLine(indices.data(), n);
        for (size_t c = 0; c < columns.size(); ++c) {
            bool isFloat = columns[c]->getPrimType() == PrimType::FLOAT32;
            for (int p = 0; p < n; ++p) {
                float v = isFloat ? columns[c]->getFloatDataAtPoint(e, p)
                                  : static_cast<float>(columns[c]->getIntDataAtPoint(e, p));
                lineSet->setData(static_cast<int>(c), first + p, v);
            }
        }
    }
    return lineSet;
}

void CastKxSpatialGraphToKxLineSet::compute() {
    auto* graph =
        static_cast<KxSpatialGraphInterface*>(portData.getSourceInterface("KxSpatialGraphInterface"));
    if (!portAction.wasHit() || !graph) {
        return;
    }
    KxLineSet* lineSet = makeLineSetFromSpatialGraph(*graph);
    lineSet->setTransform(graph->doGetTransform());
    lineSet->setLabel((std::string(portData.getSource()->getLabel()) + "-LS").c_str());
    setResult(lineSet);
}

void CastKxSpatialGraphToKxLineSet::registerClass() {
    registerCreatingClass("CastKxSpatialGraphToKxLineSet", "kxspatialgraph",
                          []() -> KxObject* { return new CastKxSpatialGraphToKxLineSet; });
}
