#pragma once

#include <cstdint>
#include <vector>

#include <Inventor/SbColor.h>

#include "korva/base/Box3f.h"
#include "korva/base/Color.h"
#include "korva/base/DArray.h"
#include "korva/base/HashTable.h"
#include "korva/base/PrimType.h"
#include "korva/base/SmallArray.h"
#include "korva/base/String.h"
#include "korva/base/TypedData2D.h"
#include "korva/base/TypedElement.h"
#include "korva/base/Vec3f.h"
#include "korva/core/KxSpatialData.h"
#include "kxspatialgraph/model/EdgePointsManager.h"
#include "kxspatialgraph/model/KxRangeSetDataImpl.h"
#include "kxspatialgraph/model/SpatialGraphEdge.h"

class EdgeVertexAttribute;
class GraphAttribute;
class HierarchicalLabels;
class KxInfoTags;
class KxParamBundle;
class KxSpatialGraphInterface;
class PointAttribute;
class SpatialGraphSelection;

// A graph embedded in 3-D space: vertices with coordinates, edges (source,
// target) carrying a polyline of edge points from the source's position to
// the target's, one incidence list per vertex, named attributes on vertices,
// edges and edge points, and label groups kept in the parameter bundle.
//
// The editing primitives are deliberately low-level: they do not validate
// indices, do not remove dependent elements (a vertex's edges go first) and
// do not announce changes; whoever edits calls touch() and fire() once after
// a batch. Removal shifts later elements down keeping their order; insertion
// shifts later elements up; new elements are appended. Every primitive keeps
// every attribute in step. isConsistent() is the one diagnostic.
class KxSpatialGraph : public KxSpatialData {
public:
    enum Location { VERTEX = 0, EDGE = 1, POINT = 2 };
    // "VERTEX", "EDGE" or "POINT": the word for a location in files and commands.
    static const char* locationName(Location loc);
    using IncidenceList = SmallArray<int, 2>;

    KxSpatialGraph();
    ~KxSpatialGraph() override;

    const char* getTypeName() const override { return "KxSpatialGraph"; }
    bool isOfType(const char* typeName) const override;
    // The read-only interface for "KxSpatialGraphInterface" (and its Impl).
    void* getInterface(const char* name) const override;

    // ---- Queries -------------------------------------------------------

    int getNumVertices() const { return coords_.size(); }
    int getNumEdges() const { return edges_.size(); }
    Vec3f getVertexCoords(int v) const { return coords_[v]; }
    // The coordinate triples of vertex v and all later vertices, contiguous.
    const float* getVertices(int v) const { return reinterpret_cast<const float*>(coords_.dataPtr() + v); }
    // Sets the coordinates only; edge end points are not moved.
    void setVertexCoords(int v, const Vec3f& c) { coords_[v] = c; }
    const SpatialGraphEdge& getEdge(int e) const { return edges_[e]; }
    int getEdgeSource(int e) const { return edges_[e].getSource(); }
    int getEdgeTarget(int e) const { return edges_[e].getTarget(); }
    // The edges touching v; a self-loop is listed twice.
    const IncidenceList& getIncidentEdges(int v) const { return incidence_[v]; }
    // True as soon as one edge of u's list has v as source or target.
    // Deliberate: hasEdge(u, u) is true whenever u has any edge, loop or not.
    bool hasEdge(int u, int v) const;
    KxSpatialGraphInterface* getSpatialGraphInterface() const { return interface_; }

    // ---- Edge points (the polylines) --------------------------------------
    // None of these moves an edge's end vertices; the consistency check
    // reports end points that no longer meet them.

