// Pictures of a graph: the default scene `korva render` draws (GPU tubes, or
// the fallback tubes), rendered offscreen into a NumPy image and, if asked,
// written as PNG or JPEG by the same renderer.

#include <string>
#include <vector>

#include <Inventor/nodes/SoNode.h>
#include <pybind11/numpy.h>

#include "korva/core/KxMessageConsole.h"
#include "korva/viewer/KxOffscreenRenderer.h"
#include "korva/viewer/KxSceneBuilders.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "python/PyBindings.h"
#include "python/PyGraph.h"
#include "python/PySession.h"

namespace py = pybind11;

namespace {

// The largest side `korva render` accepts too.
constexpr int kMaxSize = 8192;

bool renderInto(KxSpatialGraph& graph, const KxSceneOptions& options, KxOffscreenRenderer& renderer,
                const std::string& path, std::vector<unsigned char>& pixels) {
    SoNode* scene = theSceneBuilders->build(&graph, options);
    if (!scene) {
        return false;
    }
    scene->ref();
    const bool rendered = renderer.render(scene);
    scene->unref();
    if (!rendered) {
        return false;
    }
    for (int y = 0; y < renderer.getHeight(); ++y) {
        for (int x = 0; x < renderer.getWidth(); ++x) {
            renderer.getPixel(x, y, &pixels[3 * (static_cast<size_t>(y) * renderer.getWidth() + x)]);
        }
    }
    return path.empty() || renderer.writeImage(path.c_str());
}

py::array_t<uint8_t> render(PyGraph& self, int width, int height, const std::string& color,
                            const py::object& pathArg) {
    if (width < 1 || width > kMaxSize || height < 1 || height > kMaxSize) {
        throw py::value_error("width and height must be 1 to " + std::to_string(kMaxSize) + " pixels");
    }
    const std::string path = pathArg.is_none() ? std::string() : py::str(pathArg).cast<std::string>();
    if (!path.empty() && !KxOffscreenRenderer::imageFormatOf(path.c_str())) {
        throw py::value_error(std::string("pictures are written as ") + KxOffscreenRenderer::kImageFormats);
    }
    std::vector<unsigned char> pixels(static_cast<size_t>(width) * height * 3);
    KxSceneOptions options;
    options.colorBy = color;
    PySession::run([&] {
        KxOffscreenRenderer renderer(width, height);
        return renderInto(self.graph(), options, renderer, path, pixels);
    });
    return py::array_t<uint8_t>({height, width, 3}, pixels.data());
}

}  // namespace

void bindRendering(PyGraphClass& graph) {
    graph.def("render", &render, py::arg("width") = 800, py::arg("height") = 600, py::arg("color") = "",
              py::arg("path") = py::none(),
              "Draws the graph as tubes offscreen, as `korva render` does, through a camera that "
              "frames it, and answers the picture as a height x width x 3 uint8 array (top row "
              "first). color names a point or edge attribute or label group to colour by (label "
              "colours, else a blue-to-red colormap). With path, also writes the picture as PNG "
              "(.png) or JPEG (.jpg, .jpeg).");
}
