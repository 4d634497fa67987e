#pragma once

#include <string>

#include "korva/modules/KxCompModule.h"
#include "korva/modules/KxPortDoIt.h"
#include "korva/modules/KxPortToggleList.h"

// Labels the edge points and/or vertices of a graph with the material of a
// label field at their positions when "action" is pressed. The result is a
// copy of the graph labelled "<input>_labeled" with the label groups and int
// attributes "Materials_Points" / "Materials_Nodes" (labels named and
// coloured after the field's materials); each element holds its voxel's
// label plus one. Console: `create` computes and answers the result's label.
class KxLabelSpatialGraph : public KxCompModule {
public:
    enum { POINT_TOGGLE = 0, NODE_TOGGLE = 1 };

    KxLabelSpatialGraph();

    const char* getTypeName() const override { return "KxLabelSpatialGraph"; }
    bool isOfType(const char* typeName) const override;

    static void registerClass();

    KxPortDoIt portAction;
    KxPortToggleList portLocation;
    KxConnection portLabelData;

protected:
    void compute() override;
};
