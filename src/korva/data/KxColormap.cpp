#include "korva/data/KxColormap.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <string>

#include <tcl.h>

#include "korva/core/KxClassRegistry.h"
#include "korva/core/KxCommandReply.h"
#include "korva/data/KxKorvaMeshContent.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObjectPool.h"
#include "korva/korvamesh/KorvaMesh.h"

const char* const KxColormap::defaultLabel = "defaultColormap";

KxColormap::KxColormap() : rgba_(4 * kDefaultNumEntries) {
    for (int i = 0; i < kDefaultNumEntries; ++i) {
        float grey = static_cast<float>(i) / static_cast<float>(kDefaultNumEntries - 1);
        setEntry(i, SbColor(grey, grey, grey));
    }
}

KxColormap::KxColormap(int n, const float* rgba, float minCoord, float maxCoord)
    : rgba_(rgba, rgba + 4 * std::max(n, 0)), min_(minCoord), max_(maxCoord) {
    if (rgba_.empty()) {
        rgba_ = {0, 0, 0, 1};
    }
}

KxColormap::KxColormap(const KxColormap& other)
    : KxData(), rgba_(other.rgba_), min_(other.min_), max_(other.max_) {}

KxColormap& KxColormap::operator=(const KxColormap& other) {
    rgba_ = other.rgba_;
    min_ = other.min_;
    max_ = other.max_;
    return *this;
}

bool KxColormap::isOfType(const char* typeName) const {
    return std::strcmp(typeName, "KxColormap") == 0 || KxData::isOfType(typeName);
}

void KxColormap::setEntry(int i, const SbColor& color, float alpha) {
    if (i < 0 || i >= getNumEntries()) {
        return;
    }
    float* e = &rgba_[4 * static_cast<size_t>(i)];
    e[0] = color[0];
    e[1] = color[1];
    e[2] = color[2];
    e[3] = alpha;
}

void KxColormap::resize(int n) {
    int old = getNumEntries();
    rgba_.resize(4 * static_cast<size_t>(std::max(n, 1)), 0.0f);
    for (int i = old; i < getNumEntries(); ++i) {
        rgba_[4 * static_cast<size_t>(i) + 3] = 1.0f;
    }
}

void KxColormap::setMinMax(float minCoord, float maxCoord) {
    min_ = minCoord;
    max_ = maxCoord;
}

SbColor KxColormap::getColorAtFraction(float t) const {
    int n = getNumEntries();
    if (!(t > 0.0f)) {  // also NaN
        t = 0.0f;
    }
    float position = std::min(t, 1.0f) * static_cast<float>(n - 1);
    int lower = std::min(static_cast<int>(std::floor(position)), n - 1);
    int upper = std::min(lower + 1, n - 1);
    float w = position - static_cast<float>(lower);
    const float* a = getEntry(lower);
    const float* b = getEntry(upper);
    return SbColor(a[0] + w * (b[0] - a[0]), a[1] + w * (b[1] - a[1]), a[2] + w * (b[2] - a[2]));
}

SbColor KxColormap::getColor(float v, float minCoord, float maxCoord) const {
    float range = maxCoord - minCoord;
    return getColorAtFraction(range > 0.0f ? (v - minCoord) / range : 0.0f);
}

KxColormap* KxColormap::findDefault() {
    return dynamic_cast<KxColormap*>(theObjectPool->find(defaultLabel));
}

int KxColormap::saveKorvaMesh(const char* filename) {
    KorvaMesh mesh;
    mesh.getParameters().setString("ContentType", "KxColormap");
    float range[2] = {min_, max_};
    mesh.getParameters().setFloats("MinMax", range, 2);
    const KorvaMesh::Location* entries = mesh.createLocation("Entries", getNumEntries());
    if (!entries || !mesh.createData("RGBA", entries, PrimType::FLOAT32, 4, rgba_.data())) {
        return 0;
    }
    if (!mesh.write(filename, 1)) {
        return 0;
    }
    setLoadCmd(filename);
    return 1;
}

int KxColormap::readKorvaMesh(const char* filename) {
    std::unique_ptr<KorvaMesh> mesh = KorvaMesh::read(filename);
    if (!mesh) {
        return 0;
    }
    const KorvaMesh::Data* rgba = mesh->findData("Entries", PrimType::FLOAT32, 4, "RGBA");
    float range[2] = {0.0f, 1.0f};
    if (!rgba || rgba->getLocation()->getSize() < 1 || !mesh->getParameters().findReals("MinMax", 2, range)) {
        theMsg->printf(
            "Error: Colormap file %s needs the array \"RGBA\" (float, 4 per entry) on \"Entries\" "
            "and the parameter \"MinMax\".",
            filename);
        return 0;
    }
    auto n = static_cast<int>(rgba->getLocation()->getSize());
    auto* colormap = new KxColormap(n, static_cast<const float*>(rgba->getValues()), range[0], range[1]);
    return KxKorvaMeshContent::addLoaded(colormap, filename);
}

int KxColormap::parse(Tcl_Interp* interp, int argc, char** argv) {
    const char* cmd = argc >= 2 ? argv[1] : "";
    double a = 0.0;
    double b = 0.0;
    if (std::strcmp(cmd, "setMinMax") == 0) {
        if (argc != 4) {
            return KxCommandReply::usage(interp, "setMinMax min max");
        }
        if (Tcl_GetDouble(interp, argv[2], &a) != TCL_OK || Tcl_GetDouble(interp, argv[3], &b) != TCL_OK) {
            return KxCommandReply::failWithTclMessage(interp);
        }
        setMinMax(static_cast<float>(a), static_cast<float>(b));
        touch(NEW_DATA);
        fire();
        return TCL_OK;
    }
    if (std::strcmp(cmd, "getMinMax") == 0 || std::strcmp(cmd, "getColor") == 0) {
        Tcl_Obj* list = Tcl_NewListObj(0, nullptr);
        bool color = cmd[3] == 'C';
        if (color && (argc != 3 || Tcl_GetDouble(interp, argv[2], &a) != TCL_OK)) {
            Tcl_DecrRefCount(list);
            return KxCommandReply::usage(interp, "getColor value");
        }
        SbColor c = getColor(static_cast<float>(a));
        const float values[] = {min_, max_};
        for (int i = 0; i < (color ? 3 : 2); ++i) {
            Tcl_ListObjAppendElement(nullptr, list, Tcl_NewDoubleObj(color ? c[i] : values[i]));
        }
        Tcl_SetObjResult(interp, list);
        return TCL_OK;
    }
    return KxData::parse(interp, argc, argv);
}

void KxColormap::registerClass() {
    if (theClassRegistry->isRegistered("KxColormap")) {
        return;
    }
    theClassRegistry->registerClass("KxColormap", "korva", []() -> KxObject* { return new KxColormap; });
    theClassRegistry->registerCommand("KxColormap", "setMinMax", "setMinMax min max");
    theClassRegistry->registerCommand("KxColormap", "getMinMax", "getMinMax");
    theClassRegistry->registerCommand("KxColormap", "getColor", "getColor value");
    KxKorvaMeshContent::registerFormat<KxColormap>("Colormap", "KxColormap", {"kxm", "col"});
}
