#include "korva/core/KxSpatialData.h"

#include <cstring>

#include <tcl.h>

#include "korva/core/KxCommandReply.h"

KxSpatialData::KxSpatialData() : transform_(SbMatrix::identity()) {}

bool KxSpatialData::isOfType(const char* typeName) const {
    return std::strcmp(typeName, "KxSpatialData") == 0 || KxData::isOfType(typeName);
}

int KxSpatialData::parse(Tcl_Interp* interp, int argc, char** argv) {
    if (argc >= 2 && std::strcmp(argv[1], "getTransform") == 0) {
        Tcl_Obj* list = Tcl_NewListObj(0, nullptr);
        for (int i = 0; i < 4; ++i) {
            for (int j = 0; j < 4; ++j) {
                Tcl_ListObjAppendElement(interp, list, Tcl_NewDoubleObj(transform_[i][j]));
            }
        }
        Tcl_SetObjResult(interp, list);
        return TCL_OK;
    }
    if (argc >= 2 && std::strcmp(argv[1], "setTransform") == 0) {
        if (argc != 18) {
            return KxCommandReply::usage(interp, "setTransform m00 m01 ... m33");
        }
        SbMatrix m;
        for (int k = 0; k < 16; ++k) {
            double v;
            if (Tcl_GetDouble(interp, argv[2 + k], &v) != TCL_OK) {
                return KxCommandReply::failWithTclMessage(interp);
            }
            m[k / 4][k % 4] = static_cast<float>(v);
        }
        setTransform(m);
        touch(NEW_TRANSFORM);
        fire();
        return TCL_OK;
    }
    return KxData::parse(interp, argc, argv);
}
