// SpatialGraphViewNode: GPU tubes (SoTubeSet) and the legacy tubes made of faces.
#include <Inventor/nodes/SoCoordinate3.h>
#include <Inventor/nodes/SoIndexedFaceSet.h>
#include <Inventor/nodes/SoMaterial.h>
#include <Inventor/nodes/SoMaterialBinding.h>
#include <Inventor/nodes/SoNormal.h>
#include <Inventor/nodes/SoNormalBinding.h>
#include <Inventor/nodes/SoSeparator.h>
#include <Inventor/nodes/SoShapeHints.h>

#include "korva/data/KxColormap.h"
#include "korva/modules/KxPortColormap.h"
#include "kxspatialgraph/model/EdgeVertexAttribute.h"
#include "kxspatialgraph/model/KxSpatialGraphInterface.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"
#include "kxspatialgraph/view/SoTubeSet.h"
#include "kxspatialgraph/view/SpatialGraphViewNode.h"

namespace {

// Cross-section of the legacy tubes: a circle of radius 0.5 in the plane
// z = 1, every 30 degrees from (0.5, 0, 1), the first point repeated.
const int kProfilePoints = 13;

SbVec3f profilePoint(int i) {
    if (i == kProfilePoints - 1) {
        i = 0;
    }
    const float c[] = {0.5f,  0.4330127f,  0.25f,  0.0f, -0.25f, -0.4330127f,
                       -0.5f, -0.4330127f, -0.25f, 0.0f, 0.25f,  0.4330127f};
    return SbVec3f(c[i], c[(i + 9) % 12], 1.0f);
}

}  // namespace

PolylineFrames SpatialGraphViewNode::edgeFrames(int edge, bool closed) const {
    int n = 0;
    const Vec3f* points = graph_ ? graph_->doGetEdgePoints(edge, n) : nullptr;
    PolylineFrames frames;
    frames.compute(points, n, closed);
    return frames;
}

// ---------------------------------------------------------------------------
// GPU tubes

void SpatialGraphViewNode::makeGpuTubes(const SpatialGraphSelection* visible) {
    if (!visible || !graph_) {
        return;
    }
    removeGpuTubes();
    int numEdges = graph_->doGetNumEdges();
    tubeSet_->setNumLines(static_cast<unsigned int>(numEdges));
    for (int e = 0; e < numEdges; ++e) {
        int n = 0;
        const Vec3f* points = graph_->doGetEdgePoints(e, n);
        tubeSet_->setLine(static_cast<unsigned int>(e), n, points);
    }
    tubeSet_->visible.setAll(numEdges, false);
    uint8_t* bits = tubeSet_->visible.startEditing();
    for (int e = 0; e < std::min(numEdges, visible->getNumEdges()); ++e) {
        bits[e] = visible->isSelectedEdge(e) ? 1 : 0;
    }
    tubeSet_->visible.finishEditing();
    tubeSeparator_->addChild(tubeSet_);
}

void SpatialGraphViewNode::makeHighlightedTubes(const SpatialGraphSelection* highlighted,
                                                const SpatialGraphSelection* visible) {
    if (!highlighted || !visible) {
        return;
    }
    int n = static_cast<int>(tubeSet_->getNumLines());
    tubeSet_->highlighted.setAll(n, false);
    uint8_t* bits = tubeSet_->highlighted.startEditing();
    for (int e = 0; e < std::min({n, highlighted->getNumEdges(), visible->getNumEdges()}); ++e) {
        bits[e] = highlighted->isSelectedEdge(e) && visible->isSelectedEdge(e) ? 1 : 0;
    }
    tubeSet_->highlighted.finishEditing();
    tubeSet_->setHighlightColor(highlightColor_);
}

void SpatialGraphViewNode::removeGpuTubes() {
    tubeSeparator_->removeAllChildren();  // the tube set itself is kept
}

