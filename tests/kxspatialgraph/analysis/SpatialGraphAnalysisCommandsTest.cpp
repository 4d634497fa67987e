#include <cstdlib>
#include <string>

#include <gtest/gtest.h>

#include "korva/core/KxMessageCapture.h"
#include "korva/core/KxObjectPool.h"
#include "korva/core/KxTclInterpreter.h"
#include "kxspatialgraph/model/KxSpatialGraph.h"
#include "support/GraphFixtures.h"
#include "support/TclEval.h"

TEST(SpatialGraphAnalysisCommandsTest, LengthsOfEdgesAndOfTheGraph) {
    KxTclInterpreter tcl(*theObjectPool);
    auto g = GraphFixtures::makeChain(4);
    g->setEdgePoint(1, 1, Vec3f(1.5f, 0, 1.2f));  // edge 1 bends: 1.3 + 1.3
    theObjectPool->add(g.release(), "chain");
    EXPECT_NEAR(std::atof(evalOk(tcl, "chain edgeLength 1").c_str()), 2.6, 1e-5);
    EXPECT_NEAR(std::atof(evalOk(tcl, "chain totalLength").c_str()), 4.6, 1e-5);
    KxMessageCapture console;
    const char* wrong[] = {"chain edgeLength 3", "chain edgeLength x", "chain edgeLength",
                           "chain totalLength 1"};
    for (const char* script : wrong) {
        SCOPED_TRACE(script);
        std::string message = evalError(tcl, script);
        EXPECT_TRUE(message.rfind("Error: ", 0) == 0 || message.rfind("USAGE: ", 0) == 0) << message;
        EXPECT_TRUE(console.contains(message));
    }
    theObjectPool->clear();
}
