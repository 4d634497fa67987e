#include "kxspatialgraph/view/SoTubeSet.h"

#include <algorithm>
#include <cmath>

#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/elements/SoModelMatrixElement.h>
#include <Inventor/elements/SoProjectionMatrixElement.h>
#include <Inventor/elements/SoViewingMatrixElement.h>
#include <Inventor/elements/SoViewportRegionElement.h>
#include <Inventor/misc/SoContextHandler.h>

#include "korva/data/KxColormap.h"
#include "korva/gl/KxShaderProgram.h"
#include "korva/inventor/KxInventor.h"
#include "kxspatialgraph/view/PolylineFrames.h"

namespace {

const int kColormapEntries = 256;

}  // namespace

std::mutex SoTubeSet::classMutex;

SO_NODE_SOURCE(SoTubeSet);

void SoTubeSet::initClass() {
    std::lock_guard<std::mutex> lock(classMutex);
    if (classTypeId != SoType::badType()) {
        return;
    }
    KxInventor::init();
    SO_NODE_INIT_CLASS(SoTubeSet, SoShape, "Shape");
}

SoTubeSet::SoTubeSet() {
    {
        std::lock_guard<std::mutex> lock(classMutex);
        SO_NODE_CONSTRUCTOR(SoTubeSet);
    }
    SO_NODE_ADD_FIELD(visible, (1));
    SO_NODE_ADD_FIELD(highlighted, (0));
    colormap_.assign(4 * kColormapEntries, 1.0f);
    generateExtrusionGeometry();
    program_ = KxShaderProgram::create("kxspatialgraph", "spatialgraphTubes_vert.glsl",
                                       "spatialgraphTubes_frag.glsl");
    if (program_) {
        program_->bindAttribLocation("centerCoord", CENTER_LOCATION);
        program_->bindAttribLocation("radius", RADIUS_LOCATION);
        program_->bindAttribLocation("colorValue", COLOR_LOCATION);
        program_->bindAttribLocation("capNormal", CAP_NORMAL_LOCATION);
        program_->bindAttribLocation("capAxisX", CAP_AXIS_X_LOCATION);
        program_->bindAttribLocation("capAxisY", CAP_AXIS_Y_LOCATION);
        program_->setUniform("scale", scale_);
        program_->setUniform("min", colormapMin_);
        program_->setUniform("range", colormapRange_);
        program_->setUniform("colormap", 0);
        program_->enableClipPlanes(true);
    }
    SoContextHandler::addContextDestructionCallback(contextDestroyedCB, this);
}

SoTubeSet::~SoTubeSet() {
    SoContextHandler::removeContextDestructionCallback(contextDestroyedCB, this);
    // GL names can only be freed with their context current: Coin frees
    // them the next time each context renders.
    for (auto& [contextId, group] : contexts_) {
        SoGLCacheContextElement::scheduleDeleteCallback(
            static_cast<uint32_t>(contextId),
            [](void* data, uint32_t) { GLFree(static_cast<GLContextGroup*>(data)); }, group.release());
    }
}

void SoTubeSet::setNumLines(unsigned int n) {
    numLines_ = n;
    pointCounts_.assign(n, 0);
    points_.assign(n, nullptr);
    radii_.assign(n, nullptr);
    floatColors_.assign(n, nullptr);
    intColors_.assign(n, nullptr);
    visible.setAll(static_cast<int>(n), true);
    highlighted.setAll(static_cast<int>(n), false);
    geometryDirty_ = true;
    keptPointsValid_ = false;
    keptBegin_.clear();
}

void SoTubeSet::setLine(unsigned int line, int count, const Vec3f* points) {
    if (line >= numLines_) {
        return;
    }
    pointCounts_[line] = points ? std::max(count, 0) : 0;
    points_[line] = points;
    geometryDirty_ = true;
    keptPointsValid_ = false;
    keptBegin_.clear();
}

