// SoTubeSet: GL upload and the draw passes. Runs with the context current.
#include <GL/glew.h>

#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/bundles/SoMaterialBundle.h>
#include <Inventor/elements/SoCacheElement.h>
#include <Inventor/elements/SoClipPlaneElement.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/elements/SoGLLazyElement.h>
#include <Inventor/misc/SoState.h>

#include "korva/gl/KxGLCapabilities.h"
#include "korva/gl/KxShaderProgram.h"
#include "kxspatialgraph/view/SoTubeSet.h"

namespace {

// A new store of bytes for the buffer, mapped for writing; null when empty
// or when the driver refuses.
void* mapNewBuffer(GLenum target, GLuint buffer, size_t bytes) {
    glBindBuffer(target, buffer);
    glBufferData(target, static_cast<GLsizeiptr>(bytes), nullptr, GL_STATIC_DRAW);
    return bytes > 0 ? glMapBuffer(target, GL_WRITE_ONLY) : nullptr;
}

void unmapBuffer(GLenum target, GLuint buffer, const void* mapped) {
    if (mapped) {
        glBindBuffer(target, buffer);
        glUnmapBuffer(target);
    }
}

// A new store of bytes for the buffer, filled from data.
template <class T>
void fillBuffer(GLuint buffer, const std::vector<T>& data) {
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    glBufferData(GL_ARRAY_BUFFER, static_cast<GLsizeiptr>(data.size() * sizeof(T)), data.data(),
                 GL_STATIC_DRAW);
}

// One value of `size` floats per vertex, or with a divisor of 1 per
// instance, from float `first` on, every `stride` floats (0: tightly packed).
void bindAttribute(GLuint location, GLuint buffer, GLint size, GLuint divisor = 0, size_t stride = 0,
                   size_t first = 0) {
    glBindBuffer(GL_ARRAY_BUFFER, buffer);
    glVertexAttribPointer(location, size, GL_FLOAT, GL_FALSE, static_cast<GLsizei>(stride * sizeof(float)),
                          reinterpret_cast<const void*>(first * sizeof(float)));
    glVertexAttribDivisorARB(location, divisor);
    glEnableVertexAttribArray(location);
}

// Turns back-face culling on or off for its lifetime, then puts back the
// state Coin left.
class FaceCulling {
public:
    explicit FaceCulling(bool on) : wasOn_(glIsEnabled(GL_CULL_FACE)) {
        glGetIntegerv(GL_CULL_FACE_MODE, &mode_);
        glGetIntegerv(GL_FRONT_FACE, &frontFace_);
        if (on) {
            // The strips and fans wind clockwise seen from outside.
            glEnable(GL_CULL_FACE);
            glCullFace(GL_BACK);
            glFrontFace(GL_CW);
        } else {
            glDisable(GL_CULL_FACE);
        }
    }
    ~FaceCulling() {
        (wasOn_ ? glEnable : glDisable)(GL_CULL_FACE);
        glCullFace(static_cast<GLenum>(mode_));
        glFrontFace(static_cast<GLenum>(frontFace_));
    }
    FaceCulling(const FaceCulling&) = delete;
    FaceCulling& operator=(const FaceCulling&) = delete;

private:
    GLboolean wasOn_;
    GLint mode_ = GL_BACK;
    GLint frontFace_ = GL_CCW;
};

}  // namespace

