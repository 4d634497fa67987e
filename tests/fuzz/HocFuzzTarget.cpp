// The HOC reader's fuzz entry: any bytes must give either a graph, or null
// with the reader's line/tag error as the last message; anything else (and
// any crash or sanitizer report) is a fault.
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "korva/core/KxMessageCapture.h"
#include "kxspatialgraph/formats/SpatialGraphHOC.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    KxMessageCapture capture;
    std::unique_ptr<KxSpatialGraph> graph(
        loadHOCFromMemory(reinterpret_cast<const char*>(data), size, "fuzz"));
    const bool clean = graph || (!capture.lines().empty() &&
                                 capture.lines().back().compare(0, 26, "Error reading file at line") == 0);
    if (!clean) {
        std::abort();
    }
    return 0;
}