void SoTubeSet::setLineRadii(unsigned int line, const float* radii) {
    if (line < numLines_) {
        radii_[line] = radii;
        radiiDirty_ = true;
    }
}

void SoTubeSet::setLineColors(unsigned int line, const float* values) {
    if (line < numLines_) {
        floatColors_[line] = values;
        intColors_[line] = nullptr;
        colorsDirty_ = true;
    }
}

void SoTubeSet::setLineColors(unsigned int line, const int* values) {
    if (line < numLines_) {
        intColors_[line] = values;
        floatColors_[line] = nullptr;
        colorsDirty_ = true;
    }
}

void SoTubeSet::setTubeScale(float scale) {
    scale_ = scale;
    if (program_) {
        program_->setUniform("scale", scale);
    }
}

void SoTubeSet::setColormapDataWindow(float minValue, float maxValue) {
    colormapMin_ = minValue;
    colormapRange_ = maxValue - minValue;
    if (program_) {
        program_->setUniform("range", colormapRange_);
        program_->setUniform("min", colormapMin_);
    }
}

void SoTubeSet::setColormap(const KxColormap& colormap) {
    for (int i = 0; i < kColormapEntries; ++i) {
        SbColor c = colormap.getColorAtFraction(static_cast<float>(i) / (kColormapEntries - 1));
        float* entry = &colormap_[4 * i];
        entry[0] = c[0];
        entry[1] = c[1];
        entry[2] = c[2];
        entry[3] = c[0];  // Deliberate: the fourth float repeats red; the program reads only RGB.
    }
    std::lock_guard<std::mutex> lock(mutex_);
    for (auto& entry : contexts_) {
        entry.second->colormapDirty = true;
    }
}

void SoTubeSet::setTubeComplexity(int k) {
    if (k <= 2) {
        return;
    }
    complexity_ = k;
    generateExtrusionGeometry();
    geometryDirty_ = true;
}

void SoTubeSet::generateExtrusionGeometry() {
    // Deliberate: for odd k the last step overshoots to a full turn.
    int half = complexity_ / 2;
    profile_.resize(complexity_);
    for (int i = 0; i < complexity_; ++i) {
        double angle = i * M_PI / half;
        profile_[i] = Vec3f(static_cast<float>(std::cos(angle)), static_cast<float>(std::sin(angle)), 1.0f);
    }
}

SbColor SoTubeSet::getLineColor(unsigned int line) const {
    if (highlighted.test(static_cast<int>(line))) {
        return highlightColor_;
    }
    if (constantColor_ || !colorPerLine_ || !perLineValues_) {
        return uniformColor_;
    }
    float scale = colormapRange_ > 0.0f ? 1.0f / colormapRange_ : 0.0f;
    float t = std::clamp((static_cast<float>(perLineValues_[line]) - colormapMin_) * scale, 0.0f, 1.0f);
    int index = static_cast<int>(std::lround((kColormapEntries - 1) * t));
    const float* entry = &colormap_[4 * index];
    return SbColor(entry[0], entry[1], entry[2]);
}

float SoTubeSet::pointRadius(unsigned int line, int point) const {
    return radii_[line] ? radii_[line][point] : 1.0f;
}

float SoTubeSet::pointColorValue(unsigned int line, int point) const {
    if (floatColors_[line]) {
        return floatColors_[line][point];
    }
    return intColors_[line] ? static_cast<float>(intColors_[line][point]) : 0.0f;
}

// ---------------------------------------------------------------------------
// Context bookkeeping

