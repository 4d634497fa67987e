// korva distance FILE --ref X Y Z | --edge E --point P -o OUT: the distance
// along the graph from a reference point (coordinates snapped to the nearest
// edge point, or an edge point by number) to every point of its component,
// saved as the point attribute "DistanceToPoint" of a copy of the graph in
// the format OUT's extension names. It drives the module through its console
// commands, as a script would.

#include <cstring>
#include <string>

#include <tcl.h>

#include "KorvaSession.h"
#include "KorvaSubcommand.h"
#include "korva/core/KxData.h"
#include "korva/core/KxFileFormatRegistry.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObjectPool.h"
#include "korva/core/KxTclInterpreter.h"

namespace {

std::string tclWord(const char* text) {
    const char* argv[] = {text};
    char* merged = Tcl_Merge(1, argv);
    std::string word = merged;
    Tcl_Free(merged);
    return word;
}

struct DistanceCall {
    const char* file = nullptr;
    const char* out = nullptr;
    std::string reference;  // the arguments of setRefPoint
};

bool isNumber(const char* word) {
    double d = 0.0;
    return Tcl_GetDouble(nullptr, word, &d) == TCL_OK;
}

bool parseCall(int argc, char** argv, DistanceCall& call) {
    int edge = -1;
    for (int i = 0; i < argc; ++i) {
        if (std::strcmp(argv[i], "--ref") == 0 && i + 3 < argc && call.reference.empty() && edge < 0) {
            for (int k = 1; k <= 3; ++k) {
                if (!isNumber(argv[i + k])) {
                    return false;
                }
                call.reference += std::string(k > 1 ? " " : "") + argv[i + k];
            }
            i += 3;
        } else if (std::strcmp(argv[i], "--edge") == 0 && i + 1 < argc && call.reference.empty()) {
            edge = ++i;
        } else if (std::strcmp(argv[i], "--point") == 0 && i + 1 < argc && edge >= 0) {
            call.reference = tclWord(argv[edge]) + " " + tclWord(argv[++i]);
        } else if (std::strcmp(argv[i], "-o") == 0 && i + 1 < argc) {
            call.out = argv[++i];
        } else if (!call.file && argv[i][0] != '-') {
            call.file = argv[i];
        } else {
            return false;
        }
    }
    return call.file && call.out && !call.reference.empty();
}

int runDistance(KorvaSession& session, int argc, char** argv) {
    DistanceCall call;
    if (!parseCall(argc, argv, call)) {
        return KorvaSubcommand::find("distance")->usage();
    }
    KxData* graph = KorvaSession::loadFirst(call.file, "KxSpatialGraph", "spatial graph");
    if (!graph) {
        return 1;
    }
    KxTclInterpreter& tcl = session.tcl();
    std::string script = "set m [create KxComputeDistanceToPoint]\n$m data connect " +
                         tclWord(graph->getLabel()) + "\n$m setRefPoint " + call.reference + "\n$m create";
    if (tcl.eval(script.c_str()) != TCL_OK) {
        session.printErrorMessage();
        return 1;
    }
    KxData* result = theObjectPool->findData(tcl.result().c_str());
    if (!result) {
        theMsg->printf("Error: No distances computed for %s.", call.file);
        return 1;
    }
    const KxFileFormat* format = theFileFormats->findWriter(call.out, result);
    if (!format) {
        theMsg->printf("Error: No format writes %s to files named like %s.", result->getTypeName(), call.out);
        return 1;
    }
    return theFileFormats->save(*format, result, call.out) ? 0 : 1;
}

KorvaSubcommand::Registrar registrar{
    "distance", "FILE --ref X Y Z | --edge E --point P -o OUT",
    "distance along a graph to a reference point, saved as \"DistanceToPoint\"", runDistance};

}  // namespace
