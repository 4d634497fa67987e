#include "kxspatialgraph/KxSpatialGraphPackage.h"

#include "korva/core/KxClassRegistry.h"
#include "korva/data/KxColormap.h"
#include "korva/data/KxLineSet.h"
#include "korva/data/KxSpreadSheet.h"
#include "korva/data/KxUniformLabelField3.h"
#include "korva/modules/KxModule.h"
#include "kxspatialgraph/analysis/CastKxLineSetToKxSpatialGraph.h"
#include "kxspatialgraph/analysis/CastKxSpatialGraphToKxLineSet.h"
#include "kxspatialgraph/analysis/KxComputeDistanceToPoint.h"
#include "kxspatialgraph/analysis/KxLabelSpatialGraph.h"
#include "kxspatialgraph/analysis/KxSpatialGraphStats.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "kxspatialgraph/model/KxSpatialGraphEditCommands.h"
#include "kxspatialgraph/view/KxSpatialGraphView.h"
#include "kxspatialgraph/view/SpatialGraphDefaultScene.h"

namespace {
bool gInitialised = false;
}

extern "C" int korvapackage_kxspatialgraph_init() {
    if (gInitialised) {
        return 1;
    }
    gInitialised = true;
    // Classes register here with theClassRegistry->registerClass(...); file
    // formats are listed in resources/kxspatialgraph/kxspatialgraph.rc (docs/host.md).
    theClassRegistry->registerClass("KxSpatialGraph", "kxspatialgraph",
                                    []() -> KxObject* { return new KxSpatialGraph; });
    KxSpatialGraph::registerConsoleCommands();
    registerEditCommands();
    // The read-only interfaces are known by name but not created on their own:
    // a graph makes its own interface object.
    for (const char* name : {"KxSpatialGraphInterface", "KxSpatialGraphInterfaceImpl",
                             "KxSpatialGraphSelectionInterface", "KxSpatialGraphSelectionInterfaceImpl"}) {
        theClassRegistry->registerClass(name, "kxspatialgraph", nullptr);
    }
    // The host classes the package's modules work with, unless the host registered them.
    KxModule::registerClasses();
    KxSpreadSheet::registerClass();
    KxColormap::registerClass();
    KxSpatialGraphStats::registerClass();
    KxComputeDistanceToPoint::registerClass();
    KxLineSet::registerClass();
    CastKxLineSetToKxSpatialGraph::registerClass();
    CastKxSpatialGraphToKxLineSet::registerClass();
    KxUniformLabelField3::registerClass();
    KxLabelSpatialGraph::registerClass();
    KxSpatialGraphView::registerClass();
    SpatialGraphDefaultScene::registerBuilder();
    return 1;
}