void SoTubeSet::GLInit(GLContextGroup& group) {
    glGenBuffers(static_cast<GLsizei>(group.buffers.size()), group.buffers.data());
    glGenTextures(1, &group.colormapTexture);
    glBindTexture(GL_TEXTURE_1D, group.colormapTexture);
    glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
    glTexParameteri(GL_TEXTURE_1D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
    glBindTexture(GL_TEXTURE_1D, 0);
    group.initialized = true;
}

void SoTubeSet::GLFree(GLContextGroup* group) {
    if (group->initialized) {
        glDeleteBuffers(static_cast<GLsizei>(group->buffers.size()), group->buffers.data());
        glDeleteTextures(1, &group->colormapTexture);
    }
    delete group;
}

void SoTubeSet::GLUploadDirtyData(GLContextGroup& group) {
    if (!group.initialized) {
        GLInit(group);
    }
    if (group.geometryDirty) {
        GLUploadTubeGeometry(group);
        GLUploadCapGeometry(group);
    }
    if (group.radiiDirty) {
        GLUploadTubeRadii(group);
    }
    if (group.colorsDirty) {
        GLUploadTubeColors(group);
    }
}

void SoTubeSet::GLUploadTubeGeometry(GLContextGroup& group) {
    const GLBuffer buffers[] = {TUBE_VERTICES, TUBE_CENTERS, TUBE_INDICES};
    const GLenum targets[] = {GL_ARRAY_BUFFER, GL_ARRAY_BUFFER, GL_ELEMENT_ARRAY_BUFFER};
    const size_t bytes[] = {numTubeVertices_ * sizeof(Vec3f), numTubeVertices_ * 3 * sizeof(float),
                            numTubeIndices_ * sizeof(unsigned int)};
    void* mapped[3];
    for (int b = 0; b < 3; ++b) {
        mapped[b] = mapNewBuffer(targets[b], group.buffers[buffers[b]], bytes[b]);
    }
    if (mapped[0] && mapped[1] && mapped[2]) {
        writeTubes(static_cast<Vec3f*>(mapped[0]), static_cast<float*>(mapped[1]),
                   static_cast<unsigned int*>(mapped[2]));
    }
    for (int b = 0; b < 3; ++b) {
        unmapBuffer(targets[b], group.buffers[buffers[b]], mapped[b]);
    }
    group.geometryDirty = false;
}

// Every cap is an instance of one of two fans, placed by its frame.
void SoTubeSet::GLUploadCapGeometry(GLContextGroup& group) {
    fillBuffer(group.buffers[CAP_PROFILE], capFans());
    fillBuffer(group.buffers[CAP_FRAMES], capFrames_);
}

// Radii and colour values of the kept points go straight from the borrowed
// per-point arrays into the mapped buffer, repeated for every side of the
// ring: no CPU copy is kept.
void SoTubeSet::GLUploadPerPoint(unsigned int buffer, float (SoTubeSet::*value)(unsigned int, int) const) {
    auto* out = static_cast<float*>(mapNewBuffer(GL_ARRAY_BUFFER, buffer, numTubeVertices_ * sizeof(float)));
    if (!out) {
        return;
    }
    for (unsigned int line = 0; line < numLines_; ++line) {
        float* dst = out + vertexBase_[line];
        const int* kept = keptPoints_.data() + keptBegin_[line];
        const unsigned int m = keptBegin_[line + 1] - keptBegin_[line];
        for (int j = 0; j < complexity_; ++j) {
            for (unsigned int i = 0; i < m; ++i) {
                *dst++ = (this->*value)(line, kept[i]);
            }
        }
    }
    glUnmapBuffer(GL_ARRAY_BUFFER);
}

void SoTubeSet::GLUploadTubeRadii(GLContextGroup& group) {
    group.radiiDirty = false;
    fillBuffer(group.buffers[CAP_CENTERS], capRecords_);
    if (!constantRadius_ && numTubeVertices_ > 0) {
        GLUploadPerPoint(group.buffers[TUBE_RADII], &SoTubeSet::pointRadius);
    }
}

void SoTubeSet::GLUploadTubeColors(GLContextGroup& group) {
    group.colorsDirty = false;
    fillBuffer(group.buffers[CAP_COLORS], capColorValues_);
    if (!constantColor_ && !colorPerLine_ && numTubeVertices_ > 0) {
        GLUploadPerPoint(group.buffers[TUBE_COLORS], &SoTubeSet::pointColorValue);
    }
}

void SoTubeSet::GLRender(SoGLRenderAction* action) {
    if (numLines_ == 0 || !shouldGLRender(action) || !program_ || !KxGLCapabilities::initGlew() ||
        !KxGLCapabilities::hasInstancing()) {
        return;
    }
    SoState* state = action->getState();
    const int contextId = static_cast<int>(SoGLCacheContextElement::get(state));
    SoCacheElement::invalidate(state);
    updateKeptPoints(state);
    GLContextGroup* group = prepareContext(contextId);
    if (!group) {
        return;
    }
    GLUploadDirtyData(*group);
    SoMaterialBundle bundle(action);
    bundle.sendFirst();

    DrawPrograms programs = choosePrograms();
    if (programs.perPointColor) {
        GLBindColormap(*group);
    }
    FaceCulling culling(showsOnlyOutside(state));
    GLBindTubeArrays(*group, programs);
    GLDrawPasses(*group, contextId, programs, &SoTubeSet::GLRenderTubes);
    GLDisableArrays();
    if (renderCaps_) {
        GLBindCapFans(*group);
        programs.macros.push_back("RENDER_CAPS");
        programs.highlightMacros.push_back("RENDER_CAPS");
        GLDrawPasses(*group, contextId, programs, &SoTubeSet::GLRenderCaps);
        GLDisableArrays();
    }
    GLRestoreState(state, programs);
}

// Capped tubes are closed: their inner faces are hidden, and leaving them
// out spares the rasteriser half the triangles. Without caps, with the
// tubes turned inside out by a negative scale or cut open by clip planes,
// the inside shows.
bool SoTubeSet::showsOnlyOutside(SoState* state) const {
    return renderCaps_ && scale_ > 0.0f && SoClipPlaneElement::getInstance(state)->getNum() == 0;
}

void SoTubeSet::GLRestoreState(SoState* state, const DrawPrograms& programs) {
    if (programs.perPointColor) {
        glBindTexture(GL_TEXTURE_1D, 0);
    }
    KxShaderProgram::off();
    glBindBuffer(GL_ARRAY_BUFFER, 0);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    // glColor calls changed the current colour behind Coin's back.
    SoGLLazyElement::getInstance(state)->reset(state, SoLazyElement::DIFFUSE_MASK);
}

SoTubeSet::DrawPrograms SoTubeSet::choosePrograms() const {
    DrawPrograms programs;
    programs.perPointColor = !constantColor_ && !colorPerLine_;
    // With per-point colours the program ignores glColor, so highlighted
    // tubes get a second pass with the constant-colour variant.
    if (programs.perPointColor) {
        for (unsigned int line = 0; line < numLines_ && !programs.anyHighlighted; ++line) {
            programs.anyHighlighted =
                visible.test(static_cast<int>(line)) && highlighted.test(static_cast<int>(line));
        }
    }
    if (constantRadius_) {
        programs.macros.push_back("CONST_RADIUS");
    }
    programs.highlightMacros = programs.macros;
    programs.highlightMacros.push_back("CONST_COLOR");
    if (!programs.perPointColor) {
        programs.macros = programs.highlightMacros;
    }
    return programs;
}

void SoTubeSet::GLBindColormap(GLContextGroup& group) {
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_1D, group.colormapTexture);
    if (group.colormapDirty) {
        glTexImage1D(GL_TEXTURE_1D, 0, GL_RGBA32F_ARB, static_cast<GLsizei>(colormap_.size() / 4), 0, GL_RGBA,
                     GL_FLOAT, colormap_.data());
        group.colormapDirty = false;
    }
}