void SpatialGraphViewNode::setTubeColorAttribute(const GraphAttribute* attr) {
    if (!attr || !graph_) {
        tubeSet_->setConstantColor(true);
        tubeSet_->touch();
        return;
    }
    tubeSet_->setConstantColor(false);
    int numEdges = std::min(graph_->doGetNumEdges(), static_cast<int>(tubeSet_->getNumLines()));
    if (const auto* points = dynamic_cast<const PointAttribute*>(attr)) {
        tubeSet_->setColorPerLine(false);
        auto* values = const_cast<PointAttribute*>(points);  // borrowed by the tube set, never written
        for (int e = 0; e < numEdges; ++e) {
            if (points->getPrimType().getType() == PrimType::FLOAT32) {
                tubeSet_->setLineColors(static_cast<unsigned int>(e), values->floatDataAtPoint(e, 0));
            } else {
                tubeSet_->setLineColors(static_cast<unsigned int>(e), values->intDataAtPoint(e, 0));
            }
        }
    } else {
        tubeSet_->setColorPerLine(true);
        // Deliberate: a float edge attribute sets per-line mode but passes no values.
        if (attr->getPrimType().getType() == PrimType::INT32) {
            tubeSet_->setUniformColorsPerLine(static_cast<const int*>(attr->dataPtr()));
        }
    }
    tubeSet_->touch();
}

void SpatialGraphViewNode::setTubeScaleAttribute(const GraphAttribute* attr) {
    const auto* radii = dynamic_cast<const PointAttribute*>(attr);
    if (!radii || radii->getPrimType().getType() != PrimType::FLOAT32 || !graph_) {
        tubeSet_->setConstantRadius(true);
        tubeSet_->touch();
        return;
    }
    tubeSet_->setConstantRadius(false);
    auto* values = const_cast<PointAttribute*>(radii);  // borrowed by the tube set, never written
    int numEdges = std::min(graph_->doGetNumEdges(), static_cast<int>(tubeSet_->getNumLines()));
    for (int e = 0; e < numEdges; ++e) {
        tubeSet_->setLineRadii(static_cast<unsigned int>(e), values->floatDataAtPoint(e, 0));
    }
    tubeSet_->touch();
}

void SpatialGraphViewNode::setTubeScaleFactor(float f) {
    tubeSet_->setTubeScale(f);
    tubeSet_->touch();
}

void SpatialGraphViewNode::setTubeConstantColor(const SbColor& c) {
    tubeSet_->setUniformLineColor(c);
    tubeSet_->touch();
}

void SpatialGraphViewNode::setTubeColormapDataWindow(float minValue, float maxValue) {
    tubeSet_->setColormapDataWindow(minValue, maxValue);
    tubeSet_->touch();
}

void SpatialGraphViewNode::setTubeColormap(const KxColormap* colormap) {
    if (!colormap) {
        return;
    }
    tubeSet_->setColormap(*colormap);
    tubeSet_->setColormapDataWindow(colormap->getMinCoord(), colormap->getMaxCoord());
    tubeSet_->setConstantColor(false);
    tubeSet_->touch();
}

// ---------------------------------------------------------------------------
// Legacy tubes

