// Frame time of the GPU tubes (SoTubeSet) against the legacy tubes of faces
// and against Coin's own triangle strips carrying the same triangles, on
// graphs of N edges of 20 points, rendered offscreen (llvmpipe here).
//
// Goals: SoTubeSet at least 5x faster than the legacy tubes, and within 1.3x
// of the triangle strips.

#include <benchmark/benchmark.h>

#include <cmath>
#include <memory>
#include <random>

#include <Inventor/nodes/SoCoordinate3.h>
#include <Inventor/nodes/SoIndexedTriangleStripSet.h>
#include <Inventor/nodes/SoNormal.h>
#include <Inventor/nodes/SoNormalBinding.h>
#include <Inventor/nodes/SoSeparator.h>

#include "korva/data/KxColormap.h"
#include "korva/inventor/KxInventor.h"
#include "korva/modules/KxPortColormap.h"
#include "korva/viewer/KxOffscreenRenderer.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/PointAttribute.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"
#include "kxspatialgraph/view/SoTubeSet.h"
#include "kxspatialgraph/view/SpatialGraphViewNode.h"
#include "support/SoTubeSetTestAccess.h"

namespace {

const int kPointsPerEdge = 20;
const int kImageSize = 400;

// numEdges random walks of 20 points inside a cube of side 100.
std::unique_ptr<KxSpatialGraph> makeGraph(int numEdges) {
    auto graph = std::make_unique<KxSpatialGraph>();
    std::mt19937 random(7);
    std::uniform_real_distribution<float> start(0.0f, 100.0f), step(-1.0f, 1.0f);
    DArray<Vec3f> points(kPointsPerEdge);
    for (int e = 0; e < numEdges; ++e) {
        Vec3f p(start(random), start(random), start(random));
        for (int i = 0; i < kPointsPerEdge; ++i) {
            points[i] = p;
            p += Vec3f(step(random), step(random), step(random));
        }
        int s = graph->addVertex(points[0]);
        int t = graph->addVertex(points[kPointsPerEdge - 1]);
        graph->addEdge(s, t, points);
    }
    return graph;
}

// Renders the scene once to upload, then times one frame per iteration.
void timeFrames(benchmark::State& state, SoNode* scene) {
    KxOffscreenRenderer renderer(kImageSize, kImageSize);
    scene->ref();
    renderer.render(scene);
    for (auto _ : state) {
        renderer.render(scene);
    }
    scene->unref();
    state.counters["edges"] = static_cast<double>(state.range(0));
}

void BM_GpuTubes(benchmark::State& state) {
    KxInventor::init();
    auto graph = makeGraph(static_cast<int>(state.range(0)));
    SpatialGraphSelection visible(graph->getNumVertices(), graph->getNumEdges());
    visible.selectAllVerticesAndEdges();
    SpatialGraphViewNode node(graph->getSpatialGraphInterface());
    node.makeGpuTubes(&visible);
    node.setTubeScaleFactor(0.3f);
    timeFrames(state, node.getSpatialGraphNode());
}

void BM_LegacyTubes(benchmark::State& state) {
    KxInventor::init();
    auto graph = makeGraph(static_cast<int>(state.range(0)));
    SpatialGraphSelection visible(graph->getNumVertices(), graph->getNumEdges());
    visible.selectAllVerticesAndEdges();
    SpatialGraphViewNode node(graph->getSpatialGraphInterface());
    node.makeLegacyTubes(&visible, nullptr, nullptr, 0.6f, false);
    timeFrames(state, node.getSpatialGraphNode());
}

// The tube set's own triangles as one SoIndexedTriangleStripSet per graph.
void BM_CoinTriangleStrips(benchmark::State& state) {
    KxInventor::init();
    SoTubeSet::initClass();
    auto graph = makeGraph(static_cast<int>(state.range(0)));
    auto* tubes = new SoTubeSet;
    tubes->ref();
    tubes->setNumLines(static_cast<unsigned int>(graph->getNumEdges()));
    for (int e = 0; e < graph->getNumEdges(); ++e) {
        int n = 0;
        const Vec3f* points = graph->getEdgePoints(e, n);
        tubes->setLine(static_cast<unsigned int>(e), n, points);
    }
    SoTubeSetTestAccess::generateTubeGeometry(*tubes);
    const std::vector<Vec3f>& vertices = SoTubeSetTestAccess::tubeVertices(*tubes);
    auto* coords = new SoCoordinate3;
    coords->point.setNum(static_cast<int>(vertices.size()));
    auto* normals = new SoNormal;
    normals->vector.setNum(static_cast<int>(vertices.size()));
    SbVec3f* xyz = coords->point.startEditing();
    SbVec3f* normal = normals->vector.startEditing();
    for (int e = 0; e < graph->getNumEdges(); ++e) {
        // Vertex j·m + i of a line sits around point i; the normal points away from it.
        unsigned int base =
            SoTubeSetTestAccess::tubeIndices(*tubes)[SoTubeSetTestAccess::firstIndex(*tubes, e)];
        for (int j = 0; j < tubes->getTubeComplexity(); ++j) {
            for (int i = 0; i < kPointsPerEdge; ++i) {
                unsigned int v = base + j * kPointsPerEdge + i;
                Vec3f p = graph->getEdgePoint(e, i);
                Vec3f q = p + (vertices[v] - p) * 0.3f;
                xyz[v] = q;
                normal[v] = vertices[v] - p;
            }
        }
    }
    coords->point.finishEditing();
    normals->vector.finishEditing();
    auto* strips = new SoIndexedTriangleStripSet;
    std::vector<int32_t> index;
    index.reserve(SoTubeSetTestAccess::tubeIndices(*tubes).size() + graph->getNumEdges());
    for (int e = 0; e < graph->getNumEdges(); ++e) {
        const unsigned int* first =
            &SoTubeSetTestAccess::tubeIndices(*tubes)[SoTubeSetTestAccess::firstIndex(*tubes, e)];
        index.insert(index.end(), first, first + SoTubeSetTestAccess::indexCount(*tubes, e));
        index.push_back(-1);
    }
    strips->coordIndex.setValues(0, static_cast<int>(index.size()), index.data());
    strips->normalIndex.setValues(0, static_cast<int>(index.size()), index.data());
    auto* binding = new SoNormalBinding;
    binding->value = SoNormalBinding::PER_VERTEX_INDEXED;
    auto* root = new SoSeparator;
    root->addChild(coords);
    root->addChild(normals);
    root->addChild(binding);
    root->addChild(strips);
    tubes->unref();
    timeFrames(state, root);
}

// A float point attribute "value" = point index, coloured over [0, 19].
struct ColouredGraph {
    std::unique_ptr<KxSpatialGraph> graph;
    GraphAttribute* values;
    KxColormap colormap;
    KxPortColormap port;
    SpatialGraphSelection visible;