    int getNumEdgePoints(int e) const { return points_.getNumEdgePoints(e); }
    int getTotalNumEdgePoints() const { return points_.getTotalNumEdgePoints(); }
    Vec3f getEdgePoint(int e, int i) const { return points_.getEdgePoint(e, i); }
    DArray<Vec3f> getEdgePoints(int e) const { return points_.getEdgePoints(e); }
    // Pointer into the flat point array, valid until the next edit.
    const Vec3f* getEdgePoints(int e, int& n) const { return points_.getEdgePoints(e, n); }
    void setEdgePoint(int e, int i, const Vec3f& p) { points_.setEdgePoint(e, i, p); }
    // Replaces edge e's points; point attributes resize e's block (a count
    // of 0 leaves them alone).
    void setEdgePoints(int e, const DArray<Vec3f>& pts);
    // Inserts pts before point i of edge e; point attributes get zero values there.
    void insertEdgePoints(int e, int i, const DArray<Vec3f>& pts);
    // Inserts counts[k] points, taken in order from pts, before point
    // at[k].pointNum of edge at[k].edgeNum (its point count appends), for
    // every k in one pass: at is ascending and free of duplicates. Point
    // attributes get zero values there. The bulk form of insertEdgePoints.
    void insertMultipleEdgePoints(const DArray<SpatialGraphPoint>& at, const DArray<int>& counts,
                                  const DArray<Vec3f>& pts);
    // Removes n points of edge e from point i, with their attribute values.
    void removeEdgePoints(int e, int i, int n);
    // The whole point storage, for passes over every point of every edge.
    const EdgePointsManager& getEdgePointsManager() const { return points_; }

    // ---- Editing primitives ----------------------------------------------

    // Appends a vertex with an empty incidence list; every vertex attribute
    // gets a zero value. Returns the new index.
    int addVertex(const Vec3f& c);
    // Appends an edge (s, t) with the points (coords of s, coords of t), or
    // with the given points. Returns the new index. Nothing is checked; an end
    // outside the vertex range is stored as given (the consistency check
    // reports it) but not entered into any incidence list.
    int addEdge(int s, int t);
    int addEdge(int s, int t, const DArray<Vec3f>& points);
    int addEdge(int s, int t, const Vec3f* points, int numPoints);
    // The bulk forms of addVertex and addEdge, for readers: n new vertices
    // with coords, or n new edges, edge k from ends[2k] to ends[2k + 1] with
    // pointCounts[k] points taken in order from points. Every array grows once
    // to its final size and is filled in one pass; attributes get zero values.
    // Nothing is checked, as with addEdge.
    void appendMultipleVertices(const Vec3f* coords, int n);
    void appendMultipleEdges(const int* ends, const int* pointCounts, const Vec3f* points, int n);

    // Removes vertex v; later vertices and edge ends above v move down. The
    // vertex must have no edges: an edge still attached keeps index v, which
    // now names the next vertex.
    void removeVertex(int v);
    // Removes edge e; every later edge index in every incidence list moves down.
    void removeEdge(int e);
    // Removes the listed vertices (ascending, no duplicates) in one pass. An
    // edge still attached to a removed vertex gets -1 as that end.
    void removeMultipleVertices(const DArray<int>& indices);
    // Removes the listed edges (ascending, no duplicates) in one pass over the
    // edges, points, attributes and incidence lists.
    void removeMultipleEdges(const DArray<int>& indices);

    // The inverses of the removals, for exact undo. Attribute values are
    // matched by attribute id: the k-th attribute of the location takes the
    // k-th entry of the values when its id occurs in attributeIds, otherwise
    // it gets a default. Deliberate: for an unsupplied vertex or edge
    // attribute the default comes from insertBefore(index, 1), which does
    // nothing at the end of the array, so an element inserted at the end gets
    // no value there.
    void insertVertex(int index, const Vec3f& c, const DArray<TypedElement>& values,
                      const DArray<int>& attributeIds);
    void insertEdge(int index, const SpatialGraphEdge& edge, const DArray<Vec3f>& points,
                    const DArray<TypedElement>& edgeValues, const DArray<int>& edgeAttributeIds,
                    const DArray<TypedData2D>& pointValues, const DArray<int>& pointAttributeIds);
    // indices (ascending) are the final positions of the new vertices; values
    // hold one TypedData2D per attribute with one row per new vertex.
    void insertMultipleVertices(const DArray<int>& indices, const DArray<Vec3f>& coords,
                                const DArray<TypedData2D>& values, const DArray<int>& attributeIds);
    // indices (ascending) are the final positions of the new edges; edgeValues
    // hold one TypedData2D per edge attribute (one row per new edge),
    // pointValues per point attribute one TypedData2D per new edge.
    void insertMultipleEdges(const DArray<int>& indices, const DArray<SpatialGraphEdge>& edges,
                             const DArray<DArray<Vec3f>>& points, const DArray<TypedData2D>& edgeValues,
                             const DArray<int>& edgeAttributeIds,
                             const DArray<DArray<TypedData2D>>& pointValues,
                             const DArray<int>& pointAttributeIds);

