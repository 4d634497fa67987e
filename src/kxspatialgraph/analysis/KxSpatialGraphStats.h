#pragma once

#include <string>

#include "korva/modules/KxCompModule.h"
#include "korva/modules/KxPortDoIt.h"

class KxSpatialGraph;
class KxSpreadSheet;
class PointAttribute;
class SpatialGraphSelection;
class String;

// Measures the selected edges (segments) of a graph when "doIt" is pressed:
// length along the polyline, mean radius and truncated-cone volume from the
// point attribute "thickness", and per label of every labelled edge
// attribute the sums of these. Result 0 is a spreadsheet with the table
// "Segment Statistics" and one table per labelled attribute. Console:
// `create` computes and answers the result's label.
class KxSpatialGraphStats : public KxCompModule {
public:
    struct SegmentMetrics {
        float length = 0.0f;
        float meanRadius = 0.0f;
        float volume = 0.0f;
    };

    KxSpatialGraphStats();

    const char* getTypeName() const override { return "KxSpatialGraphStats"; }
    bool isOfType(const char* typeName) const override;

    // Fills m for edge e; an edge without points leaves m unchanged.
    static void calcSegmentMetrics(const KxSpatialGraph* graph, int edge, SegmentMetrics& m);
    // The statistics of graph over selection (all edges when it is null or
    // empty) as tables added to sheet.
    static void computeTables(const KxSpatialGraph* graph, const SpatialGraphSelection* selection,
                              KxSpreadSheet& sheet);
    static const String unlabeledName;

    static void registerClass();

    KxConnection portSelection;
    KxPortDoIt portDoIt;

protected:
    void compute() override;
};
