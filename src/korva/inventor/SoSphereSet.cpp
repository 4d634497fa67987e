#include "korva/inventor/SoSphereSet.h"

#include <GL/glew.h>

#include <algorithm>
#include <cmath>
#include <mutex>

#include <Inventor/SbSphere.h>
#include <Inventor/SoPickedPoint.h>
#include <Inventor/SoPrimitiveVertex.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoRayPickAction.h>
#include <Inventor/bundles/SoMaterialBundle.h>
#include <Inventor/elements/SoGLLazyElement.h>
#include <Inventor/misc/SoState.h>

#include "korva/inventor/SoSphereSetDetail.h"

namespace {

// Unit sphere as latitude bands: positions double as normals.
struct UnitSphere {
    std::vector<SbVec3f> points;
    std::vector<unsigned int> triangles;

    UnitSphere() {
        const int stacks = 8, slices = 12;
        const float pi = static_cast<float>(M_PI);
        for (int s = 0; s <= stacks; ++s) {
            float theta = pi * s / stacks;
            for (int k = 0; k <= slices; ++k) {
                float phi = 2.0f * pi * k / slices;
                points.emplace_back(std::sin(theta) * std::cos(phi), std::sin(theta) * std::sin(phi),
                                    std::cos(theta));
            }
        }
        for (int s = 0; s < stacks; ++s) {
            for (int k = 0; k < slices; ++k) {
                unsigned int a = s * (slices + 1) + k, b = a + slices + 1;
                // Counter-clockwise seen from outside.
                triangles.insert(triangles.end(), {a, b, a + 1, a + 1, b, b + 1});
            }
        }
    }
};

const UnitSphere& unitSphere() {
    static const UnitSphere sphere;
    return sphere;
}

}  // namespace

SO_NODE_SOURCE(SoSphereSet);

void SoSphereSet::initClass() {
    static std::once_flag once;
    std::call_once(once, [] {
        SoMFBit::initClass();
        SoSphereSetDetail::initClass();
        SO_NODE_INIT_CLASS(SoSphereSet, SoShape, "Shape");
    });
}

SoSphereSet::SoSphereSet() {
    SO_NODE_CONSTRUCTOR(SoSphereSet);
    SO_NODE_ADD_FIELD(coords, (0.0f, 0.0f, 0.0f));
    SO_NODE_ADD_FIELD(radii, (1.0f));
    SO_NODE_ADD_FIELD(colors, (0.8f, 0.8f, 0.8f));
    SO_NODE_ADD_FIELD(selected, (1));
    SO_NODE_ADD_FIELD(highlighted, (0));
    SO_NODE_ADD_FIELD(highlightColor, (1.0f, 0.0f, 0.0f));
    SO_NODE_ADD_FIELD(mode, (0));
    SO_NODE_ADD_FIELD(scale, (1.0f));
    coords.setNum(0);
}

SoSphereSet::~SoSphereSet() = default;

void SoSphereSet::setNumSpheres(int n) {
    n = std::max(n, 0);
    coords.setNum(n);
    if (n > 0) {
        std::fill(coords.startEditing(), coords.startEditing() + n, SbVec3f(0.0f, 0.0f, 0.0f));
        coords.finishEditing();
    }
    radii.setValue(1.0f);
    selected.setAll(n, true);
    highlighted.setAll(n, false);
}

void SoSphereSet::setCoords(int start, int n, const SbVec3f* points) {
    if (start >= 0 && n > 0 && points) {
        coords.setValues(start, n, points);
    }
}

void SoSphereSet::setRadii(int start, int n, const float* values, float radius) {
    if (start < 0 || n <= 0) {
        return;
    }
    int total = getNumSpheres();
    if (radii.getNum() < total) {
        // Spell out the repeated last value before changing a range.
        float last = radii.getNum() > 0 ? radii[radii.getNum() - 1] : 1.0f;
        int old = radii.getNum();
        radii.setNum(total);
        std::fill(radii.startEditing() + old, radii.startEditing() + total, last);
    }
    if (radii.getNum() < start + n) {
        radii.setNum(start + n);
    }
    float* r = radii.startEditing();
    for (int i = 0; i < n; ++i) {
        r[start + i] = values ? values[i] : radius;
    }
    radii.finishEditing();
}

void SoSphereSet::setColors(int start, int n, const SbColor* values) {
    if (start < 0 || n <= 0 || !values) {
        return;
    }
    int total = getNumSpheres();
    if (colors.getNum() < total) {
        SbColor last = colors.getNum() > 0 ? colors[colors.getNum() - 1] : SbColor(0.8f, 0.8f, 0.8f);
        int old = colors.getNum();
        colors.setNum(total);
        std::fill(colors.startEditing() + old, colors.startEditing() + total, last);
        colors.finishEditing();
    }
    colors.setValues(start, n, values);
}

void SoSphereSet::setFlags(SoMFBit& field, int start, int n, bool on) {
    int total = getNumSpheres();
    if (field.getNum() < total) {
        bool last = field.test(field.getNum() - 1);
        int old = field.getNum();
        field.setRange(old, total - old, last);
    }
    field.setRange(start, n, on);
}

float SoSphereSet::drawnRadius(int i) const {
    int n = radii.getNum();
    float r = n == 0 ? 1.0f : radii[std::min(i, n - 1)];
    return std::max(r, 0.0f) * scale.getValue();
}