    // Reattach one end of edge e to vertex v; the end point of the polyline
    // moves to v's coordinates, the point count stays.
    void setEdgeSource(int e, int v);
    void setEdgeTarget(int e, int v);

    // Reserves capacity; counts never change. Point attributes reserve nothing.
    void setSizeHint(int numVertices, int numEdges, int numPoints);
    // Deletes label groups (access objects and their bundles) and
    // attributes, empties points, edges, incidence lists and coordinates,
    // clears the fixed bounding box. The transformation and the other
    // parameters stay.
    void clear();

    // ---- Consistency and reports -------------------------------------------

    // Checks every invariant, printing one "Error: ..." line per fault, and
    // does not stop at the first one. True if nothing was found.
    bool isConsistent() const;
    // "Data Class:" and the counts ("Nodes:/Segments:/Points:" in the Korva
    // skin, else "Vertices:/Edges:/Points:").
    void info(KxInfoTags& tags) const override;
    // Print to the console and return the printed lines.
    String printEdges() const;
    String printIncidentEdges() const;
    // "%d, %d": edge count first, vertex count second (deliberately).
    String getLoggingInfo() const;

    // ---- Attributes ----------------------------------------------------------

    // Returns the existing attribute of that name, location, type and nDataVar
    // unchanged; replaces one of that name with another type or nDataVar;
    // otherwise creates one with zero values. Null for an unknown location.
    GraphAttribute* addAttribute(const char* name, Location loc, PrimType type, int nDataVar);
    // As above, but the attribute's values are copied from values (which
    // must hold one value per element of the location) instead of zeroed.
    GraphAttribute* addAttribute(const char* name, Location loc, PrimType type, int nDataVar,
                                 const void* values);
    // First attribute of that location with exactly that name (case-sensitive); null if none.
    GraphAttribute* findAttribute(Location loc, const char* name) const;
    EdgeVertexAttribute* findVertexAttribute(const char* name) const;
    EdgeVertexAttribute* findEdgeAttribute(const char* name) const;
    PointAttribute* findEdgePointAttribute(const char* name) const;
    // 0 for an unknown location.
    int numAttributes(Location loc) const;
    // Null for an unknown location.
    GraphAttribute* attribute(Location loc, int i) const;
    int getNumVertexAttributes() const { return vertexAttributes_.size(); }
    int getNumEdgeAttributes() const { return edgeAttributes_.size(); }
    int getNumEdgePointAttributes() const { return pointAttributes_.size(); }
    EdgeVertexAttribute* getVertexAttribute(int i) const { return vertexAttributes_[i]; }
    EdgeVertexAttribute* getEdgeAttribute(int i) const { return edgeAttributes_[i]; }
    PointAttribute* getEdgePointAttribute(int i) const { return pointAttributes_[i]; }
    // The location an attribute of this graph lives at; -1 if it is not one of ours.
    int getAttributeLocation(const GraphAttribute* a) const;
    // Removes a from its list and deletes it. Its label group stays.
    void deleteAttribute(GraphAttribute* a);
    void deleteAttribute(Location loc, int i);
    // v parallel to the edge attribute list: value e of the k-th attribute = v[k].
    void setEdgeAttributeValues(int e, const DArray<TypedElement>& v);
    // v parallel to the point attribute list: edge e's block of the k-th attribute = v[k].
    void setPointAttributeValues(int e, const DArray<TypedData2D>& v);

    // ---- Label groups ----------------------------------------------------------
    // A label group is a sub-bundle of the graph's parameters named like the
    // group (and like the int attribute that holds its label ids). The graph
    // owns one HierarchicalLabels access object per registered group.

