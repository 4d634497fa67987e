// korva trees FILE [-l] [-o OUT]: loads a spatial graph and prints its trees,
// their branch ranks, its loops and the lines that open them; -l adds one row
// per line, -o OUT saves the graph with the results as edge attributes (label
// group "Ranks", "Tree", "Loop") in the format OUT's extension names. The work
// is done by the kxspatialgraph package, resolved at run time like its formats.

#include <dlfcn.h>

#include <cstdio>
#include <cstring>
#include <vector>

#include "KorvaSession.h"
#include "KorvaSubcommand.h"
#include "korva/core/KxData.h"
#include "korva/core/KxFileFormatRegistry.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObjectPool.h"
#include "korva/core/KxPackageLoader.h"

namespace {

using ReportTrees = int (*)(KxData* data, FILE* out, int listLines, int label);

ReportTrees findReport() {
    std::string library = thePackageLoader->getLibraryPath("kxspatialgraph");
    void* handle = library.empty() ? nullptr : dlopen(library.c_str(), RTLD_NOW | RTLD_NOLOAD);
    void* entry = handle ? dlsym(handle, "kxspatialgraphReportTrees") : nullptr;
    if (!entry) {
        theMsg->printf("Error: the package kxspatialgraph is not loaded or cannot analyse trees.");
    }
    return reinterpret_cast<ReportTrees>(entry);
}

int runTrees(KorvaSession&, int argc, char** argv) {
    const char* file = nullptr;
    const char* out = nullptr;
    bool listLines = false;
    for (int i = 0; i < argc; ++i) {
        if (std::strcmp(argv[i], "-l") == 0) {
            listLines = true;
        } else if (std::strcmp(argv[i], "-o") == 0 && i + 1 < argc) {
            out = argv[++i];
        } else if (!file && argv[i][0] != '-') {
            file = argv[i];
        } else {
            return KorvaSubcommand::find("trees")->usage();
        }
    }
    if (!file) {
        return KorvaSubcommand::find("trees")->usage();
    }
    KxData* graph = KorvaSession::loadFirst(file, "KxSpatialGraph", "spatial graph");
    if (!graph) {
        return 1;
    }
    const KxFileFormat* format = out ? theFileFormats->findWriter(out, graph) : nullptr;
    if (out && !format) {
        theMsg->printf("Error: No format writes %s to files named like %s.", graph->getTypeName(), out);
        return 1;
    }
    ReportTrees report = findReport();
    if (!report || !report(graph, stdout, listLines, out != nullptr)) {
        return 1;
    }
    std::fflush(stdout);
    return !out || theFileFormats->save(*format, graph, out) ? 0 : 1;
}

KorvaSubcommand::Registrar registrar{"trees", "FILE [-l] [-o OUT]",
                                     "print the trees, ranks and loops of a graph; -o saves them with it",
                                     runTrees};

}  // namespace