    explicit ColouredGraph(int numEdges) : graph(makeGraph(numEdges)) {
        auto* attr = static_cast<PointAttribute*>(
            graph->addAttribute("value", KxSpatialGraph::POINT, PrimType::FLOAT32, 1));
        for (int e = 0; e < graph->getNumEdges(); ++e) {
            for (int p = 0; p < kPointsPerEdge; ++p) {
                attr->setFloatDataAtPoint(static_cast<float>(p), e, p);
            }
        }
        values = attr;
        const float rgba[] = {0, 0, 1, 1, 1, 0, 0, 1};
        colormap = KxColormap(2, rgba, 0.0f, 19.0f);
        port.setColormap(&colormap);
        visible.resize(graph->getNumVertices(), graph->getNumEdges());
        visible.selectAllVerticesAndEdges();
    }
};

// Recolouring by an attribute and drawing the next frame: the GPU path sends
// one float per vertex; the legacy path rebuilds its faces.
void BM_RecolourGpuTubes(benchmark::State& state) {
    KxInventor::init();
    ColouredGraph coloured(static_cast<int>(state.range(0)));
    SpatialGraphViewNode node(coloured.graph->getSpatialGraphInterface());
    node.makeGpuTubes(&coloured.visible);
    node.setTubeScaleFactor(0.3f);
    node.setTubeColormap(&coloured.colormap);
    KxOffscreenRenderer renderer(kImageSize, kImageSize);
    SoNode* scene = node.getSpatialGraphNode();
    renderer.render(scene);
    for (auto _ : state) {
        node.setTubeColorAttribute(coloured.values);
        renderer.render(scene);
    }
}

void BM_RecolourLegacyTubes(benchmark::State& state) {
    KxInventor::init();
    ColouredGraph coloured(static_cast<int>(state.range(0)));
    SpatialGraphViewNode node(coloured.graph->getSpatialGraphInterface());
    node.setEdgeColormapPort(&coloured.port);
    KxOffscreenRenderer renderer(kImageSize, kImageSize);
    SoNode* scene = node.getSpatialGraphNode();
    node.makeLegacyTubes(&coloured.visible, coloured.values, nullptr, 0.6f, false);
    renderer.render(scene);
    for (auto _ : state) {
        node.makeLegacyTubes(&coloured.visible, coloured.values, nullptr, 0.6f, false);
        renderer.render(scene);
    }
}

}  // namespace

BENCHMARK(BM_RecolourGpuTubes)->Arg(10000)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_RecolourLegacyTubes)->Arg(10000)->Unit(benchmark::kMillisecond)->Iterations(2);

// Few iterations: a 100 k-edge frame takes seconds on a software renderer.
BENCHMARK(BM_GpuTubes)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_LegacyTubes)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(2);
BENCHMARK(BM_CoinTriangleStrips)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond)->Iterations(2);
