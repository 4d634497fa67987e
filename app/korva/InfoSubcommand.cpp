// korva info FILE ...: loads each file and prints the info tags of what it holds.

#include <cstdio>
#include <vector>

#include "KorvaSession.h"
#include "KorvaSubcommand.h"
#include "korva/core/KxFileFormatRegistry.h"
#include "korva/core/KxInfoTags.h"
#include "korva/core/KxObject.h"
#include "korva/core/KxObjectPool.h"

namespace {

int runInfo(KorvaSession&, int argc, char** argv) {
    if (argc < 1) {
        std::fprintf(stderr, "usage: korva info FILE ...\n");
        return 2;
    }
    int status = 0;
    for (int i = 0; i < argc; ++i) {
        std::vector<KxObject*> created;
        if (!theFileFormats->load(argv[i], created, *theObjectPool)) {
            status = 1;
            continue;
        }
        for (KxObject* object : created) {
            KxInfoTags tags;
            tags.add("File:", "%s", argv[i]);
            tags.add("Label:", "%s", object->getLabel());
            object->info(tags);
            std::fputs(tags.toText().c_str(), stdout);
        }
    }
    return status;
}

KorvaSubcommand::Registrar registrar{"info", "FILE ...", "load files and print what they hold", runInfo};

}  // namespace
