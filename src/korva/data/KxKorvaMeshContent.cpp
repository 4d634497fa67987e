#include "korva/data/KxKorvaMeshContent.h"

#include "korva/core/KxData.h"
#include "korva/core/KxFileFormatRegistry.h"
#include "korva/core/KxObjectPool.h"

int KxKorvaMeshContent::addLoaded(KxData* data, const char* filename) {
    data->setLoadCmd(filename);
    std::string name = filename;
    theObjectPool->add(data, name.substr(name.rfind('/') + 1).c_str());
    return 1;
}

void KxKorvaMeshContent::addFormat(const char* name, const char* className,
                                   std::vector<std::string> extensions, KxFileFormat::ReadFunc read,
                                   KxFileFormat::WriteFunc write) {
    KxFileFormat format;
    format.name = name;
    format.extensions = std::move(extensions);
    format.contentType = className;
    format.className = className;
    format.read = std::move(read);
    format.write = std::move(write);
    theFileFormats->addFormat(format);
}
