#include "kxspatialgraph/analysis/KxLabelSpatialGraph.h"

#include <cstring>
#include <vector>

#include <Inventor/SbLinear.h>

#include "korva/core/KxClassRegistry.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/data/KxUniformLabelField3.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"

namespace {

const char* const kNodeGroup = "Materials_Nodes";
const char* const kPointGroup = "Materials_Points";

// Samples the field at p (graph space, mapped by toField): the label plus
// one, or 1 outside.
int sample(const KxUniformLabelField3& field, const SbMatrix& toField, const Vec3f& p) {
    SbVec4f h;
    toField.multVecMatrix(SbVec4f(p.x, p.y, p.z, 1.0f), h);
    float w = h[3] != 0.0f ? h[3] : 1.0f;
    int label = 0;
    // Deliberate: a position outside the field gets 1, like a voxel of material 0.
    return field.findLabel(Vec3f(h[0] / w, h[1] / w, h[2] / w), label) ? label + 1 : 1;
}

}  // namespace

KxLabelSpatialGraph::KxLabelSpatialGraph()
    : KxCompModule({"KxSpatialGraph"}),
      portAction(this, "action", "Action", "DoIt"),
      portLocation(this, "Location", "Location", 2),
      portLabelData(this, "LabelData", "Label Data", {"KxUniformLabelField3"}) {
    portLocation.setItemLabel(POINT_TOGGLE, "Point");
    portLocation.setItemLabel(NODE_TOGGLE, "Node");
    portLocation.setValue(POINT_TOGGLE, 1);
    portLocation.untouch();
    setCreateButton(&portAction);
}

bool KxLabelSpatialGraph::isOfType(const char* typeName) const {
    return std::strcmp(typeName, "KxLabelSpatialGraph") == 0 || KxCompModule::isOfType(typeName);
}

void KxLabelSpatialGraph::compute() {
    auto* graph = portData.getSource<KxSpatialGraph>();
    auto* field = portLabelData.getSource<KxUniformLabelField3>();
    if (!portAction.wasHit() || !graph || !field) {
        return;
    }
    auto* result = dynamic_cast<KxSpatialGraph*>(getReusableResult("KxSpatialGraph"));
    bool reused = result != nullptr;
    if (reused) {
        result->copyFrom(graph);
    } else {
        result = graph->duplicate();
        result->setLabel(makeResultLabel("_labeled").c_str());
    }
    SbMatrix toField = result->getTransform();
    toField.multRight(field->getTransform().inverse());

    bool nodes = portLocation.getValue(NODE_TOGGLE) != 0;
    bool points = portLocation.getValue(POINT_TOGGLE) != 0;
    std::vector<const char*> groups;
    if (nodes) {
        result->addNewLabelGroup(kNodeGroup, false, true, false);
        groups.push_back(kNodeGroup);
    }
    if (points) {
        result->addNewLabelGroup(kPointGroup, false, false, true);
        groups.push_back(kPointGroup);
    }
    const KxParamBundle* materials = field->getMaterials();
    if (!materials && !groups.empty()) {
        theMsg->printf("Error: Label field %s has no \"Materials\" parameters.", field->getLabel());
        if (!reused) {
            delete result;
        }
        return;
    }
    for (int m = 0; materials && m < materials->getNumBundles(); ++m) {
        const KxParamBundle* material = materials->getBundle(m);
        float rgb[3] = {0.0f, 0.0f, 0.0f};
        material->findReals("Color", 3, rgb);
        for (const char* group : groups) {
            result->addLabel(group, 0, material->getName(), SbColor(rgb));
        }
    }
    if (nodes) {
        EdgeVertexAttribute* a = result->findVertexAttribute(kNodeGroup);
        for (int v = 0; a && v < result->getNumVertices(); ++v) {
            a->setIntDataAtIdx(v, sample(*field, toField, result->getVertexCoords(v)));
        }
    }
    if (points) {
        PointAttribute* a = result->findEdgePointAttribute(kPointGroup);
        for (int e = 0; a && e < result->getNumEdges(); ++e) {
            int n = 0;
            const Vec3f* p = result->getEdgePoints(e, n);
            for (int i = 0; i < n; ++i) {
                a->setIntDataAtPoint(e, i, sample(*field, toField, p[i]));
            }
        }
    }
    result->touch(KxData::NEW_DATA);
    setResult(result);
    result->fire();
}

void KxLabelSpatialGraph::registerClass() {
    registerCreatingClass("KxLabelSpatialGraph", "kxspatialgraph",
                          []() -> KxObject* { return new KxLabelSpatialGraph; });
}
