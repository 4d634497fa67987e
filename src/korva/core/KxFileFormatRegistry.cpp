#include "korva/core/KxFileFormatRegistry.h"

#include <strings.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <sstream>

#include "korva/core/KxData.h"
#include "korva/core/KxMessageConsole.h"
#include "korva/core/KxObjectPool.h"
#include "korva/core/KxTextScanner.h"

KxFileFormatRegistry& KxFileFormatRegistry::instance() {
    static KxFileFormatRegistry registry;
    return registry;
}

bool KxFileFormatRegistry::addFormat(const KxFileFormat& format) {
    if (format.name.empty() || (!format.read && !format.write)) {
        theMsg->printf("Error: file format \"%s\" needs a name and a reader or a writer",
                       format.name.c_str());
        return false;
    }
    for (const auto& f : formats_) {
        if (strcasecmp(f->name.c_str(), format.name.c_str()) == 0) {
            theMsg->printf("Error: file format \"%s\" is registered already", format.name.c_str());
            return false;
        }
    }
    formats_.emplace_back(new KxFileFormat(format));
    return true;
}

bool KxFileFormatRegistry::removeFormat(const char* name) {
    for (auto it = formats_.begin(); it != formats_.end(); ++it) {
        if (strcasecmp((*it)->name.c_str(), name) == 0) {
            formats_.erase(it);
            return true;
        }
    }
    return false;
}

const KxFileFormat* KxFileFormatRegistry::find(const char* nameOrExtension) const {
    for (const auto& f : formats_) {
        if (strcasecmp(f->name.c_str(), nameOrExtension) == 0) {
            return f.get();
        }
    }
    std::string ext = nameOrExtension;
    for (char& c : ext) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    for (const auto& f : formats_) {
        if (f->hasExtension(ext)) {
            return f.get();
        }
    }
    return nullptr;
}

std::string KxFileFormatRegistry::extensionOf(const char* filename) {
    const char* slash = std::strrchr(filename, '/');
    const char* base = slash ? slash + 1 : filename;
    const char* dot = std::strrchr(base, '.');
    if (!dot || dot == base) {
        return "";
    }
    std::string ext = dot + 1;
    for (char& c : ext) {
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    }
    return ext;
}

std::string KxFileFormatRegistry::probeContentType(const char* header, int length) const {
    std::string type;
    for (const ContentProbe& probe : probes_) {
        if (probe(header, length, type) && !type.empty()) {
            return type;
        }
    }
    return "";
}

namespace {

// The first bytes of a file; false if it cannot be opened.
bool readHeader(const char* filename, std::string& header) {
    std::ifstream in(filename, std::ios::binary);
    if (!in) {
        return false;
    }
    header.resize(KxFileFormatRegistry::kHeaderSize);
    in.read(&header[0], KxFileFormatRegistry::kHeaderSize);
    header.resize(static_cast<size_t>(in.gcount()));
    return true;
}

}  // namespace

const KxFileFormat* KxFileFormatRegistry::findReader(const char* filename) const {
    std::string header;
    if (!readHeader(filename, header)) {
        return nullptr;
    }
    const int length = static_cast<int>(header.size());
    std::string contentType = probeContentType(header.data(), length);
    if (!contentType.empty()) {
        for (const auto& f : formats_) {
            if (f->read && f->contentType == contentType) {
                return f.get();
            }
        }
    }
    std::vector<const KxFileFormat*> rejected;
    for (const auto& f : formats_) {
        if (f->read && f->check && f->contentType.empty()) {
            if (f->check(header.data(), length)) {
                return f.get();
            }
            rejected.push_back(f.get());
        }
    }
    std::string ext = extensionOf(filename);
    for (const auto& f : formats_) {
        if (f->read && f->contentType.empty() && f->hasExtension(ext) &&
            std::find(rejected.begin(), rejected.end(), f.get()) == rejected.end()) {
            return f.get();
        }
    }
    return nullptr;
}

