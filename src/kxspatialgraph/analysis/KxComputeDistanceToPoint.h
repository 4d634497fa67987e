#pragma once

#include <string>

#include "korva/base/Vec3f.h"
#include "korva/modules/KxCompModule.h"
#include "korva/modules/KxPortButtonList.h"
#include "korva/modules/KxPortDoIt.h"
#include "korva/modules/KxPortGeneric.h"
#include "korva/modules/KxPortInfo.h"

class KxSpatialGraph;
struct KxPickEvent;

// Distance along a graph's polylines from a reference edge point to every
// edge point of the component that holds it. The reference is set by typed
// coordinates ("setReferencePoint" and its Apply item), by a middle-button
// pick in the viewer ("Start Picking", one pick), or by the console command
// setRefPoint; coordinates snap to the nearest edge point. Pressing "action"
// makes result 0: a copy of the graph with the float point attribute
// "DistanceToPoint" (unreached points hold the largest float).
class KxComputeDistanceToPoint : public KxCompModule {
public:
    KxComputeDistanceToPoint();
    ~KxComputeDistanceToPoint() override;

    const char* getTypeName() const override { return "KxComputeDistanceToPoint"; }
    bool isOfType(const char* typeName) const override;

    // The edge point nearest to p (the first of equally near ones, edges and
    // points in index order); answers its distance, or -1 (outputs left
    // alone) without a graph or edge points.
    static float findClosestPoint(const KxSpatialGraph* g, const Vec3f& p, int& edge, int& point);
    // Fills the point attribute values (flat, edge after edge) with the
    // distances from (edge, point) over the component of the edge's source
    // vertex; values of that component start at the largest float.
    static void computeDistances(const KxSpatialGraph* g, int edge, int point, float* values);

    int getRefEdge() const { return refEdge_; }
    int getRefPoint() const { return refPoint_; }
    bool isPicking() const { return pickId_ >= 0; }

    int parse(Tcl_Interp* interp, int argc, char** argv) override;
    void savePorts(std::string& out) const override;
    static void registerClass();

    KxPortInfo portReferencePoint;
    KxPortGeneric portSetReferencePoint;
    KxPortButtonList portPickReferencePoint;
    KxPortDoIt portAction;

    static constexpr int kApplyItem = 3;

protected:
    void update() override;
    void compute() override;

private:
    void addCallback();
    void removeCallback();
    void onPick(KxPickEvent& event);
    int setRefPoint(Tcl_Interp* interp, int argc, char** argv);
    void setFields(const Vec3f& p);

    int refEdge_ = -1;
    int refPoint_ = -1;
    int pickId_ = -1;
};
