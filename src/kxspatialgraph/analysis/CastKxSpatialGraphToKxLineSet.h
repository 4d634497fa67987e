#pragma once

#include "korva/modules/KxCompModule.h"
#include "korva/modules/KxPortDoIt.h"

class GraphAttribute;
class KxLineSet;
class KxSpatialGraphInterface;

// Turns each edge of a spatial graph into one line of a new line set when
// "action" is pressed. Data columns: the point attribute "thickness" first,
// when valid, then every other valid point attribute (one component, float
// or 32-bit int, converted to float) in attribute order. The result is
// labelled with the input's label and "-LS".
class CastKxSpatialGraphToKxLineSet : public KxCompModule {
public:
    CastKxSpatialGraphToKxLineSet();

    const char* getTypeName() const override { return "CastKxSpatialGraphToKxLineSet"; }
    bool isOfType(const char* typeName) const override;

    static bool isValidAttribut(const GraphAttribute* attribute);
    static KxLineSet* makeLineSetFromSpatialGraph(const KxSpatialGraphInterface& graph);
    static void registerClass();

    KxPortDoIt portAction;

protected:
    void compute() override;
};