const KxFileFormat* KxFileFormatRegistry::findWriter(const char* filename, const KxData* data) const {
    std::string ext = extensionOf(filename);
    for (const auto& f : formats_) {
        if (f->write && f->hasExtension(ext) &&
            (f->className.empty() || data->isOfType(f->className.c_str()))) {
            return f.get();
        }
    }
    return nullptr;
}

bool KxFileFormatRegistry::load(const char* filename, std::vector<KxObject*>& created, KxObjectPool& pool) {
    created.clear();
    struct stat st;
    if (stat(filename, &st) != 0 || access(filename, R_OK) != 0) {
        theMsg->printf("Error: cannot read file %s: %s", filename, std::strerror(errno));
        return false;
    }
    if (!S_ISREG(st.st_mode)) {
        theMsg->printf("Error: cannot read file %s: not a regular file", filename);
        return false;
    }
    const KxFileFormat* format = findReader(filename);
    if (!format) {
        theMsg->printf("Error: unknown file format of %s", filename);
        return false;
    }
    std::vector<KxObject*> before;
    for (int i = 0; i < pool.size(); ++i) {
        before.push_back(pool.get(i));
    }
    const int errorsBefore = theMsg->numErrorLines();
    int ok = format->read(filename);
    for (int i = 0; i < pool.size(); ++i) {
        KxObject* object = pool.get(i);
        if (std::find(before.begin(), before.end(), object) == before.end()) {
            created.push_back(object);
        }
    }
    // A reader that said what went wrong needs no second, vaguer line.
    if (!ok && theMsg->numErrorLines() == errorsBefore) {
        theMsg->printf("Error: could not read %s as %s", filename, format->name.c_str());
    }
    if (!ok) {
        return false;
    }
    for (KxObject* object : created) {
        if (KxData* data = dynamic_cast<KxData*>(object)) {
            data->setLoadCmd(filename);
        }
    }
    return true;
}

bool KxFileFormatRegistry::save(const KxFileFormat& format, KxData* data, const char* filename) {
    if (!format.write) {
        theMsg->printf("Error: format %s cannot be written", format.name.c_str());
        return false;
    }
    if (!format.className.empty() && !data->isOfType(format.className.c_str())) {
        theMsg->printf("Error: format %s writes %s, not %s", format.name.c_str(), format.className.c_str(),
                       data->getTypeName());
        return false;
    }
    // The writer gets the user's file name (for its progress and messages)
    // and replaces the file safely itself: one temporary file, one rename.
    const int errorsBefore = theMsg->numErrorLines();
    if (!format.write(data, filename)) {
        if (theMsg->numErrorLines() == errorsBefore) {
            theMsg->printf("Error: could not write %s as %s", filename, format.name.c_str());
        }
        return false;
    }
    data->setSaveInfoParam(format.name.c_str());
    data->setModified(false);
    return true;
}

// ---------------------------------------------------------------------------
// Resource files

