// SpatialGraphViewNode: colours from attributes, label groups and colormaps.
#include <Inventor/nodes/SoLineSet.h>
#include <Inventor/nodes/SoPointSet.h>
#include <Inventor/nodes/SoVertexProperty.h>

#include "korva/inventor/SoSphereSet.h"
#include "korva/modules/KxPortColormap.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraphInterface.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"
#include "kxspatialgraph/view/SpatialGraphViewNode.h"

namespace {

// Value of element index (point index along it for point attributes) as a
// float: integers converted, floats as they are, other types 0.
float attributeValue(const GraphAttribute* attr, int index, int point) {
    PrimType type = attr->getPrimType();
    bool isInt = type.getType() == PrimType::INT32;
    bool isFloat = type.getType() == PrimType::FLOAT32;
    if (const auto* p = dynamic_cast<const PointAttribute*>(attr)) {
        return isInt     ? static_cast<float>(p->getIntDataAtPoint(index, point))
               : isFloat ? p->getFloatDataAtPoint(index, point)
                         : 0.0f;
    }
    const auto* ev = static_cast<const EdgeVertexAttribute*>(attr);
    return isInt     ? static_cast<float>(ev->getIntDataAtIdx(index))
           : isFloat ? ev->getFloatDataAtIdx(index)
                     : 0.0f;
}

int attributeIntValue(const GraphAttribute* attr, int index, int point) {
    if (const auto* p = dynamic_cast<const PointAttribute*>(attr)) {
        return p->getIntDataAtPoint(index, point);
    }
    return static_cast<const EdgeVertexAttribute*>(attr)->getIntDataAtIdx(index);
}

SoVertexProperty* vertexPropertyOf(SoVertexShape* shape) {
    return static_cast<SoVertexProperty*>(shape->vertexProperty.getValue());
}

void setOverall(SoVertexProperty* property, const SbColor& colour, float transparency) {
    property->materialBinding = SoVertexProperty::OVERALL;
    property->orderedRGBA.setValue(colour.getPackedValue(transparency));
}

}  // namespace

bool SpatialGraphViewNode::useLabels(const GraphAttribute* attr, bool noLabelColors) const {
    return !noLabelColors && attr->getPrimType().getType() == PrimType::INT32 && graph_->doHasLabel(attr);
}

SbColor SpatialGraphViewNode::valueColor(const GraphAttribute* attr, int index, int point, bool labels,
                                         const HashTable<int, SbColor>& table,
                                         const KxPortColormap* port) const {
    if (labels) {
        SbColor colour = undefinedColor_;
        table.lookup(attributeIntValue(attr, index, point), colour);
        return colour;
    }
    return port->getColor(attributeValue(attr, index, point));
}

void SpatialGraphViewNode::createColorTable(const GraphAttribute* attr,
                                            HashTable<int, SbColor>& table) const {
    if (!attr || !graph_) {
        return;
    }
    int maxId = graph_->doGetMaxLabelId(attr);
    for (int id = 0; id <= maxId; ++id) {
        SbColor colour;
        if (!graph_->doGetLabelColor(attr, id, colour)) {
            colour = undefinedColor_;
        }
        table.set(id, colour);
    }
}

bool SpatialGraphViewNode::prepareValueColors(const GraphAttribute* attr, bool noLabelColors,
                                              const KxPortColormap* port, bool& labels,
                                              HashTable<int, SbColor>& table) const {
    labels = attr && useLabels(attr, noLabelColors);
    if (labels) {
        createColorTable(attr, table);
    }
    return attr && (labels || port);
}

void SpatialGraphViewNode::setLineColor(const SpatialGraphSelection* sel, const GraphAttribute* attr,
                                        bool noLabelColors) {
    if (!lineSet_ || !sel || !graph_) {
        return;
    }
    SoVertexProperty* property = vertexPropertyOf(lineSet_);
    bool labels = false;
    HashTable<int, SbColor> table;
    if (!prepareValueColors(attr, noLabelColors, edgeColormapPort_, labels, table)) {
        setOverall(property, edgeDefaultColor_, transparency_);
        return;
    }
    const bool perPoint = dynamic_cast<const PointAttribute*>(attr) != nullptr;
    int numEdges = std::min(graph_->doGetNumEdges(), sel->getNumEdges());
    std::vector<uint32_t> colours;
    for (int e = 0; e < numEdges; ++e) {
        if (!sel->isSelectedEdge(e)) {
            continue;
        }
        if (!perPoint) {
            colours.push_back(
                valueColor(attr, e, 0, labels, table, edgeColormapPort_).getPackedValue(transparency_));
            continue;
        }
        for (int p = 0; p < graph_->doGetNumEdgePoints(e); ++p) {
            colours.push_back(
                valueColor(attr, e, p, labels, table, edgeColormapPort_).getPackedValue(transparency_));
        }
    }
    property->materialBinding = perPoint ? SoVertexProperty::PER_VERTEX : SoVertexProperty::PER_FACE;
    property->orderedRGBA.setValues(0, static_cast<int>(colours.size()), colours.data());
    property->orderedRGBA.setNum(static_cast<int>(colours.size()));
}

void SpatialGraphViewNode::setPointsColor(const SpatialGraphSelection* sel, const GraphAttribute* attr,
                                          bool noLabelColors) {
    if (!pointSet_ || !sel || !graph_) {
        return;
    }
    SoVertexProperty* property = vertexPropertyOf(pointSet_);
    bool labels = false;
    HashTable<int, SbColor> table;
    if (!prepareValueColors(attr, noLabelColors, edgeColormapPort_, labels, table)) {
        setOverall(property, vertexDefaultColor_, transparency_);
        return;
    }
    // Every marker takes its point's value, or its edge's value for edge attributes.
    const bool perPoint = dynamic_cast<const PointAttribute*>(attr) != nullptr;
    std::vector<uint32_t> colours;
    auto addColour = [&](int e, int p) {
        colours.push_back(valueColor(attr, e, perPoint ? p : 0, labels, table, edgeColormapPort_)
                              .getPackedValue(transparency_));
    };
    forEachLayoutPoint(*sel, addColour);
    property->materialBinding = SoVertexProperty::PER_VERTEX;
    property->orderedRGBA.setValues(0, static_cast<int>(colours.size()), colours.data());
    property->orderedRGBA.setNum(static_cast<int>(colours.size()));
}

void SpatialGraphViewNode::setVertexColor(const SpatialGraphSelection* sel, const GraphAttribute* attr,
                                          bool noLabelColors) {
    if (!sphereSet_ || !sel || !graph_) {
        return;
    }
    int n = sphereSet_->getNumSpheres();
    const auto* values = dynamic_cast<const EdgeVertexAttribute*>(attr);
    bool labels = false;
    HashTable<int, SbColor> table;
    if (!values || values->size() < n ||
        !prepareValueColors(values, noLabelColors, vertexColormapPort_, labels, table)) {
        sphereSet_->colors.setValue(vertexDefaultColor_);
        return;
    }
    sphereSet_->colors.setNum(n);
    SbColor* colours = sphereSet_->colors.startEditing();
    for (int v = 0; v < n; ++v) {
        colours[v] = valueColor(values, v, 0, labels, table, vertexColormapPort_);
    }
    sphereSet_->colors.finishEditing();
}
