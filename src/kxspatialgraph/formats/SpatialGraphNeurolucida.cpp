#include "kxspatialgraph/formats/SpatialGraphNeurolucida.h"

#include <ostream>

#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxSafeFile.h"
#include "kxspatialgraph/formats/NeurolucidaStreamer.h"
#include "kxspatialgraph/formats/SpatialGraphKorvaMesh.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/KxSpatialGraphInterface.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"

namespace {

const char* const kHeader =
    ";   V3 text file written for MicroBrightField products\n"
    ";   This file was made from a spatial graph of the Korva application\n"
    ";   The graph was produced by the kxspatialgraph reconstruction tools\n"
    ";   The export extension was programmed by the kxspatialgraph developers\n"
    ";   The reconstruction tools were programmed by the kxspatialgraph developers\n"
    ";   Made in cooperation between the Korva project\n"
    ";   and the users of the kxspatialgraph package\n";

// True when vertex is the only vertex of its component and has an edge: a
// closed loop. Only a vertex whose edges are all loops can be alone in its
// component, so the component is computed for those alone and a large tree
// costs one pass over the incidence lists.
bool isContour(const KxSpatialGraphInterface* graph, int vertex) {
    const SmallArray<int, 2>& incident = graph->doGetIncidentEdges(vertex);
    if (incident.size() == 0) {
        return false;
    }
    for (int i = 0; i < incident.size(); ++i) {
        if (graph->doGetEdgeSource(incident[i]) != vertex || graph->doGetEdgeTarget(incident[i]) != vertex) {
            return false;
        }
    }
    SpatialGraphSelection component = graph->doGetConnectedComponent(vertex);
    return component.getNumSelectedVertices() == 1 && component.getNumSelectedEdges() > 0;
}

}  // namespace

void SpatialGraph2Neurolucida(const KxSpatialGraphInterface* graph, std::ostream& out) {
    out << kHeader;
    const int numVertices = graph->doGetNumVertices();
    SpatialGraphSelection contours(numVertices, graph->doGetNumEdges());
    for (int v = 0; v < numVertices; ++v) {
        if (isContour(graph, v)) {
            contours.selectVertex(v);
        }
    }
    // Deliberate: a loop of fewer than three points writes no contour, and
    // then no closing line either; a closing bracket without its opening one
    // would make the whole file unreadable.
    for (int v = 0; v < numVertices; ++v) {
        if (contours.isSelectedVertex(v) && graph->doGetNumEdgePoints(graph->doGetIncidentEdges(v)[0]) >= 3) {
            out << NeurolucidaStreamer(graph, v, &contours, NeurolucidaStreamer::CONTOUR)
                << ") ; End of contour\n";
        }
    }
    SpatialGraphSelection trees(numVertices, graph->doGetNumEdges());
    for (int v = 0; v < numVertices; ++v) {
        if (graph->doGetIncidentEdges(v).size() == 1 && !contours.isSelectedVertex(v) &&
            !trees.isSelectedVertex(v)) {
            out << NeurolucidaStreamer(graph, v, &trees, NeurolucidaStreamer::TREE) << ") ; End of Object\n";
        }
    }
}

int saveNeurolucidaASCII(const KxSpatialGraphInterface* graph, const char* filename) {
    if (!graph) {
        theMsg->printf("Error: no graph to write to %s.", filename);
        return 0;
    }
    KxSafeFile file(filename, "Neurolucida file");
    if (!file.open()) {
        return 0;
    }
    SpatialGraph2Neurolucida(graph, file.stream());
    return file.commit() ? 1 : 0;
}

int kxspatialgraphWriteNeurolucida(KxData* data, const char* filename) {
    const KxSpatialGraphInterface* graph = spatialGraphToWrite(data, "Neurolucida");
    return graph ? saveNeurolucidaASCII(graph, filename) : 0;
}
