// Registers KorvaMesh::probeContentType with the host's file-format registry
// when libkorva is loaded, so that formats can claim KorvaMesh files by their
// "ContentType" parameter.
#include "korva/core/KxFileFormatRegistry.h"
#include "korva/korvamesh/KorvaMesh.h"

namespace {
const bool gProbeRegistered = [] {
    theFileFormats->addContentProbe(&KorvaMesh::probeContentType);
    return true;
}();
}  // namespace
