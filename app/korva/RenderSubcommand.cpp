// korva render FILE OUT.png [WIDTH HEIGHT]: loads a file and draws the first
// object in it that has a default scene (see KxSceneBuilders) into a PNG,
// offscreen, through a camera that frames the scene. A FILE ending in ".tcl"
// is run as a script instead, and the first object it leaves in the pool
// that can be drawn is drawn.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <Inventor/nodes/SoNode.h>

#include "KorvaSession.h"
#include "KorvaSubcommand.h"
#include "korva/core/KxFileFormatRegistry.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObject.h"
#include "korva/core/KxObjectPool.h"
#include "korva/viewer/KxOffscreenRenderer.h"
#include "korva/viewer/KxSceneBuilders.h"

namespace {

int usage() {
    std::fprintf(stderr, "usage: korva render FILE OUT.png [WIDTH HEIGHT]\n");
    return 2;
}

bool parseSize(const char* text, int& value) {
    char* end = nullptr;
    long v = std::strtol(text, &end, 10);
    if (end == text || *end != '\0' || v < 1 || v > 8192) {
        return false;
    }
    value = static_cast<int>(v);
    return true;
}

bool isScript(const char* path) {
    size_t n = std::strlen(path);
    return n > 4 && std::strcmp(path + n - 4, ".tcl") == 0;
}

int runRender(KorvaSession& session, int argc, char** argv) {
    int width = 800, height = 600;
    if (argc != 2 && argc != 4) {
        return usage();
    }
    if (argc == 4 && (!parseSize(argv[2], width) || !parseSize(argv[3], height))) {
        return usage();
    }
    std::vector<KxObject*> created;
    if (isScript(argv[0])) {
        if (session.runScript(argv[0], 0, nullptr) != 0) {
            return 1;
        }
        for (int i = 0; i < theObjectPool->size(); ++i) {
            created.push_back(theObjectPool->get(i));
        }
    } else if (!theFileFormats->load(argv[0], created, *theObjectPool)) {
        return 1;
    }
    SoNode* scene = nullptr;
    for (KxObject* object : created) {
        if ((scene = theSceneBuilders->build(object)) != nullptr) {
            break;
        }
    }
    if (!scene) {
        theMsg->printf("Error: Nothing in %s can be rendered.", argv[0]);
        return 1;
    }
    scene->ref();
    KxOffscreenRenderer renderer(width, height);
    bool ok = renderer.render(scene) && renderer.writePng(argv[1]);
    scene->unref();
    return ok ? 0 : 1;
}

KorvaSubcommand::Registrar registrar{"render", "FILE OUT.png [WIDTH HEIGHT]",
                                     "draw a data file offscreen into a PNG image", runRender};

}  // namespace
