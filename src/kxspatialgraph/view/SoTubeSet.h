#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

#include <Inventor/SbColor.h>
#include <Inventor/SbMatrix.h>
#include <Inventor/SbVec2s.h>
#include <Inventor/nodes/SoShape.h>
#include <Inventor/nodes/SoSubNode.h>

#include "korva/base/Vec3f.h"
#include "korva/inventor/SoMFBit.h"

class KxColormap;
class KxShaderProgram;
class SoState;

// Draws every line of a spatial graph as a shaded tube around its polyline,
// closed by caps, on the GPU. The surface is generated once on the CPU as
// unit-radius rings and kept in buffer objects per rendering context; radius
// ("scale" × per-point radius) and colour (per-point value through a 1-D
// colormap, or one colour per line, or one colour for all) are applied by the
// GLSL program spatialgraphTubes_{vert,frag}.glsl, so they change without
// touching the vertex buffer. Each cap is an instance of one small fan,
// placed by its line end's centre, radius and frame (56 bytes a cap).
//
// Line points, radii and colour values are borrowed from the caller (the
// graph's edge points and attributes), not copied: they must stay alive and
// unchanged until the next set-call. Set-calls only mark data dirty; the GPU
// work happens in GLRender, once per context; the tube surface is written
// straight into the buffer objects.
//
// Level of detail: a line's inner points that lie within a pixel on screen of
// the last point kept before them are left out of its surface (frames still
// come from every point), so lines far from the camera cost a few rings.
// Which points are kept is recomputed when the camera or viewport changes.
// Only the centre line is measured: the tube between two kept rings is
// straight, so on curves it moves by a small fraction of a pixel, and on a
// tube thicker than its point spacing on screen the left-out rings can show.
class SoTubeSet : public SoShape {
    typedef SoShape inherited;
    SO_NODE_HEADER(SoTubeSet);

public:
    static void initClass();
    SoTubeSet();

    // Bit i set: tube i is drawn. Bit i of "highlighted": drawn in the highlight colour.
    SoMFBit visible;
    SoMFBit highlighted;

    // Ends each line's strip in the index buffer, so that runs of lines draw in one call.
    static constexpr unsigned int kRestartIndex = 0xFFFFFFFFu;

    void setNumLines(unsigned int n);
    unsigned int getNumLines() const { return numLines_; }
    void setLine(unsigned int line, int count, const Vec3f* points);
    void setLineRadii(unsigned int line, const float* radii);
    void setLineColors(unsigned int line, const float* values);
    void setLineColors(unsigned int line, const int* values);
    // One value per line (index = line), used in per-line colour mode. Marks nothing dirty.
    void setUniformColorsPerLine(const int* values) { perLineValues_ = values; }
    void setUniformLineColor(const SbColor& color) { uniformColor_ = color; }
    void setHighlightColor(const SbColor& color) { highlightColor_ = color; }
    void setTubeScale(float scale);
    float getTubeScale() const { return scale_; }
    void setColormapDataWindow(float minValue, float maxValue);
    // Samples 256 entries of the colormap; marks the colormap dirty in every context.
    void setColormap(const KxColormap& colormap);
    void drawCaps(bool on) { renderCaps_ = on; }
    // Sides per ring; ignored unless k > 2.
    void setTubeComplexity(int k);
    int getTubeComplexity() const { return complexity_; }

    // Mode flags, set by the owner followed by touch().
    void setConstantColor(bool on) { constantColor_ = on; }
    void setConstantRadius(bool on) { constantRadius_ = on; }
    void setColorPerLine(bool on) { colorPerLine_ = on; }
    bool isConstantColor() const { return constantColor_; }
    bool isConstantRadius() const { return constantRadius_; }
    bool isColorPerLine() const { return colorPerLine_; }

    void GLRender(SoGLRenderAction* action) override;

protected:
    ~SoTubeSet() override;
    // Box of all points, grown by max(1, largest radius) × tube scale.
    void computeBBox(SoAction* action, SbBox3f& box, SbVec3f& center) override;
    // Deliberate: the tubes exist only on the GPU; pick and primitive actions see nothing.
    void generatePrimitives(SoAction*) override {}

private:
    friend class SoTubeSetTestAccess;

