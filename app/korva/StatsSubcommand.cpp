// korva stats FILE [-o OUT.csv]: the segment statistics of a spatial graph
// (every table of the statistics module's spreadsheet) as CSV, on standard
// output or into OUT.csv. The module comes from the class registry, so the
// executable needs nothing of the package but its registration.

#include <cstdio>
#include <cstring>

#include "KorvaSession.h"
#include "KorvaSubcommand.h"
#include "korva/core/KxClassRegistry.h"
#include "korva/core/KxData.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObjectPool.h"
#include "korva/data/KxSpreadSheet.h"
#include "korva/modules/KxCompModule.h"
#include "korva/modules/KxPortButtonList.h"

namespace {

int runStats(KorvaSession&, int argc, char** argv) {
    const char* file = nullptr;
    const char* out = nullptr;
    for (int i = 0; i < argc; ++i) {
        if (std::strcmp(argv[i], "-o") == 0 && i + 1 < argc) {
            out = argv[++i];
        } else if (!file && argv[i][0] != '-') {
            file = argv[i];
        } else {
            return KorvaSubcommand::find("stats")->usage();
        }
    }
    if (!file) {
        return KorvaSubcommand::find("stats")->usage();
    }
    KxData* graph = KorvaSession::loadFirst(file, "KxSpatialGraph", "spatial graph");
    auto* stats = dynamic_cast<KxCompModule*>(theClassRegistry->createInstance("KxSpatialGraphStats"));
    if (!graph || !stats) {
        delete stats;
        return 1;
    }
    theObjectPool->add(stats);
    auto* doIt = dynamic_cast<KxPortButtonList*>(stats->findPort("doIt"));
    if (!doIt || !stats->portData.connect(graph)) {
        theMsg->printf("Error: The statistics module cannot measure %s.", file);
        return 1;
    }
    doIt->hit();
    stats->fire();
    auto* sheet = dynamic_cast<KxSpreadSheet*>(stats->getResult());
    if (!sheet) {
        theMsg->printf("Error: The statistics module gave no result for %s.", file);
        return 1;
    }
    if (out) {
        return sheet->exportCSV(out) ? 0 : 1;
    }
    std::string csv = sheet->toCSV();
    std::fwrite(csv.data(), 1, csv.size(), stdout);
    return std::fflush(stdout) == 0 ? 0 : 1;
}

KorvaSubcommand::Registrar registrar{
    "stats", "FILE [-o OUT.csv]",
    "segment lengths, radii and volumes of a graph, per segment and per label, as CSV", runStats};

}  // namespace