    // Creates the group's attributes (vertex and/or edge; a point attribute
    // only when neither is wanted nor present) and its bundle. Nothing new if
    // the group exists. Returns the group's access object.
    HierarchicalLabels* addNewLabelGroup(const char* name, bool edges, bool vertices, bool points);
    // Registers an access object for a bundle already among the parameters;
    // returns the registered object (the existing one if the name is taken).
    HierarchicalLabels* addExistingLabelGroup(KxParamBundle* bundle);
    // Takes ownership; ignored (and deleted) if the name is taken.
    void addLabelGroup(HierarchicalLabels* labels);
    HierarchicalLabels* getLabelGroup(const char* name) const;
    // The group named like the attribute; null for a null attribute.
    HierarchicalLabels* getLabelGroup(const GraphAttribute* a) const;
    const HashTable<const char*, HierarchicalLabels*>& getLabelGroups() const { return labelGroups_; }
    bool hasLabel(const GraphAttribute* a) const { return getLabelGroup(a) != nullptr; }
    // -1 (or false) when the attribute has no group.
    int getLabelId(const GraphAttribute* a, const String& name) const;
    int getMaxLabelId(const GraphAttribute* a) const;
    int getNumLabels(const GraphAttribute* a) const;
    bool getLabelName(const GraphAttribute* a, int id, String& name) const;
    bool getLabelColor(const GraphAttribute* a, int id, SbColor& color) const;
    void setLabelColor(const GraphAttribute* a, int id, const Color& color);
    int addLabel(const char* group, int parentId, const char* name, const SbColor& color);
    void relocateLabel(const char* group, int id, int targetId);
    // Moves group's bundle to the index targetGroup's bundle holds; false if either is missing.
    bool relocateLabelGroup(const char* group, const char* targetGroup);
    // Renames the group, its root label and its vertex and edge attributes.
    // Deliberate: a point attribute of the old name keeps its name. Nothing
    // happens when another group already has newName.
    void changeLabelGroupName(HierarchicalLabels* labels, const char* newName);
    // Deletes the access object, the group bundle and the vertex, edge and
    // point attributes of that name.
    void deleteLabelGroup(const char* name);
    // Pre-order numbering from firstId; returns the last id assigned.
    static int assignLabelIds(KxParamBundle* bundle, int firstId);
    // Sets "Id" of parent's child childName; warns and answers false if there is none.
    static bool assignChildLabelId(KxParamBundle* parent, const char* childName, int id);

    // ---- Traversal (KxSpatialGraphTraversal.cpp) -------------------------------
    // Every search visits edges in the order of the incidence lists and uses
    // an explicit stack or queue, so long chains cannot exhaust the stack.
    // Result selections are sized to the graph and hold vertices and edges
    // only. Start vertices outside the graph give empty results.

    // Selects vertex and, following the incidence lists in order, every edge
    // not yet selected and the vertex at its other end. Only edges count as
    // visited.
    void depthFirstSearch(int vertex, SpatialGraphSelection& selection) const;
    // As above, but follows an edge only when its value in the int edge
    // attribute is strictly above the threshold (strictly below when
    // decreasing), the edge's value becoming the threshold beyond it.
    void depthFirstSearch(int vertex, int threshold, const EdgeVertexAttribute* attribute,
                          SpatialGraphSelection& selection, bool decreasing) const;
    // Fewest-edges path from `from` to `to`: selects `to`, the vertices back
    // to `from` and between each pair the first joining edge of the nearer
    // vertex's incidence list. False with nothing selected when unreachable.
    bool breadthFirstSearch(int from, int to, SpatialGraphSelection& selection) const;
    // A new selection holding vertex's connected component.
    SpatialGraphSelection getConnectedComponent(int vertex) const;
    // A new selection holding the path of breadthFirstSearch; empty when unreachable.
    SpatialGraphSelection getShortestPath(int from, int to) const;
    // The subtrees climbing (or descending) the edge attribute "Ranks" from
    // an edge's ends, or from a vertex; empty when the graph has no "Ranks".
    SpatialGraphSelection getSubTreeByEdge(int edge, bool decreasing) const;
    SpatialGraphSelection getSubTreeByVertex(int vertex, bool decreasing) const;
    // The components touched by the selection: first those reached through
    // its selected edges, then through its remaining selected vertices.
    int getNumComponentsInSelection(const SpatialGraphSelection& selection) const;
    // A copy of the selection with every touched component added.
    SpatialGraphSelection getConnectedComponentFromSelection(const SpatialGraphSelection& selection) const;
    DArray<SpatialGraphSelection> getAllConnectedComponents(const SpatialGraphSelection& selection) const;
    // The components of the selection's vertices whose vertices and edges
    // all lie in the selection. Components reached only through selected
    // edges are not considered.
    SpatialGraphSelection getConnectedComponentsContainedInSelection(
        const SpatialGraphSelection& selection) const;
    // A new graph (owned by the caller) holding only the selected elements,
    // with their attributes and label groups: a duplicate with everything
    // else deleted. This graph is not changed.
    KxSpatialGraph* getSubgraph(const SpatialGraphSelection& selection) const;

