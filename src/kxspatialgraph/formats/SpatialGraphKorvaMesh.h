#pragma once

class KorvaMesh;
class KxData;
class KxSpatialGraph;
class KxSpatialGraphInterface;

// Spatial graphs from parsed KorvaMesh objects: the current layout (locations
// "VERTEX", "EDGE", "POINT"), written by KxSpatialGraph::saveKorvaMesh,
// and the legacy layout ("Vertices", "Edges", "EdgePoints", "Graph").

// A new graph built from mesh, or null after the "expecting at least" line
// when the required arrays are missing. A legacy mesh goes to the legacy
// converter. Point counts that reach past the stored edge points are refused
// with an error line too. The caller owns the result.
KxSpatialGraph* readKorvaMeshToSpatialGraph(const KorvaMesh& mesh, const char* filename);

// readKorvaMeshToSpatialGraph, then adds the graph to the object pool under the
// file's name. 1 on success, 0 (nothing added) on failure.
int readKorvaMesh(const KorvaMesh& mesh, const char* filename);

// The legacy converter: a new graph, or null when the vertex coordinates,
// connectivity, point counts or edge points are missing or do not fit.
KxSpatialGraph* readLegacyKorvaMeshToSpatialGraph(const KorvaMesh& mesh, const char* filename);

// The read-only interface of data when it is a spatial graph; otherwise null
// after "Error: <format> files hold spatial graphs, not <type>.".
const KxSpatialGraphInterface* spatialGraphToWrite(KxData* data, const char* format);

// Registers graph in the object pool under filename's last path component
// and answers 1; answers 0 for a null graph.
int registerSpatialGraph(KxSpatialGraph* graph, const char* filename);
