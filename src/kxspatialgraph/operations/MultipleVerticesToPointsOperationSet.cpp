#include "kxspatialgraph/operations/MultipleVerticesToPointsOperationSet.h"

#include "korva/core/KxMessageConsole.h"
#include "kxspatialgraph/operations/VertexToPointOperation.h"

void MultipleVerticesToPointsOperationSet::build() {
    int converted = 0;
    for (int v = highlighted_.getNumVertices() - 1; v >= 0; --v) {
        if (!highlighted_.isSelectedVertex(v) || !canConvertToPoint(v)) {
            continue;
        }
        run(new VertexToPointOperation(graph_, selectionOfVertices(v), working()));
        ++converted;
    }
    theMsg->printf("Converted %d nodes to points", converted);
}