    // ---- Fixed bounding box ----------------------------------------------------

    // Stores the box and sets the fixed-box flag; while it is set the stored
    // box is reported instead of a computed one.
    void setBoundingBox(const Box3f& box) {
        fixedBox_ = box;
        hasFixedBox_ = true;
    }
    bool hasFixedBoundingBox() const { return hasFixedBox_; }
    const Box3f& getStoredBoundingBox() const { return fixedBox_; }

    // ---- KorvaMesh files (KxSpatialGraphKorvaMesh.cpp) ----------------------

    enum class KorvaMeshEncoding { Binary, BinaryCompressed, Ascii };
    // Writes the graph in the KorvaMesh layout of docs/korvamesh.md, then
    // takes filename as load command and counts as saved. Deliberate: an
    // inconsistent graph gets "Error: Inconsistent spatialgraph!!!" and is
    // written anyway. 0 after an error line when the file cannot be written
    // (the old file then stays as it was), else 1.
    // Refuses, with an error line and the old file intact, a graph with an
    // attribute named like one of the layout's own arrays (it would be lost).
    int saveKorvaMesh(const char* filename, KorvaMeshEncoding encoding = KorvaMeshEncoding::Binary);
    // "VertexCoordinates", "EdgeConnectivity", "NumEdgePoints" and
    // "EdgePointCoordinates": in a file these are never attributes.
    static bool isKorvaMeshArrayName(const char* name);

    // ---- Copy, merge, transform, bounding boxes, range sets, console commands ----
    // (KxSpatialGraphCopy.cpp, KxSpatialGraphTransform.cpp, KxSpatialGraphCommands.cpp)

    // Makes this graph a copy of other: parameters (label group bundles
    // included), transformation, vertices, edges with their points, and the
    // attributes with their values and label groups. Attributes are created
    // in the order POINT, EDGE, VERTEX, so their new ids come in that order.
    void copyFrom(const KxSpatialGraph* other);
    // A new graph made by copyFrom(this); the caller owns it.
    KxSpatialGraph* duplicate() const override;
    // Appends other's vertices, edges and attribute values (matched by name),
    // other's coordinates brought into this graph's frame. Label groups are
    // not merged. The attributes of both graphs must agree in number, names,
    // types and components; otherwise prints the first mismatch as an
    // "Error: " line, changes nothing and answers false.
    bool merge(const KxSpatialGraph* other);
    // Moves every coordinate by the transformation, then resets it to identity.
    void applyTransform();
    // xmin, xmax, ymin, ymax, zmin, zmax of every edge point and vertex, each
    // transformed by the graph's transformation when asked. Deliberate: a
    // graph without edges, or one with a fixed box, reports the stored box
    // as it is.
    void computeBoundingBox(float* box, bool transformed) const;
    void getBoundingBox(float* box) const { computeBoundingBox(box, false); }
    void getBoundingBoxAfterTransform(float* box) const { computeBoundingBox(box, true); }
    void getBoundingBox(Box3f& box) const override { computeBoundingBox(box.data(), false); }
    // Box of the selected edges' points, the selected vertices and the listed
    // points, untransformed; the inverted infinite box for an empty selection.
    // Selected indices outside the graph are skipped.
    Box3f getBoundingBoxOfSelection(const SpatialGraphSelection& s) const;
    // (x, y, z, 1) times m, divided by the resulting w.
    static Vec3f transformPoint(const SbMatrix& m, const Vec3f& p);
    // The value ranges of single-component attributes, for colormap ports.
    const KxRangeSetDataImpl& getRangeSetData() const { return rangeSet_; }
    // "merge otherDataSet", "applyTransform", "help" and the building
    // commands of docs/spatialgraph-commands.md; others go to KxSpatialData.
    int parse(Tcl_Interp* interp, int argc, char** argv) override;
    // Makes the command words above known to the console's help.
    static void registerConsoleCommands();

protected:
    // The label groups follow the new bundle: each attribute with a sub-bundle
    // of its name has that group, as when the graph is read from a file; a
    // group whose bundle is gone is no more (its attributes stay).
    void parametersReplaced() override;

private:
    friend class KxSpatialGraphTestAccess;