namespace {

// A format block as written, before its functions are resolved.
struct FormatText {
    KxFileFormat format;
    std::string read, write, check;
    int line = 0;
};

bool isValue(KxTextScanner::Token t) {
    return t == KxTextScanner::WORD || t == KxTextScanner::QUOTED;
}

// A key's values run to the end of its line or to the format's '}'.
bool parseFormats(KxTextScanner& scanner, std::vector<FormatText>& out, std::string& error) {
    std::string word;
    auto failAt = [&](int line, const std::string& what) {
        error = "line " + std::to_string(line) + ": " + what;
        return false;
    };
    auto fail = [&](const std::string& what) { return failAt(scanner.line(), what); };
    auto nextLine = [&] { return scanner.lineAt(scanner.skipBlanks()); };
    while (true) {
        KxTextScanner::Token t = scanner.next(word);
        if (t == KxTextScanner::END) {
            return true;
        }
        if (t != KxTextScanner::WORD || word != "format") {
            return fail("expected 'format'");
        }
        FormatText entry;
        entry.line = nextLine();
        if (!isValue(scanner.next(entry.format.name)) || entry.format.name.empty()) {
            return failAt(entry.line, "expected a format name after 'format'");
        }
        if (scanner.next(word) != KxTextScanner::OPEN) {
            return fail("expected '{' after the name of format \"" + entry.format.name + "\"");
        }
        while (true) {
            t = scanner.next(word);
            if (t == KxTextScanner::CLOSE) {
                break;
            }
            if (t != KxTextScanner::WORD) {
                return fail("unterminated format \"" + entry.format.name + "\"");
            }
            const std::string key = word;
            const int keyLine = scanner.line();
            std::vector<std::string> values;
            while (nextLine() == keyLine && isValue(scanner.peek())) {
                if (scanner.next(word) == KxTextScanner::BAD) {
                    return failAt(keyLine, "bad value of '" + key + "'");
                }
                values.push_back(word);
            }
            if (nextLine() == keyLine && scanner.peek() != KxTextScanner::CLOSE &&
                scanner.peek() != KxTextScanner::END) {
                return failAt(keyLine, "bad value of '" + key + "'");
            }
            if (values.empty() || (key != "extensions" && values.size() != 1)) {
                return failAt(keyLine,
                              "'" + key + "' needs " + (key == "extensions" ? "values" : "one value"));
            }
            if (key == "extensions") {
                for (std::string& v : values) {
                    for (char& c : v) {
                        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
                    }
                    entry.format.extensions.push_back(v[0] == '.' ? v.substr(1) : v);
                }
            } else if (key == "class") {
                entry.format.className = values[0];
            } else if (key == "contentType") {
                entry.format.contentType = values[0];
            } else if (key == "read") {
                entry.read = values[0];
            } else if (key == "write") {
                entry.write = values[0];
            } else if (key == "check") {
                entry.check = values[0];
            } else {
                return failAt(keyLine, "unknown key '" + key + "'");
            }
        }
        if (entry.read.empty() && entry.write.empty()) {
            return fail("format \"" + entry.format.name + "\" has neither 'read' nor 'write'");
        }
        out.push_back(std::move(entry));
    }
}

}  // namespace

int KxFileFormatRegistry::parseResources(const char* text, size_t length, const char* origin,
                                         const char* package, const Resolver& resolve) {
    KxTextScanner scanner(text, length);
    std::vector<FormatText> entries;
    std::string error;
    if (!parseFormats(scanner, entries, error)) {
        theMsg->printf("Error: %s, %s", origin, error.c_str());
        return -1;
    }
    int added = 0;
    for (FormatText& e : entries) {
        KxFileFormat& f = e.format;
        f.package = package ? package : "";
        bool resolved = true;
        auto lookup = [&](const std::string& symbol) -> void* {
            if (symbol.empty()) {
                return nullptr;
            }
            void* p = resolve ? resolve(symbol.c_str()) : nullptr;
            if (!p) {
                theMsg->printf("Error: %s, line %d: format \"%s\": no function %s", origin, e.line,
                               f.name.c_str(), symbol.c_str());
                resolved = false;
            }
            return p;
        };
        // Deliberate: the resolved symbols are extern "C" functions of the
        // signatures documented in the header; dlsym cannot check them.
        if (void* p = lookup(e.read)) {
            f.read = reinterpret_cast<int (*)(const char*)>(p);
        }
        if (void* p = lookup(e.write)) {
            f.write = reinterpret_cast<int (*)(KxData*, const char*)>(p);
        }
        if (void* p = lookup(e.check)) {
            f.check = reinterpret_cast<int (*)(const char*, int)>(p);
        }
        if (resolved && addFormat(f)) {
            ++added;
        }
    }
    return added;
}

int KxFileFormatRegistry::loadResourceFile(const char* path, const char* package, const Resolver& resolve) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        theMsg->printf("Error: cannot read resource file %s", path);
        return -1;
    }
    std::stringstream text;
    text << in.rdbuf();
    std::string s = text.str();
    return parseResources(s.data(), s.size(), path, package, resolve);
}
