#include "kxspatialgraph/view/SpatialGraphViewNode.h"

#include <algorithm>
#include <cstdlib>

#include <Inventor/nodes/SoDepthBuffer.h>
#include <Inventor/nodes/SoDrawStyle.h>
#include <Inventor/nodes/SoLineSet.h>
#include <Inventor/nodes/SoPointSet.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoTransform.h>
#include <Inventor/nodes/SoVertexProperty.h>

#include "korva/data/KxColormap.h"
#include "korva/inventor/KxInventor.h"
#include "korva/inventor/SoSphereSet.h"
#include "korva/modules/KxPortColormap.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraphInterface.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"
#include "kxspatialgraph/view/SoTubeSet.h"

namespace {

SoVertexProperty* vertexPropertyOf(SoNode* shape) {
    auto* set = static_cast<SoVertexShape*>(shape);
    return static_cast<SoVertexProperty*>(set->vertexProperty.getValue());
}

bool bothSelectedEdge(const SpatialGraphSelection& a, const SpatialGraphSelection& b, int e) {
    return e < a.getNumEdges() && e < b.getNumEdges() && a.isSelectedEdge(e) && b.isSelectedEdge(e);
}

}  // namespace

SpatialGraphViewNode::SpatialGraphViewNode() {
    init();
}

SpatialGraphViewNode::SpatialGraphViewNode(const KxSpatialGraphInterface* graph) : graph_(graph) {
    init();
}

SpatialGraphViewNode::~SpatialGraphViewNode() = default;

const KxColormap* SpatialGraphViewNode::getRandomColormap() {
    static const KxColormap colormap = [] {
        KxColormap random;
        random.resize(256);
        random.setMinMax(0.0f, 255.0f);
        for (int i = 0; i < 256; ++i) {
            SbColor c(std::rand() / static_cast<float>(RAND_MAX), std::rand() / static_cast<float>(RAND_MAX),
                      std::rand() / static_cast<float>(RAND_MAX));
            random.setEntry(i, c, 1.0f);
        }
        return random;
    }();
    return &colormap;
}

void SpatialGraphViewNode::init() {
    KxInventor::init();
    SoTubeSet::initClass();
    getRandomColormap();  // made once, when the first node is
    edgeDefaultColor_.setValue(0.8f, 0.8f, 0.8f);
    vertexDefaultColor_.setValue(0.8f, 0.8f, 0.8f);
    undefinedColor_.setValue(0.0f, 0.0f, 0.0f);
    highlightColor_.setValue(1.0f, 0.0f, 0.0f);
    lineWidth_ = 1.0f;
    transparency_ = 0.0f;

    root_ = new SoSeparator;
    transform_ = new SoTransform;
    vertexSeparator_ = new SoSeparator;
    lineSeparator_ = new SoSeparator;
    highlightedLineSeparator_ = new SoSeparator;
    pointSeparator_ = new SoSeparator;
    highlightedPointSeparator_ = new SoSeparator;
    legacyTubeSeparator_ = new SoSeparator;
    tubeSeparator_ = new SoSeparator;
    tubeDrawStyle_ = new SoDrawStyle;
    tubeDrawStyle_->lineWidth = 1.0f;
    legacyTubeSeparator_->addChild(tubeDrawStyle_);
    for (SoNode* child :
         {static_cast<SoNode*>(transform_), static_cast<SoNode*>(vertexSeparator_),
          static_cast<SoNode*>(lineSeparator_), static_cast<SoNode*>(highlightedLineSeparator_),
          static_cast<SoNode*>(pointSeparator_), static_cast<SoNode*>(highlightedPointSeparator_),
          static_cast<SoNode*>(legacyTubeSeparator_), static_cast<SoNode*>(tubeSeparator_)}) {
        root_->addChild(child);
    }
    pointDrawStyle_ = new SoDrawStyle;
    // Point markers: Coin's draw styles have no "MARKERS"; POINTS is the nearest.
    pointDrawStyle_->style = SoDrawStyle::POINTS;
    pointDrawStyle_->pointSize = 4.0f;
    tubeSet_ = new SoTubeSet;
    lineSet_ = nullptr;
    highlightedLineSet_ = nullptr;
    sphereSet_ = nullptr;
    pointSet_ = nullptr;
    highlightedPointSet_ = nullptr;
}

void SpatialGraphViewNode::setTransform(SoTransform* t) {
    SoTransform* replacement = t ? t : new SoTransform;
    root_->replaceChild(transform_, replacement);
    transform_ = replacement;
}

void SpatialGraphViewNode::setLineWidth(float w) {
    lineWidth_ = w;
    if (lineSeparator_->getNumChildren() > 0) {
        static_cast<SoDrawStyle*>(lineSeparator_->getChild(0))->lineWidth = w;
    }
    if (highlightedLineSeparator_->getNumChildren() > 0) {
        static_cast<SoDrawStyle*>(highlightedLineSeparator_->getChild(0))->lineWidth = w + 1.0f;
    }
}