    // Attribute bookkeeping: one helper per kind of change, called by every
    // editing primitive, so each primitive reads "change the topology; one
    // attribute call".
    void appendValues(DArray<EdgeVertexAttribute*>& list);
    void removeValue(DArray<EdgeVertexAttribute*>& list, int i);
    void insertValue(DArray<EdgeVertexAttribute*>& list, int index, bool append,
                     const DArray<TypedElement>& values, const DArray<int>& ids);
    void insertMultipleValues(DArray<EdgeVertexAttribute*>& list, const DArray<int>& indices,
                              const DArray<TypedData2D>& values, const DArray<int>& ids);
    void addPointBlocks(int numPoints);
    void removePointBlocks(int e);
    void insertPointBlock(int index, int numPoints, const DArray<TypedData2D>& values,
                          const DArray<int>& ids);
    void insertMultiplePointBlocks(const DArray<int>& indices, const DArray<DArray<Vec3f>>& points,
                                   const DArray<DArray<TypedData2D>>& values, const DArray<int>& ids);
    void deleteAllAttributes();
    void deleteAllLabelGroups();

    bool isVertex(int v) const { return v >= 0 && v < coords_.size(); }
    // Replaces every edge end v in 0 .. map size - 1 by map[v].
    void mapEdgeEnds(const DArray<int>& map);
    void attachEdge(int e, int v);
    // The checks of isConsistent(), one per invariant (KxSpatialGraphReports.cpp).
    bool checkEdgeEndsInRange() const;
    bool checkIncidenceLists() const;
    bool checkEdgePointCounts() const;
    bool checkEndPointsMeetVertices() const;
    bool checkValueCounts(const DArray<EdgeVertexAttribute*>& list, int count, const char* elements,
                          const char* element) const;
    bool checkPointValueCounts() const;
    int incidenceMultiplicity(int e, int v) const;
    std::vector<int> expectedDegrees() const;
    bool incidenceListMatches(int v, int degree, std::vector<uint8_t>& counts) const;
    bool incidenceEntriesMatch(int v, std::vector<uint8_t>& counts) const;
    // Edge ends at vertices 0 .. numLists - 1.
    int64_t numEdgeEndsBelow(int numLists) const;
    void reportIncidenceFaults(const std::vector<int>& faulty, const std::vector<int>& degree) const;
    // Prints the end-point error when point is farther than the tolerance
    // from vertex v; end is "source" or "target".
    bool endPointMatches(const char* end, int v, int e, const Vec3f& point) const;
    void detachEdge(int e, int v);

    DArray<Vec3f> coords_;
    DArray<SpatialGraphEdge> edges_;
    DArray<IncidenceList> incidence_;
    EdgePointsManager points_;
    DArray<EdgeVertexAttribute*> vertexAttributes_;
    DArray<EdgeVertexAttribute*> edgeAttributes_;
    DArray<PointAttribute*> pointAttributes_;
    HashTable<const char*, HierarchicalLabels*> labelGroups_;
    Box3f fixedBox_;
    bool hasFixedBox_ = false;
    KxSpatialGraphInterface* interface_ = nullptr;
    KxRangeSetDataImpl rangeSet_{this};
};
