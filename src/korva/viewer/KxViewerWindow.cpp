#include "korva/viewer/KxViewerWindow.h"

#include <QCoreApplication>
#include <QGLWidget>
#include <QOpenGLWidget>

#include <Inventor/Qt/viewers/SoQtExaminerViewer.h>
#include <Inventor/SbViewportRegion.h>
#include <Inventor/SoSceneManager.h>
#include <Inventor/events/SoMouseButtonEvent.h>
#include <Inventor/nodes/SoEventCallback.h>
#include <Inventor/nodes/SoSeparator.h>

#include "korva/core/KxMessageConsole.h"
#include "korva/viewer/KxOffscreenRenderer.h"
#include "korva/viewer/KxPickDispatch.h"
#include "korva/viewer/KxViewer.h"

KxViewerWindow::KxViewerWindow(QWidget* parent) {
    root_ = new SoSeparator;
    auto* events = new SoEventCallback;
    events->addEventCallback(SoMouseButtonEvent::getClassTypeId(), mouseButtonCB, this);
    root_->addChild(events);
    root_->addChild(theViewer->getScenes());
    viewer_ = new SoQtExaminerViewer(parent);
    viewer_->setSceneGraph(root_);
    viewer_->setTitle("Korva");
    viewer_->show();
    theViewer->setWindow(this);
}

KxViewerWindow::~KxViewerWindow() {
    theViewer->setWindow(nullptr);
    delete viewer_;
}

void KxViewerWindow::viewAll() {
    QCoreApplication::processEvents();  // the window is mapped and has its size
    viewer_->viewAll();
}

QImage KxViewerWindow::grab() {
    QCoreApplication::processEvents();  // the window is mapped and has its size
    QWidget* widget = viewer_->getGLWidget();
    if (auto* gl = qobject_cast<QGLWidget*>(widget)) {
        // Drawn into the back buffer without a swap, which is what grabFrameBuffer reads.
        gl->makeCurrent();
        viewer_->getSceneManager()->setViewportRegion(SbViewportRegion(gl->width(), gl->height()));
        viewer_->getSceneManager()->render(viewer_->isClearBeforeRender(), TRUE);
        return gl->grabFrameBuffer();
    }
    if (auto* gl = qobject_cast<QOpenGLWidget*>(widget)) {
        return gl->grabFramebuffer();
    }
    return QImage();
}

bool KxViewerWindow::writeImage(const char* path) {
    const char* format = KxOffscreenRenderer::checkImagePath(path);
    if (!format) {
        return false;
    }
    QImage image = grab();
    if (image.isNull()) {
        theMsg->printf("Error: Cannot read the viewer window's picture.");
        return false;
    }
    if (!image.save(QString::fromLocal8Bit(path), format)) {
        theMsg->printf("Error: Cannot write %s.", path);
        return false;
    }
    return true;
}

// Clicks in pick mode: the pick callbacks get the event with what lies under it.
void KxViewerWindow::mouseButtonCB(void*, SoEventCallback* node) {
    KxPickEvent event;
    event.mouse = static_cast<const SoMouseButtonEvent*>(node->getEvent());
    event.picked = node->getPickedPoint();
    if (thePickDispatch->dispatch(event)) {
        node->setHandled();
    }
}
