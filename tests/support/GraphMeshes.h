#pragma once

#include <vector>

#include "korva/korvamesh/KorvaMesh.h"

// KorvaMesh files of graph content built by hand, for the readers' tests. The
// meshes point into the objects' own arrays, so an object must outlive the
// writes of its mesh.

// A skeleton given as neighbour lists; point i lies at (i, 0, 0) and has
// radius 0.5 + i; types[i] lists its material entries.
struct Skeleton {
    std::vector<std::vector<int>> neighbours;
    std::vector<std::vector<int>> types;
    bool withRadii = true;

    std::vector<float> coords, radii;
    std::vector<int> counts, lists, typeCounts, typeList;
    KorvaMesh mesh;

    KorvaMesh& build() {
        const int n = static_cast<int>(neighbours.size());
        for (int i = 0; i < n; ++i) {
            coords.insert(coords.end(), {static_cast<float>(i), 0, 0});
            radii.push_back(0.5f + i);
            counts.push_back(static_cast<int>(neighbours[i].size()));
            lists.insert(lists.end(), neighbours[i].begin(), neighbours[i].end());
            if (!types.empty()) {
                typeCounts.push_back(static_cast<int>(types[i].size()));
                typeList.insert(typeList.end(), types[i].begin(), types[i].end());
            }
        }
        const KorvaMesh::Location* v = mesh.createLocation("Vertices", n);
        const KorvaMesh::Location* e = mesh.createLocation("Edges", static_cast<int64_t>(lists.size()));
        mesh.createData("Coordinates", v, PrimType::FLOAT32, 3, coords.data());
        mesh.createData("NeighbourCount", v, PrimType::INT32, 1, counts.data());
        mesh.createData("NeighbourList", e, PrimType::INT32, 1, lists.data());
        if (withRadii) {
            mesh.createData("Radii", v, PrimType::FLOAT32, 1, radii.data());
        }
        if (!types.empty()) {
            mesh.createData("vertexTypeCounter", v, PrimType::INT32, 1, typeCounts.data());
            const KorvaMesh::Location* t =
                mesh.createLocation("vertexTypeList", static_cast<int64_t>(typeList.size()));
            mesh.createData("vertexTypeList", t, PrimType::INT32, 1, typeList.data());
        }
        return mesh;
    }
};

// The legacy layout of an old file: three vertices, two edges (3 and 2
// points), labels on vertices, edges and the graph, and the optional data.
//   0 --[3]-- 1 --[2]-- 2
struct LegacyMesh {
    KorvaMesh mesh;
    float vertices[9] = {0, 0, 0, 1, 0, 0, 2, 0, 0};
    int ends[4] = {0, 1, 1, 2};
    int counts[2] = {3, 2};
    float points[15] = {0, 0, 0, 0.5f, 0.1f, 0, 1, 0, 0, 1, 0, 0, 2, 0, 0};
    int vertexLabels[3] = {0, 1, 2};
    int edgeLabels[2] = {2, 1};
    // Vertex values first, then edge values; 1 is the old undefined label.
    int graphLabels[5] = {1, 2, 8, 1, 7};
    int graphInts[5] = {10, 11, 12, 20, 21};
    float pointFloats[5] = {0.1f, 0.2f, 0.3f, 0.4f, 0.5f};

    LegacyMesh() {
        const KorvaMesh::Location* v = mesh.createLocation("Vertices", 3);
        const KorvaMesh::Location* e = mesh.createLocation("Edges", 2);
        const KorvaMesh::Location* p = mesh.createLocation("EdgePoints", 5);
        mesh.createData("VertexCoordinates", v, PrimType::FLOAT32, 3, vertices);
        mesh.createData("EdgeConnectivity", e, PrimType::INT32, 2, ends);
        mesh.createData("NumEdgePoints", e, PrimType::INT32, 1, counts);
        mesh.createData("EdgePointCoordinates", p, PrimType::FLOAT32, 3, points);
    }
    void addOptionalData() {
        mesh.createData("VertexLabel", mesh.findLocation("Vertices"), PrimType::INT32, 1, vertexLabels);
        mesh.createData("EdgeLabel", mesh.findLocation("Edges"), PrimType::INT32, 1, edgeLabels);
        const KorvaMesh::Location* g = mesh.createLocation("Graph", 5);
        mesh.createData("GraphLabel", g, PrimType::INT32, 1, graphLabels);
        mesh.createData("GraphIntData", g, PrimType::INT32, 1, graphInts);
        mesh.createData("EdgePointFloatData", mesh.findLocation("EdgePoints"), PrimType::FLOAT32, 1,
                        pointFloats);
    }
    // A label bundle with its undefined child first, then the given children.
    KxParamBundle* addGroup(const char* name, const char* undefined, std::vector<const char*> children) {
        KxParamBundle* group = mesh.getParameters().addBundle(name);
        if (undefined) {
            group->addBundle(undefined)->setColor(Color(0.25f, 0.5f, 0.75f));
        }
        for (const char* child : children) {
            KxParamBundle* b = group->addBundle(child);
            b->setColor(Color(1, 0, 0));
            b->setInt("Id", 99);
        }
        return group;
    }
};