void SpatialGraphViewNode::setPointSize(float s) {
    pointDrawStyle_->pointSize = s;
}

// ---------------------------------------------------------------------------
// Lines

void SpatialGraphViewNode::makeLines(const SpatialGraphSelection* visible) {
    if (!visible || !graph_) {
        return;
    }
    if (visible->getNumSelectedEdges() == 0) {
        removeLines();
        return;
    }
    if (lineSeparator_->getNumChildren() == 0) {
        auto* style = new SoDrawStyle;
        style->lineWidth = lineWidth_;
        lineSeparator_->addChild(style);
        auto* depth = new SoDepthBuffer;
        depth->function.setValue(1);
        depth->write = transparency_ == 0.0f;
        lineSeparator_->addChild(depth);
        lineSet_ = new SoLineSet;
        lineSet_->vertexProperty = new SoVertexProperty;
        lineSeparator_->addChild(lineSet_);
    }
    renderLines(visible, lineSet_);
}

void SpatialGraphViewNode::renderLines(const SpatialGraphSelection* sel, SoLineSet* lineSet) {
    if (!sel || !lineSet || !graph_) {
        return;
    }
    SoVertexProperty* property = vertexPropertyOf(lineSet);
    int numEdges = std::min(graph_->doGetNumEdges(), sel->getNumEdges());
    int numLines = 0, numPoints = 0;
    for (int e = 0; e < numEdges; ++e) {
        if (sel->isSelectedEdge(e)) {
            ++numLines;
            numPoints += graph_->doGetNumEdgePoints(e);
        }
    }
    lineSet->numVertices.setNum(numLines);
    property->vertex.setNum(numPoints);
    int32_t* counts = lineSet->numVertices.startEditing();
    SbVec3f* out = property->vertex.startEditing();
    for (int e = 0; e < numEdges; ++e) {
        if (!sel->isSelectedEdge(e)) {
            continue;
        }
        int n = 0;
        const Vec3f* points = graph_->doGetEdgePoints(e, n);
        *counts++ = n;
        for (int i = 0; i < n; ++i) {
            *out++ = points[i];
        }
    }
    lineSet->numVertices.finishEditing();
    property->vertex.finishEditing();
}

void SpatialGraphViewNode::makeHighlightedLines(const SpatialGraphSelection* highlighted,
                                                const SpatialGraphSelection* visible) {
    if (!highlighted || !visible || !graph_) {
        return;
    }
    if (highlighted->getNumSelectedEdges() == 0) {
        removeHighlightedLines();
        return;
    }
    if (!highlightedLineSet_) {
        highlightedLineSeparator_->removeAllChildren();
        auto* style = new SoDrawStyle;
        style->lineWidth = lineWidth_ + 1.0f;
        highlightedLineSeparator_->addChild(style);
        highlightedLineSet_ = new SoLineSet;
        highlightedLineSet_->vertexProperty = new SoVertexProperty;
        highlightedLineSeparator_->addChild(highlightedLineSet_);
    }
    SoVertexProperty* property = vertexPropertyOf(highlightedLineSet_);
    property->materialBinding = SoVertexProperty::OVERALL;
    property->orderedRGBA.setValue(highlightColor_.getPackedValue(0.0f));
    SpatialGraphSelection both = *highlighted;
    both.deselectAllEdges();
    for (int e = 0; e < both.getNumEdges(); ++e) {
        if (bothSelectedEdge(*highlighted, *visible, e)) {
            both.selectEdge(e);
        }
    }
    renderLines(&both, highlightedLineSet_);
}

// ---------------------------------------------------------------------------
// Points

void SpatialGraphViewNode::makePoints(const SpatialGraphSelection* visible) {
    makePointSet(visible, pointSeparator_, pointSet_, vertexDefaultColor_);
}

void SpatialGraphViewNode::makeHighlightedPoints(const SpatialGraphSelection* sel) {
    makePointSet(sel, highlightedPointSeparator_, highlightedPointSet_, highlightColor_);
}

void SpatialGraphViewNode::makePointSet(const SpatialGraphSelection* sel, SoSeparator* group,
                                        SoRefPtr<SoPointSet>& pointSet, const SbColor& colour) {
    if (!sel || !graph_) {
        return;
    }
    if (sel->getNumEdgesWithAllPointsSelected() == 0 && sel->getNumSelectedPoints() == 0) {
        group->removeAllChildren();
        pointSet = nullptr;
        return;
    }
    if (!pointSet) {
        pointSet = new SoPointSet;
        pointSet->vertexProperty = new SoVertexProperty;
        addShape(group, pointDrawStyle_, pointSet);
    }
    SoVertexProperty* property = vertexPropertyOf(pointSet);
    property->materialBinding = SoVertexProperty::OVERALL;
    property->orderedRGBA.setValue(colour.getPackedValue(transparency_));
    renderPoints(sel, pointSet);
}

