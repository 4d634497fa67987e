#pragma once

#include <QImage>

#include "korva/inventor/SoRefPtr.h"
#include "korva/viewer/KxViewer.h"

class QWidget;
class SoEventCallback;
class SoQtExaminerViewer;
class SoSeparator;

// The interactive window of the session's viewer (KxViewer): Coin's examiner
// viewer through SoQt, showing every display module's scene. In pick mode
// (Esc toggles it) mouse button events on the scene go to the pick callbacks
// of KxPickDispatch. SoQt::init must have been called (it needs an X display).
// While a window is open, `viewer grab FILE` saves its frame buffer.
class KxViewerWindow : public KxViewer::Window {
public:
    explicit KxViewerWindow(QWidget* parent);
    ~KxViewerWindow() override;
    KxViewerWindow(const KxViewerWindow&) = delete;
    KxViewerWindow& operator=(const KxViewerWindow&) = delete;

    // Frames every scene.
    void viewAll() override;
    // Redraws now and answers the frame buffer's picture (null when it cannot be read).
    QImage grab();
    bool writeImage(const char* path) override;

private:
    static void mouseButtonCB(void* data, SoEventCallback* node);

    SoRefPtr<SoSeparator> root_;
    SoQtExaminerViewer* viewer_;
};