void SoTubeSet::GLBindTubeArrays(const GLContextGroup& group, const DrawPrograms& programs) {
    glBindBuffer(GL_ARRAY_BUFFER, group.buffers[TUBE_VERTICES]);
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(3, GL_FLOAT, 0, nullptr);
    bindAttribute(CENTER_LOCATION, group.buffers[TUBE_CENTERS], 3);
    if (!constantRadius_) {
        bindAttribute(RADIUS_LOCATION, group.buffers[TUBE_RADII], 1);
    }
    if (programs.perPointColor) {
        bindAttribute(COLOR_LOCATION, group.buffers[TUBE_COLORS], 1);
    }
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, group.buffers[TUBE_INDICES]);
}

void SoTubeSet::GLBindCapFans(const GLContextGroup& group) {
    glBindBuffer(GL_ARRAY_BUFFER, group.buffers[CAP_PROFILE]);
    glEnableClientState(GL_VERTEX_ARRAY);
    glVertexPointer(3, GL_FLOAT, 0, nullptr);
}

// The caps' attributes are per instance, from their cap on: they are bound
// for each run of lines and each end (GLRenderCaps).
void SoTubeSet::GLBindCapInstances(const GLContextGroup& group, unsigned int firstCap) {
    const GLuint kInstance = 1;
    bindAttribute(CENTER_LOCATION, group.buffers[CAP_CENTERS], 4, kInstance, 8, 4 * firstCap);
    bindAttribute(CAP_NORMAL_LOCATION, group.buffers[CAP_FRAMES], 3, kInstance, 18, 9 * firstCap);
    bindAttribute(CAP_AXIS_X_LOCATION, group.buffers[CAP_FRAMES], 3, kInstance, 18, 9 * firstCap + 3);
    bindAttribute(CAP_AXIS_Y_LOCATION, group.buffers[CAP_FRAMES], 3, kInstance, 18, 9 * firstCap + 6);
    // The constant-colour variants of the program do not read it.
    bindAttribute(COLOR_LOCATION, group.buffers[CAP_COLORS], 1, kInstance, 2, firstCap);
}