SoTubeSet::GLContextGroup* SoTubeSet::prepareContext(int contextId, bool* created) {
    if (created) {
        *created = false;
    }
    if (numLines_ == 0) {
        return nullptr;
    }
    std::lock_guard<std::mutex> lock(mutex_);
    std::unique_ptr<GLContextGroup>& group = contexts_[contextId];
    if (!group) {
        group = std::make_unique<GLContextGroup>();  // everything dirty: a new context uploads all
        if (created) {
            *created = true;
        }
    }
    // The CPU side follows the node's flags once; every context then uploads.
    if (geometryDirty_) {
        layoutTubes();
        generateCapGeometry();
        radiiDirty_ = colorsDirty_ = true;
    }
    if (radiiDirty_) {
        updateCapRadii();
    }
    if (colorsDirty_) {
        updateCapColors();
    }
    bool geometry = geometryDirty_, radii = radiiDirty_, colors = colorsDirty_;
    for (auto& entry : contexts_) {
        entry.second->geometryDirty |= geometry;
        entry.second->radiiDirty |= radii;
        entry.second->colorsDirty |= colors;
    }
    geometryDirty_ = radiiDirty_ = colorsDirty_ = false;
    return group.get();
}

int SoTubeSet::getNumContextGroups() const {
    std::lock_guard<std::mutex> lock(mutex_);
    return static_cast<int>(contexts_.size());
}

SoTubeSet::GLContextGroup* SoTubeSet::findContextGroup(int contextId) const {
    std::lock_guard<std::mutex> lock(mutex_);
    auto it = contexts_.find(contextId);
    return it == contexts_.end() ? nullptr : it->second.get();
}

void SoTubeSet::contextDestroyedCB(uint32_t contextId, void* data) {
    auto* self = static_cast<SoTubeSet*>(data);
    std::unique_ptr<GLContextGroup> group;
    {
        std::lock_guard<std::mutex> lock(self->mutex_);
        auto it = self->contexts_.find(static_cast<int>(contextId));
        if (it == self->contexts_.end()) {
            return;
        }
        group = std::move(it->second);
        self->contexts_.erase(it);
    }
    GLFree(group.release());  // the dying context is current
}

// ---------------------------------------------------------------------------
// CPU geometry

void SoTubeSet::keepAllPoints() {
    keptBegin_.assign(numLines_ + 1, 0);
    keptPoints_.clear();
    for (unsigned int line = 0; line < numLines_; ++line) {
        keptBegin_[line] = static_cast<unsigned int>(keptPoints_.size());
        for (int i = 0; i < pointCounts_[line]; ++i) {
            keptPoints_.push_back(i);
        }
    }
    keptBegin_[numLines_] = static_cast<unsigned int>(keptPoints_.size());
}

// Keeps each line's ends, and an inner point when its window position lies a
// pixel or more from that of the last point kept. A point behind the eye is
// kept, and so is the one after it.
void SoTubeSet::keepPointsOnScreen(const SbMatrix& worldToScreen, const SbVec2s& viewport) {
    const float halfWidth = 0.5f * viewport[0], halfHeight = 0.5f * viewport[1];
    scratchKept_.clear();
    std::vector<unsigned int> begin(numLines_ + 1, 0);
    for (unsigned int line = 0; line < numLines_; ++line) {
        begin[line] = static_cast<unsigned int>(scratchKept_.size());
        const int m = pointCounts_[line];
        const Vec3f* p = points_[line];
        bool lastOnScreen = false;
        float lastX = 0.0f, lastY = 0.0f;
        for (int i = 0; i < m; ++i) {
            SbVec4f clip;
            worldToScreen.multVecMatrix(SbVec4f(p[i].x, p[i].y, p[i].z, 1.0f), clip);
            const bool inFront = clip[3] > 0.0f;
            const float x = inFront ? halfWidth * clip[0] / clip[3] : 0.0f;
            const float y = inFront ? halfHeight * clip[1] / clip[3] : 0.0f;
            const float dx = x - lastX, dy = y - lastY;
            if (i == 0 || i == m - 1 || !inFront || !lastOnScreen || dx * dx + dy * dy >= 1.0f) {
                scratchKept_.push_back(i);
                lastOnScreen = inFront;
                lastX = x;
                lastY = y;
            }
        }
    }
    begin[numLines_] = static_cast<unsigned int>(scratchKept_.size());
    if (begin != keptBegin_ || scratchKept_ != keptPoints_) {
        keptBegin_.swap(begin);
        keptPoints_.swap(scratchKept_);
        geometryDirty_ = true;
    }
}

