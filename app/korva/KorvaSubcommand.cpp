#include "KorvaSubcommand.h"

#include <algorithm>
#include <cstring>

#include "korva/core/KxMessageConsole.h"

namespace {
// A function-local table: registrars in other files run during static
// initialisation, in an order nobody controls.
std::vector<KorvaSubcommand>& table() {
    static std::vector<KorvaSubcommand> subcommands;
    return subcommands;
}
}  // namespace

KorvaSubcommand::Registrar::Registrar(const char* name, const char* arguments, const char* summary, Run run) {
    table().push_back(KorvaSubcommand{name, arguments, summary, run});
}

int KorvaSubcommand::usage() const {
    theMsg->printf("USAGE: korva %s %s", name, arguments);
    return 2;
}

const KorvaSubcommand* KorvaSubcommand::find(const char* name) {
    for (const KorvaSubcommand& s : table()) {
        if (std::strcmp(s.name, name) == 0) {
            return &s;
        }
    }
    return nullptr;
}

std::vector<const KorvaSubcommand*> KorvaSubcommand::all() {
    std::vector<const KorvaSubcommand*> list;
    for (const KorvaSubcommand& s : table()) {
        list.push_back(&s);
    }
    std::sort(list.begin(), list.end(), [](const KorvaSubcommand* a, const KorvaSubcommand* b) {
        return std::strcmp(a->name, b->name) < 0;
    });
    return list;
}
