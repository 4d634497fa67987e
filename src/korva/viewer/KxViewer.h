#pragma once

#include <Inventor/SbViewportRegion.h>

#include "korva/inventor/SoRefPtr.h"

class KxTclInterpreter;
class SoNode;
class SoPerspectiveCamera;
class SoSeparator;

// The host's 3-D viewer: one scene holding the scenes of every display
// module, seen through a camera that frames them all and lit from the
// viewer's side. Pictures are taken offscreen (no window or X server
// needed); mouse clicks, real or synthetic, go to the pick callbacks of
// KxPickDispatch. Console: `viewer snapshot FILE.png ?WIDTH HEIGHT?`,
// `viewer click X Y ?BUTTON?` (pixel of the last picture's size, y from the
// top; buttons 1 to 3, 1 by default), `viewer viewAll`, and while a window
// is open (KxViewerWindow) `viewer grab FILE.png`, its frame buffer.
class KxViewer {
public:
    static KxViewer& instance();

    // Display modules add their scene when they are made and remove it when they die.
    void addScene(SoNode* scene);
    void removeScene(SoNode* scene);
    int getNumScenes() const;
    // Camera, light and the scenes.
    SoSeparator* getRoot() const { return root_; }
    SoPerspectiveCamera* getCamera() const { return camera_; }
    // The scenes alone, for a window that brings its own camera and light.
    SoSeparator* getScenes() const { return scenes_; }
    const SbViewportRegion& getViewportRegion() const { return region_; }

    // Makes the viewport width × height and frames every scene in it.
    void viewAll(int width, int height);
    // Frames every scene at the size of the viewport, renders it offscreen
    // and writes the picture (PNG or JPEG by the extension); false after an
    // "Error: " line.
    bool snapshot(const char* path, int width, int height);
    // A press and a release of the mouse button (1 left, 2 right, 3 middle
    // as Coin counts them) at pixel (x, y) of the viewport, y from the top,
    // each handed to the pick callbacks; answers whether one handled the press.
    bool click(int x, int y, int button = 1);
    // Writes the open window's picture; false after an "Error: " line.
    bool grab(const char* path) const;

    // What the viewer asks of an open interactive window.
    class Window {
    public:
        virtual ~Window() = default;
        virtual void viewAll() = 0;
        // Writes the window's picture; false after an "Error: " line.
        virtual bool writeImage(const char* path) = 0;
    };
    // The open window (null: none); `viewer viewAll` frames it too, `viewer grab` saves its picture.
    void setWindow(Window* window) { window_ = window; }

    // Adds the console command `viewer`.
    static void installCommands(KxTclInterpreter& tcl);

private:
    KxViewer();

    SoRefPtr<SoSeparator> root_;
    SoRefPtr<SoPerspectiveCamera> camera_;
    SoRefPtr<SoSeparator> scenes_;
    SbViewportRegion region_{800, 600};
    Window* window_ = nullptr;
};

#define theViewer (&KxViewer::instance())