void SoTubeSet::GLDisableArrays() {
    for (GLuint location : {CENTER_LOCATION, RADIUS_LOCATION, COLOR_LOCATION, CAP_NORMAL_LOCATION,
                            CAP_AXIS_X_LOCATION, CAP_AXIS_Y_LOCATION}) {
        glVertexAttribDivisorARB(location, 0);
        glDisableVertexAttribArray(location);
    }
    glDisableClientState(GL_VERTEX_ARRAY);
}

void SoTubeSet::GLDrawPasses(const GLContextGroup& group, int contextId, const DrawPrograms& programs,
                             void (SoTubeSet::*render)(const GLContextGroup&, LinePass)) {
    program_->setMacros(programs.macros);
    if (program_->apply(contextId)) {
        (this->*render)(group, programs.perPointColor ? SKIP_HIGHLIGHTED : ALL_LINES);
    }
    if (programs.anyHighlighted) {
        glDisableVertexAttribArray(COLOR_LOCATION);
        program_->setMacros(programs.highlightMacros);
        if (program_->apply(contextId)) {
            (this->*render)(group, ONLY_HIGHLIGHTED);
        }
    }
}

bool SoTubeSet::drawsLine(unsigned int line, LinePass pass) const {
    if (pointCounts_[line] == 0 || !visible.test(static_cast<int>(line))) {
        return false;
    }
    bool lit = highlighted.test(static_cast<int>(line));
    return pass == ALL_LINES || (pass == ONLY_HIGHLIGHTED) == lit;
}

template <class Draw>
void SoTubeSet::forEachRun(LinePass pass, Draw draw) {
    unsigned int runStart = 0;
    bool inRun = false;
    SbColor runColor;
    for (unsigned int line = 0; line <= numLines_; ++line) {
        bool drawn = line < numLines_ && drawsLine(line, pass);
        SbColor color = drawn && pass != SKIP_HIGHLIGHTED ? getLineColor(line) : SbColor(0, 0, 0);
        if (inRun && (!drawn || color != runColor)) {
            draw(runStart, line);
            inRun = false;
        }
        if (drawn && !inRun) {
            runStart = line;
            runColor = color;
            inRun = true;
            if (pass != SKIP_HIGHLIGHTED) {
                glColor3fv(color.getValue());
            }
        }
    }
}

// Consecutive strips are separated by the restart index, so a run is one call.
void SoTubeSet::GLRenderTubes(const GLContextGroup&, LinePass pass) {
    glEnable(GL_PRIMITIVE_RESTART);
    glPrimitiveRestartIndex(kRestartIndex);
    forEachRun(pass, [this](unsigned int first, unsigned int end) {
        unsigned int last = end - 1;
        auto count = static_cast<GLsizei>(firstIndex_[last] + indexCount_[last] - firstIndex_[first]);
        glDrawElements(
            GL_TRIANGLE_STRIP, count, GL_UNSIGNED_INT,
            reinterpret_cast<const void*>(static_cast<uintptr_t>(firstIndex_[first]) * sizeof(GLuint)));
    });
    glDisable(GL_PRIMITIVE_RESTART);
}

// One instanced draw per end and run: the start caps of the run's lines,
// then their end caps.
void SoTubeSet::GLRenderCaps(const GLContextGroup& group, LinePass pass) {
    forEachRun(pass, [&](unsigned int first, unsigned int end) {
        for (unsigned int e = 0; e < 2; ++e) {
            GLBindCapInstances(group, 2 * first + e);
            glDrawArraysInstancedARB(GL_TRIANGLE_FAN, static_cast<GLint>(e * capFanSize()),
                                     static_cast<GLsizei>(capFanSize()), static_cast<GLsizei>(end - first));
        }
    });
}