void SpatialGraphViewNode::renderPoints(const SpatialGraphSelection* sel, SoPointSet* pointSet) {
    if (!sel || !pointSet || !graph_) {
        return;
    }
    SoVertexProperty* property = vertexPropertyOf(pointSet);
    int count = 0;
    forEachLayoutPoint(*sel, [&count](int, int) { ++count; });
    property->vertex.setNum(count);
    SbVec3f* out = property->vertex.startEditing();
    forEachLayoutPoint(*sel, [&](int e, int p) { *out++ = graph_->doGetEdgePoint(e, p); });
    property->vertex.finishEditing();
    pointSet->numPoints = property->vertex.getNum();
}

void SpatialGraphViewNode::addShape(SoSeparator* group, SoDrawStyle* style, SoNode* shape) {
    group->removeAllChildren();
    if (style) {
        group->addChild(style);
    }
    group->addChild(shape);
}

// ---------------------------------------------------------------------------
// Vertices

void SpatialGraphViewNode::makeVertices(const SpatialGraphSelection* visible) {
    if (!visible || !graph_) {
        return;
    }
    if (visible->getNumSelectedVertices() == 0) {
        removeVertices();
        return;
    }
    if (!sphereSet_) {
        sphereSet_ = new SoSphereSet;
        sphereSet_->mode = 0;
        addShape(vertexSeparator_, nullptr, sphereSet_);
    }
    int n = graph_->doGetNumVertices();
    sphereSet_->setNumSpheres(n);
    SbVec3f* centres = sphereSet_->coords.startEditing();
    for (int v = 0; v < n; ++v) {
        centres[v] = graph_->doGetVertexCoords(v);
    }
    sphereSet_->coords.finishEditing();
    sphereSet_->scale = 0.2f;
    if (visible->getNumSelectedVertices() == n) {
        sphereSet_->selectAll(true);
        return;
    }
    sphereSet_->selectAll(false);
    for (int v = 0; v < std::min(n, visible->getNumVertices()); ++v) {
        if (visible->isSelectedVertex(v)) {
            sphereSet_->select(v, true);
        }
    }
}

void SpatialGraphViewNode::makeHighlightedVertices(const SpatialGraphSelection* highlighted,
                                                   const SpatialGraphSelection* visible) {
    if (!sphereSet_ || !highlighted || !visible) {
        return;
    }
    sphereSet_->highlightAll(false);
    int n = std::min({sphereSet_->getNumSpheres(), highlighted->getNumVertices(), visible->getNumVertices()});
    for (int v = 0; v < n; ++v) {
        if (highlighted->isSelectedVertex(v) && visible->isSelectedVertex(v)) {
            sphereSet_->highlight(v, true);
        }
    }
    sphereSet_->highlightColor = highlightColor_;
}

void SpatialGraphViewNode::setVertexScale(const SpatialGraphSelection*, const GraphAttribute* attr,
                                          float factor) {
    if (!sphereSet_) {
        return;
    }
    int n = sphereSet_->getNumSpheres();
    const auto* values = dynamic_cast<const EdgeVertexAttribute*>(attr);
    if (!values || values->size() < n) {
        sphereSet_->setRadii(0, n, nullptr, factor);
        return;
    }
    std::vector<float> radii(n);
    for (int v = 0; v < n; ++v) {
        float value = values->getPrimType().isInteger() ? static_cast<float>(values->getIntDataAtIdx(v))
                                                        : values->getFloatDataAtIdx(v);
        radii[v] = std::max(0.0f, value) * factor;  // Deliberate: negative values give radius 0.
    }
    sphereSet_->setRadii(0, n, radii.data());
}

// ---------------------------------------------------------------------------
// Removal

void SpatialGraphViewNode::removeLines() {
    lineSeparator_->removeAllChildren();
    lineSet_ = nullptr;
}

void SpatialGraphViewNode::removeHighlightedLines() {
    highlightedLineSeparator_->removeAllChildren();
    highlightedLineSet_ = nullptr;
}

void SpatialGraphViewNode::removePoints() {
    pointSeparator_->removeAllChildren();
    pointSet_ = nullptr;
}

void SpatialGraphViewNode::removeHighlightedPoints() {
    highlightedPointSeparator_->removeAllChildren();
    highlightedPointSet_ = nullptr;
}

void SpatialGraphViewNode::removeVertices() {
    vertexSeparator_->removeAllChildren();
    sphereSet_ = nullptr;
}

void SpatialGraphViewNode::removeHighlightedVertices() {
    if (sphereSet_) {
        sphereSet_->highlightAll(false);
    }
}
