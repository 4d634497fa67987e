#pragma once

#include <Inventor/SbColor.h>
#include <Inventor/SbMatrix.h>

#include "korva/base/DArray.h"
#include "korva/base/SmallArray.h"
#include "korva/base/String.h"
#include "korva/base/Vec3f.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"

class EdgeVertexAttribute;
class GraphAttribute;
class PointAttribute;

// Read-only view of a spatial graph. Writers, conversions and the display
// read graphs only through it. Every operation forwards to the graph
// operation of the same name without the "do" prefix; the slot order is part
// of the interface.
class KxSpatialGraphInterface {
public:
    virtual const char* getTypeName() const { return "KxSpatialGraphInterface"; }
    virtual ~KxSpatialGraphInterface() = default;

    virtual int doGetNumVertices() const = 0;
    virtual Vec3f doGetVertexCoords(int v) const = 0;
    virtual int doGetNumVertexAttributes() const = 0;
    virtual EdgeVertexAttribute* doGetVertexAttribute(int i) const = 0;
    virtual EdgeVertexAttribute* doFindVertexAttribute(const char* name) const = 0;
    virtual int doGetNumEdges() const = 0;
    virtual int doGetNumEdgePoints(int e) const = 0;
    virtual int doGetEdgeSource(int e) const = 0;
    virtual int doGetEdgeTarget(int e) const = 0;
    virtual int doGetNumEdgeAttributes() const = 0;
    virtual EdgeVertexAttribute* doGetEdgeAttribute(int i) const = 0;
    virtual EdgeVertexAttribute* doFindEdgeAttribute(const char* name) const = 0;
    virtual const Vec3f* doGetEdgePoints(int e, int& n) const = 0;
    virtual DArray<Vec3f> doGetEdgePoints(int e) const = 0;
    virtual Vec3f doGetEdgePoint(int e, int i) const = 0;
    virtual int doGetNumEdgePointAttributes() const = 0;
    virtual PointAttribute* doGetEdgePointAttribute(int i) const = 0;
    virtual PointAttribute* doFindEdgePointAttribute(const char* name) const = 0;
    virtual bool doHasLabel(const GraphAttribute* a) const = 0;
    virtual int doGetNumLabels(const GraphAttribute* a) const = 0;
    virtual bool doGetLabelName(const GraphAttribute* a, int id, String& name) const = 0;
    virtual bool doGetLabelColor(const GraphAttribute* a, int id, SbColor& color) const = 0;
    virtual int doGetMaxLabelId(const GraphAttribute* a) const = 0;
    virtual int doGetLabelId(const GraphAttribute* a, const String& name) const = 0;
    virtual const SmallArray<int, 2>& doGetIncidentEdges(int v) const = 0;
    virtual bool doIsConsistent() const = 0;
    virtual SbMatrix doGetTransform() const = 0;
    virtual void doGetTransform(SbMatrix& matrix) const = 0;
    virtual SpatialGraphSelection doGetConnectedComponent(int vertex) const = 0;
    // xmin, xmax, ymin, ymax, zmin, zmax.
    virtual void doGetBoundingBox(float* box) const = 0;
};
