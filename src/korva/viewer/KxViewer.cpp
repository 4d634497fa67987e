#include "korva/viewer/KxViewer.h"

#include <cstring>

#include <Inventor/events/SoMouseButtonEvent.h>
#include <Inventor/nodes/SoDirectionalLight.h>
#include <Inventor/nodes/SoPerspectiveCamera.h>
#include <Inventor/nodes/SoSeparator.h>
#include <tcl.h>

#include "korva/core/KxCommandReply.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxTclInterpreter.h"
#include "korva/inventor/KxInventor.h"
#include "korva/viewer/KxOffscreenRenderer.h"
#include "korva/viewer/KxPickDispatch.h"

namespace {

constexpr int kMaxSize = 8192;
const char* const kUsage =
    "viewer snapshot file ?width height? | viewer click x y ?button? | viewer viewAll | viewer grab file";

bool readInt(Tcl_Interp* interp, Tcl_Obj* word, int lo, int hi, const char* what, int& value) {
    if (Tcl_GetIntFromObj(interp, word, &value) != TCL_OK || value < lo || value > hi) {
        KxCommandReply::failf(interp, "Error: The %s must be a whole number from %d to %d, not \"%s\".", what,
                              lo, hi, Tcl_GetString(word));
        return false;
    }
    return true;
}

int snapshotCommand(Tcl_Interp* interp, int objc, Tcl_Obj* const objv[]) {
    if (objc != 3 && objc != 5) {
        return KxCommandReply::usage(interp, "viewer snapshot file ?width height?");
    }
    int width = theViewer->getViewportRegion().getWindowSize()[0];
    int height = theViewer->getViewportRegion().getWindowSize()[1];
    if (objc == 5 && (!readInt(interp, objv[3], 1, kMaxSize, "width", width) ||
                      !readInt(interp, objv[4], 1, kMaxSize, "height", height))) {
        return TCL_ERROR;
    }
    KxCommandReply::ErrorTap tap;
    if (!theViewer->snapshot(Tcl_GetString(objv[2]), width, height)) {
        return KxCommandReply::failWith(interp, tap, "Error: The snapshot failed.");
    }
    return TCL_OK;
}

int clickCommand(Tcl_Interp* interp, int objc, Tcl_Obj* const objv[]) {
    if (objc != 4 && objc != 5) {
        return KxCommandReply::usage(interp, "viewer click x y ?button?");
    }
    const SbVec2s& size = theViewer->getViewportRegion().getWindowSize();
    int x = 0, y = 0, button = 1;
    if (!readInt(interp, objv[2], 0, size[0] - 1, "x", x) ||
        !readInt(interp, objv[3], 0, size[1] - 1, "y", y) ||
        (objc == 5 && !readInt(interp, objv[4], 1, 3, "button", button))) {
        return TCL_ERROR;
    }
    Tcl_SetObjResult(interp, Tcl_NewBooleanObj(theViewer->click(x, y, button)));
    return TCL_OK;
}

int viewerCommand(ClientData, Tcl_Interp* interp, int objc, Tcl_Obj* const objv[]) {
    return KxTclInterpreter::guard(interp, [&] {
        const char* sub = objc >= 2 ? Tcl_GetString(objv[1]) : "";
        if (std::strcmp(sub, "snapshot") == 0) {
            return snapshotCommand(interp, objc, objv);
        }
        if (std::strcmp(sub, "click") == 0) {
            return clickCommand(interp, objc, objv);
        }
        if (std::strcmp(sub, "grab") == 0 && objc == 3) {
            KxCommandReply::ErrorTap tap;
            return theViewer->grab(Tcl_GetString(objv[2]))
                       ? TCL_OK
                       : KxCommandReply::failWith(interp, tap, "Error: The grab failed.");
        }
        if (std::strcmp(sub, "viewAll") == 0 && objc == 2) {
            const SbVec2s& size = theViewer->getViewportRegion().getWindowSize();
            theViewer->viewAll(size[0], size[1]);
            return TCL_OK;
        }
        return KxCommandReply::usage(interp, kUsage);
    });
}

}  // namespace

KxViewer& KxViewer::instance() {
    // Deliberate: never destroyed, so that no scene node outlives the
    // scene-graph library at the end of the process.
    static KxViewer* viewer = new KxViewer;
    return *viewer;
}

KxViewer::KxViewer() {
    KxInventor::init();
    root_ = new SoSeparator;
    camera_ = new SoPerspectiveCamera;
    scenes_ = new SoSeparator;
    root_->addChild(camera_);
    root_->addChild(new SoDirectionalLight);  // along the camera's default view direction
    root_->addChild(scenes_);
}

void KxViewer::addScene(SoNode* scene) {
    if (scene && scenes_->findChild(scene) < 0) {
        scenes_->addChild(scene);
    }
}

void KxViewer::removeScene(SoNode* scene) {
    int i = scene ? scenes_->findChild(scene) : -1;
    if (i >= 0) {
        scenes_->removeChild(i);
    }
}

int KxViewer::getNumScenes() const {
    return scenes_->getNumChildren();
}

void KxViewer::viewAll(int width, int height) {
    region_ = SbViewportRegion(static_cast<short>(width), static_cast<short>(height));
    camera_->viewAll(scenes_, region_);
    if (window_) {
        window_->viewAll();
    }
}

bool KxViewer::snapshot(const char* path, int width, int height) {
    if (!KxOffscreenRenderer::checkImagePath(path)) {
        return false;
    }
    viewAll(width, height);
    KxOffscreenRenderer renderer(width, height);
    return renderer.render(root_) && renderer.writeImage(path);
}

bool KxViewer::click(int x, int y, int button) {
    static const SoMouseButtonEvent::Button buttons[] = {
        SoMouseButtonEvent::BUTTON1, SoMouseButtonEvent::BUTTON2, SoMouseButtonEvent::BUTTON3};
    SoMouseButtonEvent event;
    event.setButton(buttons[(button >= 1 && button <= 3 ? button : 1) - 1]);
    int height = region_.getWindowSize()[1];
    event.setPosition(SbVec2s(static_cast<short>(x), static_cast<short>(height - 1 - y)));
    event.setState(SoButtonEvent::DOWN);
    bool handled = thePickDispatch->dispatch(root_, region_, event);
    event.setState(SoButtonEvent::UP);
    thePickDispatch->dispatch(root_, region_, event);
    return handled;
}

bool KxViewer::grab(const char* path) const {
    if (!window_) {
        theMsg->printf("Error: No viewer window is open (korva --gui opens one).");
        return false;
    }
    return window_->writeImage(path);
}

void KxViewer::installCommands(KxTclInterpreter& tcl) {
    Tcl_CreateObjCommand(tcl.interp(), "viewer", viewerCommand, nullptr, nullptr);
}
