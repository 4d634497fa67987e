// The SWC reader's fuzz entry: any bytes must give either a consistent graph
// and no error line, or null and exactly one "Error: " line; anything else
// (and any crash, hang or sanitizer report) is a fault.
#include <cstdint>
#include <cstdlib>
#include <memory>

#include "korva/core/KxMessageCapture.h"
#include "kxspatialgraph/formats/SpatialGraphSWC.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    KxMessageCapture capture;
    std::unique_ptr<KxSpatialGraph> graph(readSWC(reinterpret_cast<const char*>(data), size, "fuzz.swc"));
    bool clean = graph ? capture.numErrors() == 0 && graph->isConsistent() : capture.numErrors() == 1;
    if (!clean) {
        std::abort();
    }
    return 0;
}