    // Generic attribute locations of the tube program (0 aliases gl_Vertex).
    enum AttributeLocation {
        CENTER_LOCATION = 1,
        RADIUS_LOCATION = 2,
        COLOR_LOCATION = 3,
        CAP_NORMAL_LOCATION = 4,
        CAP_AXIS_X_LOCATION = 5,
        CAP_AXIS_Y_LOCATION = 6
    };
    // The buffer objects of one rendering context, created and deleted
    // together from one table of names.
    enum GLBuffer {
        TUBE_VERTICES,
        TUBE_INDICES,
        TUBE_CENTERS,
        TUBE_RADII,
        TUBE_COLORS,
        CAP_PROFILE,
        CAP_FRAMES,
        CAP_CENTERS,
        CAP_COLORS,
        NUM_GL_BUFFERS
    };
    // What one rendering context holds: its GL names and which data it still has to upload.
    struct GLContextGroup {
        bool initialized = false;
        bool geometryDirty = true;
        bool radiiDirty = true;
        bool colorsDirty = true;
        bool colormapDirty = true;
        std::array<unsigned int, NUM_GL_BUFFERS> buffers{};
        unsigned int colormapTexture = 0;
    };
    // Which program variants a frame draws with: per-point colours need a
    // second, constant-colour pass for the highlighted lines.
    struct DrawPrograms {
        bool perPointColor = false;
        bool anyHighlighted = false;
        std::vector<std::string> macros;
        std::vector<std::string> highlightMacros;
    };
    // Which lines a draw pass takes (all visible ones, or split by the highlight bit).
    enum LinePass { ALL_LINES, SKIP_HIGHLIGHTED, ONLY_HIGHLIGHTED };

    // The colour the tube and cap passes give a line through the fixed
    // function colour: highlight colour, uniform colour, or in per-line mode
    // the colormap entry of the line's value. Only meaningful when the
    // program does not read per-point colour values.
    SbColor getLineColor(unsigned int line) const;

    // Context bookkeeping (no GL needed). prepareContext finds or creates the
    // record of a context and moves the node's dirty flags into every record;
    // null when there is nothing to draw (no lines), and then no record is
    // made.
    GLContextGroup* prepareContext(int contextId, bool* created = nullptr);
    int getNumContextGroups() const;
    GLContextGroup* findContextGroup(int contextId) const;

    // CPU geometry, regenerated when the geometry is dirty. Cap record of a
    // line end (end 0 = start, 1 = end): centre x, y, z and radius.
    // Records, frames and colour values of the caps run line by line, start
    // then end: one instance of a cap fan each.
    const float* getCapRecord(unsigned int line, int end) const { return &capRecords_[8 * line + 4 * end]; }
    // Where each line's vertices and indices go, from the kept points.
    void layoutTubes();
    // The surface of the kept points as layoutTubes placed it: vertices,
    // centres (3 floats each) and strip indices. Written straight into
    // mapped buffer objects, so no CPU copy of the surface is kept.
    void writeTubes(Vec3f* vertices, float* centers, unsigned int* indices) const;
    // The surface into tubeVertices_, tubeCenters_ and tubeIndices_ (for tests).
    void generateTubeGeometry();
    // Cap records and frames (outward normal, then the two axes of the
    // end ring's plane) per line end.
    void generateCapGeometry();
    // The two fans every cap is drawn from, start cap first: centre, then
    // the profile once round (the start cap's the other way round, so that
    // both caps face outwards with the tube's winding).
    std::vector<Vec3f> capFans() const;
    unsigned int capFanSize() const { return static_cast<unsigned int>(complexity_) + 2; }
    void updateCapRadii();
    void updateCapColors();
    void generateExtrusionGeometry();
    float pointRadius(unsigned int line, int point) const;
    float pointColorValue(unsigned int line, int point) const;

    // Level of detail: recomputes the kept points for the frame's camera
    // and viewport when they changed; marks the geometry dirty when the kept
    // points differ from before.
    void updateKeptPoints(SoState* state);
    void keepAllPoints();
    void keepPointsOnScreen(const SbMatrix& worldToScreen, const SbVec2s& viewport);

