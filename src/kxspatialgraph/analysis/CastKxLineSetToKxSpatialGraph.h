#pragma once

#include <string>
#include <vector>

#include "korva/modules/KxCompModule.h"
#include "korva/modules/KxPortDoIt.h"
#include "korva/modules/KxPortMenu.h"

class KxLineSet;
class KxSpatialGraph;

// Turns a line set into a spatial graph when "action" is pressed: a vertex at
// every line end and at every point several lines share, edges between them
// carrying the points in between. Each data column becomes a float point
// attribute; with several columns, the one chosen in "mapToThickness" is
// named "thickness" and the others "Data<i>" (a single column is always
// "thickness"). The result is labelled with the input's label and "-SG".
class CastKxLineSetToKxSpatialGraph : public KxCompModule {
public:
    CastKxLineSetToKxSpatialGraph();

    const char* getTypeName() const override { return "CastKxLineSetToKxSpatialGraph"; }
    bool isOfType(const char* typeName) const override;

    // The graph of lineSet with point attributes named by names (a column
    // beyond the list is named "Data<i>"); prints "total branching points %d".
    // Null after an "Error: " line when a line refers to a missing point.
    static KxSpatialGraph* makeSpatialGraphWithAttrib(const KxLineSet& lineSet,
                                                      const std::vector<std::string>& names);
    static void registerClass();

    KxPortMenu portMapToThickness;
    KxPortDoIt portAction;

protected:
    void update() override;
    void compute() override;
};