void SoTubeSet::updateKeptPoints(SoState* state) {
    if (!levelOfDetail_) {
        if (keptPointsValid_) {
            keptPointsValid_ = false;
            keptBegin_.clear();
            geometryDirty_ = true;
        }
        return;
    }
    const SbMatrix worldToScreen = SoModelMatrixElement::get(state) * SoViewingMatrixElement::get(state) *
                                   SoProjectionMatrixElement::get(state);
    const SbVec2s viewport = SoViewportRegionElement::get(state).getViewportSizePixels();
    if (keptPointsValid_ && worldToScreen == keptForMatrix_ && viewport == keptForViewport_) {
        return;
    }
    keepPointsOnScreen(worldToScreen, viewport);
    keptForMatrix_ = worldToScreen;
    keptForViewport_ = viewport;
    keptPointsValid_ = true;
}

void SoTubeSet::layoutTubes() {
    if (keptBegin_.size() != numLines_ + 1) {
        keepAllPoints();
    }
    const unsigned int k = static_cast<unsigned int>(complexity_);
    firstIndex_.assign(numLines_, 0);
    indexCount_.assign(numLines_, 0);
    vertexBase_.assign(numLines_, 0);
    size_t vertices = 0, indices = 0;
    for (unsigned int line = 0; line < numLines_; ++line) {
        const unsigned int m = keptBegin_[line + 1] - keptBegin_[line];
        vertexBase_[line] = static_cast<unsigned int>(vertices);
        firstIndex_[line] = static_cast<unsigned int>(indices);
        if (m > 0) {
            indexCount_[line] = 2 * k * m + k - 1;
            vertices += k * m;
            indices += indexCount_[line] + 1;  // and the restart index
        }
    }
    numTubeVertices_ = vertices;
    numTubeIndices_ = indices;
}

void SoTubeSet::writeTubes(Vec3f* vertices, float* centers, unsigned int* indices) const {
    const unsigned int k = static_cast<unsigned int>(complexity_);
    PolylineFrames frames;
    for (unsigned int line = 0; line < numLines_; ++line) {
        const int* kept = keptPoints_.data() + keptBegin_[line];
        const unsigned int m = keptBegin_[line + 1] - keptBegin_[line];
        if (m == 0) {
            continue;
        }
        const Vec3f* p = points_[line];
        const unsigned int base = vertexBase_[line];
        // Frames of every point, so that a kept point's ring is the one full detail gives it.
        frames.compute(p, pointCounts_[line], false);
        for (unsigned int j = 0; j < k; ++j) {
            for (unsigned int i = 0; i < m; ++i) {
                const int q = kept[i];
                const size_t v = base + j * m + i;
                vertices[v] = p[q] + profile_[j].x * frames.normals[q] + profile_[j].y * frames.binormals[q];
                std::copy(p[q].data(), p[q].data() + 3, centers + 3 * v);
            }
        }
        // One strip: band j joins side j to side j + 1 (the last band joins
        // back to side 0), alternating direction along the line. Each band
        // but the last ends with its last vertex repeated, so that the next
        // band, running the other way, starts on the other parity of the
        // strip and its triangles keep the outward winding.
        unsigned int* index = indices + firstIndex_[line];
        for (unsigned int j = 0; j < k; ++j) {
            unsigned int a = base + j * m, b = base + ((j + 1) % k) * m;
            for (unsigned int step = 0; step < m; ++step) {
                unsigned int i = j % 2 == 0 ? step : m - 1 - step;
                *index++ = a + i;
                *index++ = b + i;
            }
            if (j + 1 < k) {
                *index = index[-1];
                ++index;
            }
        }
        *index = kRestartIndex;
    }
}