SbColor SoSphereSet::drawnColor(int i) const {
    if (highlighted.test(i)) {
        return highlightColor.getValue();
    }
    int n = colors.getNum();
    return n == 0 ? SbColor(0.8f, 0.8f, 0.8f) : colors[std::min(i, n - 1)];
}

void SoSphereSet::notify(SoNotList* list) {
    arraysDirty_ = true;
    inherited::notify(list);
}

void SoSphereSet::rebuildArrays() {
    const UnitSphere& unit = unitSphere();
    positions_.clear();
    normals_.clear();
    colours_.clear();
    indices_.clear();
    const SbVec3f* centres = coords.getValues(0);
    for (int i = 0; i < getNumSpheres(); ++i) {
        float r = drawnRadius(i);
        if (!isDrawn(i) || r <= 0.0f) {
            continue;
        }
        auto base = static_cast<unsigned int>(positions_.size() / 3);
        SbColor c = drawnColor(i);
        unsigned char rgba[4] = {static_cast<unsigned char>(std::lround(c[0] * 255.0f)),
                                 static_cast<unsigned char>(std::lround(c[1] * 255.0f)),
                                 static_cast<unsigned char>(std::lround(c[2] * 255.0f)), 255};
        for (const SbVec3f& p : unit.points) {
            SbVec3f q = centres[i] + p * r;
            positions_.insert(positions_.end(), {q[0], q[1], q[2]});
            normals_.insert(normals_.end(), {p[0], p[1], p[2]});
            colours_.insert(colours_.end(), rgba, rgba + 4);
        }
        for (unsigned int t : unit.triangles) {
            indices_.push_back(base + t);
        }
    }
    arraysDirty_ = false;
}

void SoSphereSet::GLRender(SoGLRenderAction* action) {
    if (!shouldGLRender(action)) {
        return;
    }
    if (arraysDirty_) {
        rebuildArrays();
    }
    if (indices_.empty()) {
        return;
    }
    SoState* state = action->getState();
    SoMaterialBundle bundle(action);
    bundle.sendFirst();
    glPushAttrib(GL_ENABLE_BIT | GL_LIGHTING_BIT);
    glPushClientAttrib(GL_CLIENT_VERTEX_ARRAY_BIT);
    glEnable(GL_COLOR_MATERIAL);
    glColorMaterial(GL_FRONT_AND_BACK, GL_AMBIENT_AND_DIFFUSE);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_NORMAL_ARRAY);
    glEnableClientState(GL_COLOR_ARRAY);
    glVertexPointer(3, GL_FLOAT, 0, positions_.data());
    glNormalPointer(GL_FLOAT, 0, normals_.data());
    glColorPointer(4, GL_UNSIGNED_BYTE, 0, colours_.data());
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(indices_.size()), GL_UNSIGNED_INT, indices_.data());
    glPopClientAttrib();
    glPopAttrib();
    // The colour array changed the current GL colour behind Coin's back.
    SoGLLazyElement::getInstance(state)->reset(state, SoLazyElement::DIFFUSE_MASK);
}

void SoSphereSet::rayPick(SoRayPickAction* action) {
    if (!shouldRayPick(action)) {
        return;
    }
    action->setObjectSpace();
    const SbLine& line = action->getLine();
    const SbVec3f* centres = coords.getValues(0);
    for (int i = 0; i < getNumSpheres(); ++i) {
        float r = drawnRadius(i);
        if (!isDrawn(i) || r <= 0.0f) {
            continue;
        }
        SbSphere sphere(centres[i], r);
        SbVec3f enter, exit;
        if (!sphere.intersect(line, enter, exit) || !action->isBetweenPlanes(enter)) {
            continue;
        }
        SoPickedPoint* picked = action->addIntersection(enter);
        if (picked) {
            SbVec3f normal = enter - centres[i];
            normal.normalize();
            picked->setObjectNormal(normal);
            picked->setDetail(new SoSphereSetDetail(i), this);
        }
    }
}

void SoSphereSet::computeBBox(SoAction*, SbBox3f& box, SbVec3f& center) {
    box.makeEmpty();
    const SbVec3f* centres = coords.getValues(0);
    for (int i = 0; i < getNumSpheres(); ++i) {
        if (!isDrawn(i)) {
            continue;
        }
        float r = drawnRadius(i);
        box.extendBy(centres[i] - SbVec3f(r, r, r));
        box.extendBy(centres[i] + SbVec3f(r, r, r));
    }
    center = box.isEmpty() ? SbVec3f(0.0f, 0.0f, 0.0f) : box.getCenter();
}

void SoSphereSet::generatePrimitives(SoAction* action) {
    const UnitSphere& unit = unitSphere();
    const SbVec3f* centres = coords.getValues(0);
    SoPrimitiveVertex vertex;
    SoSphereSetDetail detail;
    vertex.setDetail(&detail);
    for (int i = 0; i < getNumSpheres(); ++i) {
        float r = drawnRadius(i);
        if (!isDrawn(i) || r <= 0.0f) {
            continue;
        }
        detail.setSphereIndex(i);
        beginShape(action, TRIANGLES, nullptr);
        for (unsigned int t : unit.triangles) {
            vertex.setPoint(centres[i] + unit.points[t] * r);
            vertex.setNormal(unit.points[t]);
            shapeVertex(&vertex);
        }
        endShape();
    }
}
