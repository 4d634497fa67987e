#include "kxspatialgraph/formats/NeurolucidaStreamer.h"

#include <ostream>
#include <vector>

#include "kxspatialgraph/formats/MorphologyTextWriter.h"
#include "kxspatialgraph/model/KxSpatialGraphInterface.h"
#include "kxspatialgraph/selection/SpatialGraphSelection.h"

int NeurolucidaStreamer::granularity = 4;

// A split still being written: its vertex, how many branches it announced and
// how many are written.
struct NeurolucidaStreamer::Split {
    int vertex = -1;
    int numBranches = 0;
    int numWritten = 0;
};

namespace {

// "(x -y -z  1" of a point line; the caller writes the comment.
void writeCoordinates(MorphologyTextWriter& file, const Vec3f& p) {
    file.character('(').general(p.x).character(' ').general(-p.y).character(' ').general(-p.z).text("  1");
}

}  // namespace

void NeurolucidaStreamer::write(MorphologyTextWriter& file) const {
    if (kind_ >= CONTOUR) {
        writeContour(file);
        return;
    }
    std::vector<Split> splits(1);
    if (!writeBranch(file, vertex_, kind_, splits.back())) {
        return;
    }
    while (!splits.empty()) {
        Split& split = splits.back();
        if (split.numWritten == split.numBranches) {
            file.text(") ; End of Split\n");
            splits.pop_back();
            continue;
        }
        file.text(++split.numWritten == 1 ? "(\n" : "|\n");
        Split inner;
        if (writeBranch(file, split.vertex, BRANCH, inner)) {
            splits.push_back(inner);
        }
    }
}

bool NeurolucidaStreamer::writeBranch(MorphologyTextWriter& file, int vertex, int kind, Split& split) const {
    visited_->selectVertex(vertex);
    const SmallArray<int, 2>& incident = graph_->doGetIncidentEdges(vertex);
    bool rootIsSource = false;
    if (kind == TREE) {
        file.text("( (Color White)\n(Axon)\n(Object)\n");
        if (incident.size() > 0) {
            int n = 0;
            const Vec3f* points = graph_->doGetEdgePoints(incident[0], n);
            rootIsSource = graph_->doGetEdgeSource(incident[0]) == vertex;
            if (n > 0) {
                writeCoordinates(file, points[rootIsSource ? 0 : n - 1]);
                file.text(") ; Root\n");
            }
        }
    }
    int edge = -1;
    for (int i = 0; i < incident.size() && edge < 0; ++i) {
        edge = visited_->isSelectedEdge(incident[i]) ? -1 : incident[i];
    }
    if (edge < 0) {
        return false;
    }
    const int n = graph_->doGetNumEdgePoints(edge);
    const bool forward = graph_->doGetEdgeSource(edge) == vertex || (kind == TREE && rootIsSource);
    int skipped = 0;
    int number = 0;
    for (int k = 1; k < n; ++k) {
        const bool last = k == n - 1;
        if (!last && skipped++ <= granularity) {
            continue;
        }
        skipped = 0;
        writeCoordinates(file, graph_->doGetEdgePoint(edge, forward ? k : n - 1 - k));
        file.text(") ; ").integer(++number).character('\n');
    }
    visited_->selectEdge(edge);
    const int far = forward ? graph_->doGetEdgeTarget(edge) : graph_->doGetEdgeSource(edge);
    // The far vertex's point is written too; selecting it keeps an end
    // vertex of a written tree from starting an object of its own.
    visited_->selectVertex(far);
    const SmallArray<int, 2>& farEdges = graph_->doGetIncidentEdges(far);
    if (farEdges.size() == 1) {
        file.text(" Normal\n");
        return false;
    }
    split = Split{far, 0, 0};
    for (int i = 0; i < farEdges.size(); ++i) {
        split.numBranches += visited_->isSelectedEdge(farEdges[i]) ? 0 : 1;
    }
    return true;
}

void NeurolucidaStreamer::writeContour(MorphologyTextWriter& file) const {
    const SmallArray<int, 2>& incident = graph_->doGetIncidentEdges(vertex_);
    int n = 0;
    const Vec3f* points = incident.size() > 0 ? graph_->doGetEdgePoints(incident[0], n) : nullptr;
    if (n < 3) {
        return;
    }
    file.text("(\"vessel\"\n(Color RGB(255, 0, 128))\n(Closed)\n");
    const int number = kind_ - 10;
    for (int p = 0; p <= n - 2; ++p) {
        writeCoordinates(file, points[p]);
        file.text(") ; ").integer(number).character(',').integer(p + 1);
        file.text(p == n - 2 ? " Closure point\n" : "\n");
    }
}

std::ostream& operator<<(std::ostream& out, const NeurolucidaStreamer& piece) {
    MorphologyTextWriter file(out);
    piece.write(file);
    return out;
}