void SpatialGraphViewNode::makeLegacyTubes(const SpatialGraphSelection* visible,
                                           const GraphAttribute* colorAttr, const GraphAttribute* radiusAttr,
                                           float scale, bool noLabelColors) {
    if (!visible || !graph_) {
        return;
    }
    removeLegacyTubes();
    const auto* radii = dynamic_cast<const PointAttribute*>(radiusAttr);
    if (radii && radii->getPrimType().getType() != PrimType::FLOAT32) {
        radii = nullptr;
    }
    const auto* pointColors = dynamic_cast<const PointAttribute*>(colorAttr);
    bool labels = false;
    HashTable<int, SbColor> table;
    bool colourByValue = prepareValueColors(colorAttr, noLabelColors, edgeColormapPort_, labels, table);

    // The fields are sized once and filled in place: no per-face growth, no
    // intermediate copies, and normals given so that Coin computes none.
    const int numEdges = std::min(graph_->doGetNumEdges(), visible->getNumEdges());
    auto drawn = [&](int e) { return visible->isSelectedEdge(e) && graph_->doGetNumEdgePoints(e) >= 2; };
    int numRings = 0, numTubes = 0;
    for (int e = 0; e < numEdges; ++e) {
        if (drawn(e)) {
            numRings += graph_->doGetNumEdgePoints(e);
            ++numTubes;
        }
    }
    const int numFaces = (numRings - numTubes) * (kProfilePoints - 1);
    auto* coords = new SoCoordinate3;
    auto* normals = new SoNormal;
    auto* faces = new SoIndexedFaceSet;
    auto* material = new SoMaterial;
    auto* binding = new SoMaterialBinding;
    coords->point.setNum(numRings * kProfilePoints);
    normals->vector.setNum(numRings * kProfilePoints);
    faces->coordIndex.setNum(5 * numFaces);
    if (pointColors) {
        material->diffuseColor.setNum(std::max(numRings * kProfilePoints, 1));
    } else {
        material->diffuseColor.setNum(std::max(numTubes, 1));
        faces->materialIndex.setNum(numFaces);
    }
    SbVec3f* vertex = coords->point.startEditing();
    SbVec3f* normal = normals->vector.startEditing();
    int32_t* index = faces->coordIndex.startEditing();
    SbColor* colour = material->diffuseColor.startEditing();
    int32_t* faceColour = pointColors ? nullptr : faces->materialIndex.startEditing();
    colour[0] = edgeDefaultColor_;
    int numVertices = 0, numColours = 0;
    for (int e = 0; e < numEdges; ++e) {
        if (!drawn(e)) {
            continue;
        }
        int m = 0;
        const Vec3f* points = graph_->doGetEdgePoints(e, m);
        const PolylineFrames frames = edgeFrames(e, false);
        const int32_t base = numVertices;
        for (int i = 0; i < m; ++i) {
            float r = radii ? std::max(radii->getFloatDataAtPoint(e, i), 0.0f) : 1.0f;
            SbColor pointColour = pointColors && colourByValue
                                      ? valueColor(colorAttr, e, i, labels, table, edgeColormapPort_)
                                      : edgeDefaultColor_;
            for (int j = 0; j < kProfilePoints; ++j) {
                SbVec3f q = profilePoint(j);
                SbVec3f outward = SbVec3f(frames.normals[i]) * q[0] + SbVec3f(frames.binormals[i]) * q[1];
                vertex[numVertices] = SbVec3f(points[i]) + outward * (scale * r);
                normal[numVertices] = outward * 2.0f;  // the profile's radius is 0.5
                if (pointColors) {
                    colour[numVertices] = pointColour;
                }
                ++numVertices;
            }
        }
        if (!pointColors) {
            colour[numColours++] = colourByValue
                                       ? valueColor(colorAttr, e, 0, labels, table, edgeColormapPort_)
                                       : edgeDefaultColor_;
        }
        // Quads between neighbouring rings, wound counter-clockwise seen from outside.
        for (int i = 0; i + 1 < m; ++i) {
            for (int j = 0; j + 1 < kProfilePoints; ++j) {
                int32_t a = base + i * kProfilePoints + j, b = a + kProfilePoints;
                for (int32_t v : {a, b, b + 1, a + 1, -1}) {
                    *index++ = v;
                }
                if (faceColour) {
                    *faceColour++ = numColours - 1;
                }
            }
        }
    }
    coords->point.finishEditing();
    normals->vector.finishEditing();
    faces->coordIndex.finishEditing();
    material->diffuseColor.finishEditing();
    auto* normalBinding = new SoNormalBinding;
    normalBinding->value = SoNormalBinding::PER_VERTEX_INDEXED;  // through coordIndex
    if (pointColors) {
        binding->value = SoMaterialBinding::PER_VERTEX_INDEXED;
        faces->materialIndex.setValues(0, faces->coordIndex.getNum(), faces->coordIndex.getValues(0));
    } else {
        faces->materialIndex.finishEditing();
        binding->value = SoMaterialBinding::PER_FACE_INDEXED;
    }
    auto* hints = new SoShapeHints;
    hints->vertexOrdering = SoShapeHints::COUNTERCLOCKWISE;
    hints->shapeType = SoShapeHints::SOLID;
    hints->creaseAngle = 0.8f;
    for (SoNode* node :
         {static_cast<SoNode*>(hints), static_cast<SoNode*>(material), static_cast<SoNode*>(binding),
          static_cast<SoNode*>(normals), static_cast<SoNode*>(normalBinding), static_cast<SoNode*>(coords),
          static_cast<SoNode*>(faces)}) {
        legacyTubeSeparator_->addChild(node);
    }
}

void SpatialGraphViewNode::removeLegacyTubes() {
    // The legacy-tube separator keeps its own draw style as first child.
    while (legacyTubeSeparator_->getNumChildren() > 1) {
        legacyTubeSeparator_->removeChild(legacyTubeSeparator_->getNumChildren() - 1);
    }
}
