#include "korva/viewer/KxOffscreenRenderer.h"

#include <cstring>
#include <string>

#include <QImage>

#include <Inventor/SbViewportRegion.h>
#include <Inventor/SoOffscreenRenderer.h>
#include <Inventor/actions/SoGLRenderAction.h>
#include <Inventor/actions/SoSearchAction.h>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/nodes/SoCallback.h>
#include <Inventor/nodes/SoCamera.h>
#include <Inventor/nodes/SoDirectionalLight.h>
#include <Inventor/nodes/SoPerspectiveCamera.h>
#include <Inventor/nodes/SoSeparator.h>

#include "korva/core/KxFileFormatRegistry.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/gl/KxEglOffscreen.h"
#include "korva/inventor/KxInventor.h"

namespace {

bool hasCamera(SoNode* scene) {
    SoSearchAction search;
    search.setType(SoCamera::getClassTypeId());
    search.setInterest(SoSearchAction::FIRST);
    search.apply(scene);
    return search.getPath() != nullptr;
}

// Notes the cache-context id that the shapes of this render see.
void recordContextId(void* data, SoAction* action) {
    if (action->isOfType(SoGLRenderAction::getClassTypeId())) {
        *static_cast<uint32_t*>(data) = SoGLCacheContextElement::get(action->getState());
    }
}

}  // namespace

KxOffscreenRenderer::KxOffscreenRenderer(int width, int height)
    : width_(width > 0 ? width : 1), height_(height > 0 ? height : 1) {
    KxInventor::init();
    KxEglOffscreen::install();
    renderer_ =
        new SoOffscreenRenderer(SbViewportRegion(static_cast<short>(width_), static_cast<short>(height_)));
    renderer_->setComponents(SoOffscreenRenderer::RGB);
}

KxOffscreenRenderer::~KxOffscreenRenderer() {
    delete renderer_;
}

void KxOffscreenRenderer::setBackgroundColor(const SbColor& color) {
    renderer_->setBackgroundColor(color);
}

bool KxOffscreenRenderer::render(SoNode* scene) {
    if (!scene) {
        theMsg->printf("Error: Nothing to render.");
        return false;
    }
    SoSeparator* root = new SoSeparator;
    root->ref();
    auto* probe = new SoCallback;
    probe->setCallback(recordContextId, &contextId_);
    root->addChild(probe);
    if (!hasCamera(scene)) {
        auto* camera = new SoPerspectiveCamera;
        root->addChild(camera);
        root->addChild(new SoDirectionalLight);
        root->addChild(scene);
        camera->viewAll(scene, renderer_->getViewportRegion());
    } else {
        root->addChild(scene);
    }
    bool ok = renderer_->render(root) == TRUE;
    root->unref();
    if (!ok) {
        theMsg->printf("Error: Offscreen rendering failed.");
        return false;
    }
    // Coin's buffer holds the bottom row first.
    const unsigned char* buffer = renderer_->getBuffer();
    size_t rowBytes = static_cast<size_t>(width_) * 3;
    pixels_.resize(rowBytes * height_);
    for (int y = 0; y < height_; ++y) {
        std::memcpy(&pixels_[rowBytes * y], buffer + rowBytes * (height_ - 1 - y), rowBytes);
    }
    return true;
}

void KxOffscreenRenderer::getPixel(int x, int y, unsigned char rgb[3]) const {
    rgb[0] = rgb[1] = rgb[2] = 0;
    if (pixels_.empty() || x < 0 || y < 0 || x >= width_ || y >= height_) {
        return;
    }
    std::memcpy(rgb, &pixels_[(static_cast<size_t>(y) * width_ + x) * 3], 3);
}

const char* KxOffscreenRenderer::imageFormatOf(const char* path) {
    std::string extension = KxFileFormatRegistry::extensionOf(path);
    if (extension == "png") {
        return "PNG";
    }
    if (extension == "jpg" || extension == "jpeg") {
        return "JPEG";
    }
    return nullptr;
}

const char* KxOffscreenRenderer::checkImagePath(const char* path) {
    const char* format = imageFormatOf(path);
    if (!format) {
        theMsg->printf("Error: Cannot write %s: pictures are written as %s.", path, kImageFormats);
    }
    return format;
}

bool KxOffscreenRenderer::writeImage(const char* path) const {
    const char* format = checkImagePath(path);
    if (!format) {
        return false;
    }
    if (pixels_.empty()) {
        theMsg->printf("Error: No picture rendered to write to %s.", path);
        return false;
    }
    QImage image(pixels_.data(), width_, height_, width_ * 3, QImage::Format_RGB888);
    if (!image.save(QString::fromLocal8Bit(path), format)) {
        theMsg->printf("Error: Cannot write %s.", path);
        return false;
    }
    return true;
}

uint32_t KxOffscreenRenderer::getCacheContextId() const {
    return contextId_;
}
