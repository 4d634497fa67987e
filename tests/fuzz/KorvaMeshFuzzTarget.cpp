// The reader's fuzz entry: any bytes must give either a mesh and no message,
// or null and exactly one "Error: " line; anything else (and any crash or
// sanitizer report) is a fault.
#include <cstdint>
#include <cstdlib>

#include "korva/core/KxMessageCapture.h"
#include "korva/korvamesh/KorvaMesh.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    KxMessageCapture capture;
    std::unique_ptr<KorvaMesh> mesh =
        KorvaMesh::readFromMemory(reinterpret_cast<const char*>(data), size, "fuzz");
    bool clean = mesh ? capture.lines().empty() : capture.numErrors() == 1 && capture.lines().size() == 1;
    if (!clean) {
        std::abort();
    }
    return 0;
}
