#pragma once

#include <vector>

#include <Inventor/SbColor.h>
#include <Inventor/SbVec3f.h>
#include <Inventor/fields/SoMFColor.h>
#include <Inventor/fields/SoMFFloat.h>
#include <Inventor/fields/SoMFVec3f.h>
#include <Inventor/fields/SoSFColor.h>
#include <Inventor/fields/SoSFFloat.h>
#include <Inventor/fields/SoSFInt32.h>
#include <Inventor/nodes/SoShape.h>
#include <Inventor/nodes/SoSubNode.h>

#include "korva/inventor/SoMFBit.h"

// Many shaded spheres as one shape, drawn with one draw call: the triangles of
// all drawn spheres are gathered into one vertex array, rebuilt only when a
// field changes. Picks report the sphere's index through SoSphereSetDetail.
//
// Sphere i sits at coords[i] with drawn radius radii[i] × scale, coloured
// colors[i], or highlightColor when its "highlighted" flag is set. Like every
// Inventor multiple field, radii, colors and the flags repeat their last value
// when they hold fewer values than there are spheres.
class SoSphereSet : public SoShape {
    typedef SoShape inherited;
    SO_NODE_HEADER(SoSphereSet);

public:
    static void initClass();
    SoSphereSet();

    SoMFVec3f coords;
    SoMFFloat radii;
    SoMFColor colors;
    SoMFBit selected;
    SoMFBit highlighted;
    SoSFColor highlightColor;
    // 0: only selected spheres are drawn and picked; otherwise all are.
    SoSFInt32 mode;
    SoSFFloat scale;

    // Makes n spheres at the origin with radius 1, all selected, none highlighted.
    void setNumSpheres(int n);
    int getNumSpheres() const { return coords.getNum(); }
    void setCoords(int start, int n, const SbVec3f* points);
    // Radii of spheres start .. start + n - 1, one value each or (values null) all equal to radius.
    void setRadii(int start, int n, const float* values, float radius = 1.0f);
    void setColors(int start, int n, const SbColor* values);
    void selectRange(int start, int n, bool on) { setFlags(selected, start, n, on); }
    void select(int i, bool on) { setFlags(selected, i, 1, on); }
    void selectAll(bool on) { selected.setAll(getNumSpheres(), on); }
    void highlightRange(int start, int n, bool on) { setFlags(highlighted, start, n, on); }
    void highlight(int i, bool on) { setFlags(highlighted, i, 1, on); }
    void highlightAll(bool on) { highlighted.setAll(getNumSpheres(), on); }

    bool isDrawn(int i) const { return mode.getValue() != 0 || selected.test(i); }
    float drawnRadius(int i) const;
    SbColor drawnColor(int i) const;

    void GLRender(SoGLRenderAction* action) override;
    void rayPick(SoRayPickAction* action) override;
    void notify(SoNotList* list) override;

protected:
    ~SoSphereSet() override;
    void computeBBox(SoAction* action, SbBox3f& box, SbVec3f& center) override;
    void generatePrimitives(SoAction* action) override;

private:
    void setFlags(SoMFBit& field, int start, int n, bool on);
    void rebuildArrays();

    // Gathered geometry of the drawn spheres (positions, normals, colours).
    std::vector<float> positions_;
    std::vector<float> normals_;
    std::vector<unsigned char> colours_;
    std::vector<unsigned int> indices_;
    bool arraysDirty_ = true;
};