void SoTubeSet::generateTubeGeometry() {
    layoutTubes();
    tubeVertices_.resize(numTubeVertices_);
    tubeCenters_.resize(3 * numTubeVertices_);
    tubeIndices_.resize(numTubeIndices_);
    writeTubes(tubeVertices_.data(), tubeCenters_.data(), tubeIndices_.data());
}

void SoTubeSet::generateCapGeometry() {
    capFrames_.assign(static_cast<size_t>(numLines_) * 18, 0.0f);
    capRecords_.assign(static_cast<size_t>(numLines_) * 8, 0.0f);
    capColorValues_.assign(static_cast<size_t>(numLines_) * 2, 0.0f);
    PolylineFrames frames;
    for (unsigned int line = 0; line < numLines_; ++line) {
        const int m = pointCounts_[line];
        const Vec3f* p = points_[line];
        if (m == 0) {
            continue;
        }
        frames.compute(p, m, false);
        for (int end = 0; end < 2; ++end) {
            int i = end == 0 ? 0 : m - 1;
            Vec3f outward = m > 1 ? (end == 0 ? p[0] - p[1] : p[m - 1] - p[m - 2]) : Vec3f(0, 0, 1);
            if (outward.normalize() <= 0.0f) {
                outward = Vec3f(0.0f, 0.0f, 1.0f);
            }
            float* frame = &capFrames_[18 * line + 9 * end];
            for (const Vec3f& v : {outward, frames.normals[i], frames.binormals[i]}) {
                frame = std::copy(v.data(), v.data() + 3, frame);
            }
            float* record = &capRecords_[8 * line + 4 * end];
            record[0] = p[i].x;
            record[1] = p[i].y;
            record[2] = p[i].z;
            record[3] = 1.0f;
        }
    }
}

std::vector<Vec3f> SoTubeSet::capFans() const {
    const unsigned int k = static_cast<unsigned int>(complexity_);
    std::vector<Vec3f> fans;
    for (int end = 0; end < 2; ++end) {
        fans.emplace_back(0.0f, 0.0f, 0.0f);
        for (unsigned int j = 0; j <= k; ++j) {
            const Vec3f& q = profile_[(end == 0 ? k - j : j) % k];
            fans.emplace_back(q.x, q.y, 0.0f);
        }
    }
    return fans;
}

void SoTubeSet::updateCapRadii() {
    for (unsigned int line = 0; line < numLines_ && 8 * line < capRecords_.size(); ++line) {
        int m = pointCounts_[line];
        if (m > 0) {
            capRecords_[8 * line + 3] = pointRadius(line, 0);
            capRecords_[8 * line + 7] = pointRadius(line, m - 1);
        }
    }
}

void SoTubeSet::updateCapColors() {
    for (unsigned int line = 0; line < numLines_ && 2 * line < capColorValues_.size(); ++line) {
        int m = pointCounts_[line];
        if (m > 0) {
            capColorValues_[2 * line] = pointColorValue(line, 0);
            capColorValues_[2 * line + 1] = pointColorValue(line, m - 1);
        }
    }
}

void SoTubeSet::computeBBox(SoAction*, SbBox3f& box, SbVec3f& center) {
    box.makeEmpty();
    float largestRadius = 0.0f;
    for (unsigned int line = 0; line < numLines_; ++line) {
        for (int i = 0; i < pointCounts_[line]; ++i) {
            box.extendBy(SbVec3f(points_[line][i]));
            if (!constantRadius_ && radii_[line]) {
                largestRadius = std::max(largestRadius, radii_[line][i]);
            }
        }
    }
    if (box.isEmpty()) {
        center.setValue(0.0f, 0.0f, 0.0f);
        return;
    }
    // Deliberate: the margin never drops below one scale unit.
    float margin = std::max(1.0f, largestRadius) * scale_;
    SbVec3f lo, hi;
    box.getBounds(lo, hi);
    box.setBounds(lo - SbVec3f(margin, margin, margin), hi + SbVec3f(margin, margin, margin));
    center = box.getCenter();
}
