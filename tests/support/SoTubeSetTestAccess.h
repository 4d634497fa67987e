#pragma once

#include <vector>

#include "kxspatialgraph/view/SoTubeSet.h"

// Reaches into a tube set's CPU geometry and per-context records, which the
// public interface keeps to itself, so that tests and benchmarks can check
// them without reading pixels.
class SoTubeSetTestAccess {
public:
    using ContextGroup = SoTubeSet::GLContextGroup;

    static const std::vector<Vec3f>& tubeVertices(const SoTubeSet& t) { return t.tubeVertices_; }
    static const std::vector<unsigned int>& tubeIndices(const SoTubeSet& t) { return t.tubeIndices_; }
    static unsigned int firstIndex(const SoTubeSet& t, unsigned int line) { return t.firstIndex_[line]; }
    static unsigned int indexCount(const SoTubeSet& t, unsigned int line) { return t.indexCount_[line]; }
    static void generateTubeGeometry(SoTubeSet& t) { t.generateTubeGeometry(); }
    static const float* capRecord(const SoTubeSet& t, unsigned int line, int end) {
        return t.getCapRecord(line, end);
    }
    static SbColor lineColor(const SoTubeSet& t, unsigned int line) { return t.getLineColor(line); }
    static const std::vector<float>& colormap(const SoTubeSet& t) { return t.colormap_; }
    static void setLevelOfDetail(SoTubeSet& t, bool on) { t.levelOfDetail_ = on; }
    static size_t numKeptPoints(const SoTubeSet& t) { return t.keptPoints_.size(); }

    static ContextGroup* prepareContext(SoTubeSet& t, int contextId, bool* created = nullptr) {
        return t.prepareContext(contextId, created);
    }
    static int numContextGroups(const SoTubeSet& t) { return t.getNumContextGroups(); }
    static ContextGroup* contextGroup(const SoTubeSet& t, int contextId) {
        return t.findContextGroup(contextId);
    }
    // What Coin calls when a context dies, with that context current. A
    // record that never rendered is dropped without any GL call.
    static void destroyContext(SoTubeSet& t, int contextId) {
        SoTubeSet::contextDestroyedCB(static_cast<uint32_t>(contextId), &t);
    }
};
