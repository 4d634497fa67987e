// korva render [--color NAME] [--scale NAME] [--nodes] FILE OUT [WIDTH HEIGHT]: loads a file and draws
// the first object in it that has a default scene (see KxSceneBuilders) into
// a PNG or JPEG picture (by OUT's extension), offscreen, through a camera that
// frames the scene. A FILE ending in ".tcl" is run as a script instead, and the
// first object it leaves in the pool that can be drawn is drawn. --color NAME
// colours the scene by the data of that name (for a graph: a point or edge
// attribute or a label group), --scale NAME sizes it by the data of that name
// (for a graph: the tubes' radii by a float point attribute), --nodes shows
// its nodes (a graph's vertices as spheres).

#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <Inventor/nodes/SoNode.h>

#include "KorvaSession.h"
#include "KorvaSubcommand.h"
#include "korva/core/KxFileFormatRegistry.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObject.h"
#include "korva/core/KxObjectPool.h"
#include "korva/core/KxWorkArea.h"
#include "korva/viewer/KxOffscreenRenderer.h"
#include "korva/viewer/KxSceneBuilders.h"

namespace {

constexpr int kMaxSize = 8192;

struct RenderArguments {
    const char* input = nullptr;
    const char* output = nullptr;
    int width = 800;
    int height = 600;
    KxSceneOptions scene;
};

int usage() {
    return KorvaSubcommand::find("render")->usage();
}

bool parseSize(const char* what, const char* text, int& value) {
    char* end = nullptr;
    long v = std::strtol(text, &end, 10);
    if (end == text || *end != '\0' || v < 1 || v > kMaxSize) {
        theMsg->printf("Error: The %s must be a whole number from 1 to %d, not \"%s\".", what, kMaxSize,
                       text);
        return false;
    }
    value = static_cast<int>(v);
    return true;
}

// Options first or anywhere; the rest are FILE OUT [WIDTH HEIGHT]. Answers 0,
// or the exit status of a wrong call after its message.
int parseArguments(int argc, char** argv, RenderArguments& args) {
    std::vector<const char*> positional;
    for (int i = 0; i < argc; ++i) {
        if (std::strcmp(argv[i], "--color") == 0 && i + 1 < argc) {
            args.scene.colorBy = argv[++i];
        } else if (std::strcmp(argv[i], "--scale") == 0 && i + 1 < argc) {
            args.scene.scaleBy = argv[++i];
        } else if (std::strcmp(argv[i], "--nodes") == 0) {
            args.scene.showNodes = true;
        } else if (argv[i][0] == '-' && argv[i][1] == '-') {
            return usage();
        } else {
            positional.push_back(argv[i]);
        }
    }
    if (positional.size() != 2 && positional.size() != 4) {
        return usage();
    }
    args.input = positional[0];
    args.output = positional[1];
    if (positional.size() == 4 && (!parseSize("width", positional[2], args.width) ||
                                   !parseSize("height", positional[3], args.height))) {
        return 2;
    }
    if (!KxOffscreenRenderer::checkImagePath(args.output)) {
        return 2;
    }
    return 0;
}

bool isScript(const char* path) {
    size_t n = std::strlen(path);
    return n > 4 && std::strcmp(path + n - 4, ".tcl") == 0;
}

// The objects the input leaves in the pool: those a file's reader made, or
// all of them after a script.
bool loadInput(KorvaSession& session, const char* input, std::vector<KxObject*>& created) {
    if (!isScript(input)) {
        return theFileFormats->load(input, created, *theObjectPool);
    }
    if (session.runScript(input, 0, nullptr) != 0) {
        return false;
    }
    for (int i = 0; i < theObjectPool->size(); ++i) {
        created.push_back(theObjectPool->get(i));
    }
    return true;
}

int render(KorvaSession& session, const RenderArguments& args) {
    std::vector<KxObject*> created;
    if (!loadInput(session, args.input, created)) {
        return 1;
    }
    theWorkArea->step();
    KxObject* drawable = nullptr;
    for (KxObject* object : created) {
        if (theSceneBuilders->hasBuilder(object)) {
            drawable = object;
            break;
        }
    }
    if (!drawable) {
        theMsg->printf("Error: Nothing in %s can be rendered.", args.input);
        return 1;
    }
    SoNode* scene = theSceneBuilders->build(drawable, args.scene);
    if (!scene) {
        return 1;
    }
    theWorkArea->step();
    scene->ref();
    KxOffscreenRenderer renderer(args.width, args.height);
    bool ok = renderer.render(scene);
    scene->unref();
    theWorkArea->step();
    return ok && renderer.writeImage(args.output) ? 0 : 1;
}

int runRender(KorvaSession& session, int argc, char** argv) {
    RenderArguments args;
    if (int status = parseArguments(argc, argv, args)) {
        return status;
    }
    // Loading, building the scene, drawing, writing: the bar shows on a terminal only.
    std::string task = std::string("Rendering ") + args.output;
    theWorkArea->startWorking(task.c_str(), 4);
    int status = render(session, args);
    theWorkArea->stopWorking();
    return status;
}

KorvaSubcommand::Registrar registrar{
    "render", "[--color NAME] [--scale NAME] [--nodes] FILE OUT.png|OUT.jpg [WIDTH HEIGHT]",
    "draw a data file offscreen into a PNG or JPEG picture", runRender};

}  // namespace
