// A small package for the tests of the package loader and of the korva
// executable: one class (KxTestNote) and one format ("Test note", .note).

#include <cstring>
#include <fstream>
#include <iterator>
#include <string>

#include "KxTestNote.h"
#include "korva/core/KxClassRegistry.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObjectPool.h"

namespace {
int gInitCalls = 0;
bool gInitialised = false;
const char kMagic[] = "KXNOTE\n";
const size_t kMagicLength = sizeof(kMagic) - 1;

std::string baseName(const char* filename) {
    const char* slash = std::strrchr(filename, '/');
    return slash ? slash + 1 : filename;
}
}  // namespace

extern "C" int korvapackage_kxtestpackage_init() {
    ++gInitCalls;
    if (gInitialised) {
        return 1;
    }
    gInitialised = true;
    theClassRegistry->registerClass("KxTestNote", "kxtestpackage",
                                    []() -> KxObject* { return new KxTestNote; });
    return 1;
}

// How often the init function ran: the loader must call it once.
extern "C" int kxtestpackage_initCalls() {
    return gInitCalls;
}

extern "C" int kxtestpackageCheckNote(const char* header, int length) {
    return length >= static_cast<int>(kMagicLength) && std::memcmp(header, kMagic, kMagicLength) == 0;
}

extern "C" int kxtestpackageReadNote(const char* filename) {
    std::ifstream in(filename, std::ios::binary);
    std::string contents((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    if (!in.good() && !in.eof()) {
        theMsg->printf("Error: cannot read %s", filename);
        return 0;
    }
    if (contents.compare(0, kMagicLength, kMagic) != 0) {
        theMsg->printf("Error: %s is not a note (no KXNOTE line)", filename);
        return 0;
    }
    KxTestNote* note = new KxTestNote;
    note->parameters().setString("text", contents.substr(kMagicLength).c_str());
    theObjectPool->add(note, baseName(filename).c_str());
    return 1;
}

extern "C" int kxtestpackageWriteNote(KxData* data, const char* filename) {
    String text;
    data->parameters().findString("text", text);
    std::ofstream out(filename, std::ios::binary);
    out << kMagic << text.getString();
    out.close();
    if (!out) {
        theMsg->printf("Error: cannot write %s", filename);
        return 0;
    }
    return 1;
}