    static void GLInit(GLContextGroup& group);
    // Deletes the group's GL names (its context current) and the group.
    static void GLFree(GLContextGroup* group);
    void GLUploadDirtyData(GLContextGroup& group);
    void GLUploadTubeGeometry(GLContextGroup& group);
    void GLUploadCapGeometry(GLContextGroup& group);
    void GLUploadPerPoint(unsigned int buffer, float (SoTubeSet::*value)(unsigned int, int) const);
    void GLUploadTubeRadii(GLContextGroup& group);
    void GLUploadTubeColors(GLContextGroup& group);
    DrawPrograms choosePrograms() const;
    void GLBindColormap(GLContextGroup& group);
    void GLBindTubeArrays(const GLContextGroup& group, const DrawPrograms& programs);
    void GLBindCapFans(const GLContextGroup& group);
    void GLBindCapInstances(const GLContextGroup& group, unsigned int firstCap);
    static void GLDisableArrays();
    // Whether only the outer faces of the tubes can be seen, so that the
    // inner ones need not be drawn.
    bool showsOnlyOutside(SoState* state) const;
    // Program, texture and buffers off; Coin told that the current colour changed.
    static void GLRestoreState(SoState* state, const DrawPrograms& programs);
    // Draws the lines in their own colours, then (per-point colours only)
    // the highlighted ones with the constant-colour variant of the program.
    void GLDrawPasses(const GLContextGroup& group, int contextId, const DrawPrograms& programs,
                      void (SoTubeSet::*render)(const GLContextGroup&, LinePass));
    bool drawsLine(unsigned int line, LinePass pass) const;
    // Calls draw(first line, end line) for each run of consecutive lines that
    // the pass takes and that share one colour, after setting that colour.
    template <class Draw>
    void forEachRun(LinePass pass, Draw draw);
    void GLRenderTubes(const GLContextGroup& group, LinePass pass);
    void GLRenderCaps(const GLContextGroup& group, LinePass pass);

    static void contextDestroyedCB(uint32_t contextId, void* data);

    static std::mutex classMutex;

    unsigned int numLines_ = 0;
    std::vector<int> pointCounts_;
    std::vector<const Vec3f*> points_;
    std::vector<const float*> radii_;
    std::vector<const float*> floatColors_;
    std::vector<const int*> intColors_;
    const int* perLineValues_ = nullptr;

    int complexity_ = 12;
    std::vector<Vec3f> profile_;
    float scale_ = 1.0f;
    float colormapMin_ = 0.0f;
    float colormapRange_ = 1.0f;
    bool renderCaps_ = true;
    SbColor uniformColor_ = SbColor(1.0f, 1.0f, 1.0f);
    SbColor highlightColor_ = SbColor(1.0f, 0.0f, 0.0f);
    std::vector<float> colormap_;

    bool geometryDirty_ = false;
    bool radiiDirty_ = false;
    bool colorsDirty_ = false;
    bool constantColor_ = true;
    bool constantRadius_ = true;
    bool colorPerLine_ = false;

    mutable std::mutex mutex_;
    std::unordered_map<int, std::unique_ptr<GLContextGroup>> contexts_;
    std::unique_ptr<KxShaderProgram> program_;

    // Level of detail: keptPoints_[keptBegin_[line] ..] are the indices of
    // the line's points that get a ring.
    bool levelOfDetail_ = true;
    bool keptPointsValid_ = false;
    SbMatrix keptForMatrix_;
    SbVec2s keptForViewport_;
    std::vector<int> keptPoints_;
    std::vector<unsigned int> keptBegin_;
    std::vector<int> scratchKept_;
    size_t numTubeVertices_ = 0;
    size_t numTubeIndices_ = 0;

    std::vector<Vec3f> tubeVertices_;
    std::vector<float> tubeCenters_;  // 3 per vertex (the program's w is 1)
    std::vector<unsigned int> tubeIndices_;
    std::vector<unsigned int> firstIndex_;
    std::vector<unsigned int> indexCount_;
    std::vector<unsigned int> vertexBase_;
    std::vector<float> capFrames_;       // 18 per line
    std::vector<float> capRecords_;      // 8 per line
    std::vector<float> capColorValues_;  // 2 per line
};
