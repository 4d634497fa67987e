// korva convert IN OUT: loads IN (format by content or extension) and saves
// its data object in the format that OUT's extension names.

#include <vector>

#include "KorvaSession.h"
#include "KorvaSubcommand.h"
#include "korva/core/KxData.h"
#include "korva/core/KxFileFormatRegistry.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObjectPool.h"

namespace {

int runConvert(KorvaSession&, int argc, char** argv) {
    if (argc != 2) {
        return KorvaSubcommand::find("convert")->usage();
    }
    std::vector<KxObject*> created;
    if (!theFileFormats->load(argv[0], created, *theObjectPool)) {
        return 1;
    }
    KxData* data = nullptr;
    for (KxObject* object : created) {
        if ((data = dynamic_cast<KxData*>(object))) {
            break;
        }
    }
    if (!data) {
        theMsg->printf("Error: %s holds no data object to convert.", argv[0]);
        return 1;
    }
    const KxFileFormat* format = theFileFormats->findWriter(argv[1], data);
    if (!format) {
        theMsg->printf("Error: No format writes %s to files named like %s.", data->getTypeName(), argv[1]);
        return 1;
    }
    return theFileFormats->save(*format, data, argv[1]) ? 0 : 1;
}

KorvaSubcommand::Registrar registrar{"convert", "IN OUT",
                                     "convert a file to the format OUT's extension names", runConvert};

}  // namespace
