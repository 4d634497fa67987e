#include "korva/core/KxParamBundle.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstring>
#include <memory>

#include "korva/core/KxTextScanner.h"

KxParamBundle::KxParamBundle(const char* name) : name_(name ? name : "") {}

KxParamBundle::KxParamBundle(const KxParamBundle& other) : name_(other.name_) {
    copyContentsFrom(other);
}

KxParamBundle& KxParamBundle::operator=(const KxParamBundle& other) {
    if (this != &other) {
        name_ = other.name_;
        copyContentsFrom(other);
    }
    return *this;
}

KxParamBundle::~KxParamBundle() {
    clear();
}

const KxParam* KxParamBundle::findParam(const char* name) const {
    for (const KxParam& p : params_) {
        if (std::strcmp(p.getName(), name) == 0) {
            return &p;
        }
    }
    return nullptr;
}

bool KxParamBundle::removeParam(const char* name) {
    for (auto it = params_.begin(); it != params_.end(); ++it) {
        if (std::strcmp(it->getName(), name) == 0) {
            params_.erase(it);
            return true;
        }
    }
    return false;
}

KxParam& KxParamBundle::paramForSet(const char* name, KxParam::Kind kind) {
    for (KxParam& p : params_) {
        if (std::strcmp(p.getName(), name) == 0) {
            p = KxParam(name, kind);
            return p;
        }
    }
    params_.emplace_back(name, kind);
    return params_.back();
}

void KxParamBundle::setInts(const char* name, const int* values, int n) {
    paramForSet(name, KxParam::INT).values().assign(values, values + n);
}

void KxParamBundle::setFloats(const char* name, const float* values, int n) {
    paramForSet(name, KxParam::FLOAT).values().assign(values, values + n);
}

void KxParamBundle::setDoubles(const char* name, const double* values, int n) {
    paramForSet(name, KxParam::DOUBLE).values().assign(values, values + n);
}

void KxParamBundle::setString(const char* name, const char* value) {
    paramForSet(name, KxParam::STRING).setString(value ? value : "");
}

namespace {
template <class T>
bool findNumbers(const KxParam* p, int n, T* values) {
    if (!p || !p->isNumeric() || p->getNumValues() != n) {
        return false;
    }
    for (int i = 0; i < n; ++i) {
        values[i] = static_cast<T>(p->getDouble(i));
    }
    return true;
}
}  // namespace

bool KxParamBundle::findInt(const char* name, int& value) const {
    return findNumbers(findParam(name), 1, &value);
}
bool KxParamBundle::findFloat(const char* name, float& value) const {
    return findNumbers(findParam(name), 1, &value);
}
bool KxParamBundle::findDouble(const char* name, double& value) const {
    return findNumbers(findParam(name), 1, &value);
}
bool KxParamBundle::findInts(const char* name, int n, int* values) const {
    return findNumbers(findParam(name), n, values);
}
bool KxParamBundle::findReals(const char* name, int n, float* values) const {
    return findNumbers(findParam(name), n, values);
}
bool KxParamBundle::findReals(const char* name, int n, double* values) const {
    return findNumbers(findParam(name), n, values);
}

bool KxParamBundle::findString(const char* name, String& value) const {
    const KxParam* p = findParam(name);
    if (!p || p->getKind() != KxParam::STRING) {
        return false;
    }
    value = p->getString();
    return true;
}

int KxParamBundle::level() const {
    int n = 1;
    for (const KxParamBundle* b = parent_; b; b = b->parent_) {
        ++n;
    }
    return n;
}

int KxParamBundle::height() const {
    int below = 0;
    for (const KxParamBundle* b : bundles_) {
        below = std::max(below, b->height());
    }
    return below + 1;
}

KxParamBundle* KxParamBundle::getBundle(const char* name) const {
    int i = indexOfBundle(name);
    return i < 0 ? nullptr : bundles_[static_cast<size_t>(i)];
}

int KxParamBundle::indexOfBundle(const KxParamBundle* bundle) const {
    auto it = std::find(bundles_.begin(), bundles_.end(), bundle);
    return it == bundles_.end() ? -1 : static_cast<int>(it - bundles_.begin());
}

int KxParamBundle::indexOfBundle(const char* name) const {
    for (size_t i = 0; i < bundles_.size(); ++i) {
        if (std::strcmp(bundles_[i]->getName(), name) == 0) {
            return static_cast<int>(i);
        }
    }
    return -1;
}

KxParamBundle* KxParamBundle::addBundle(const char* name) {
    KxParamBundle* bundle = new KxParamBundle(name);
    insertBundle(bundle);
    return bundle;
}

void KxParamBundle::insertBundle(KxParamBundle* bundle, int index) {
    bundle->parent_ = this;
    if (index < 0 || index >= getNumBundles()) {
        bundles_.push_back(bundle);
    } else {
        bundles_.insert(bundles_.begin() + index, bundle);
    }
}

KxParamBundle* KxParamBundle::takeBundle(int index) {
    if (index < 0 || index >= getNumBundles()) {
        return nullptr;
    }
    KxParamBundle* bundle = bundles_[static_cast<size_t>(index)];
    bundles_.erase(bundles_.begin() + index);
    bundle->parent_ = nullptr;
    return bundle;
}

bool KxParamBundle::removeBundle(KxParamBundle* bundle) {
    KxParamBundle* taken = takeBundle(indexOfBundle(bundle));
    delete taken;
    return taken != nullptr;
}

bool KxParamBundle::removeBundle(const char* name) {
    KxParamBundle* taken = takeBundle(indexOfBundle(name));
    delete taken;
    return taken != nullptr;
}

bool KxParamBundle::moveBundle(int from, int to) {
    int n = getNumBundles();
    if (from < 0 || from >= n || to < 0 || to >= n) {
        return false;
    }
    KxParamBundle* bundle = bundles_[static_cast<size_t>(from)];
    bundles_.erase(bundles_.begin() + from);
    bundles_.insert(bundles_.begin() + to, bundle);
    return true;
}

void KxParamBundle::clear() {
    params_.clear();
    for (KxParamBundle* b : bundles_) {
        delete b;
    }
    bundles_.clear();
}

void KxParamBundle::copyContentsFrom(const KxParamBundle& other) {
    if (this == &other) {
        return;
    }
    // Copy first: other may be one of our own sub-bundles.
    std::vector<KxParam> params = other.params_;
    std::vector<KxParamBundle*> bundles;
    for (const KxParamBundle* b : other.bundles_) {
        bundles.push_back(new KxParamBundle(*b));
    }
    clear();
    params_ = std::move(params);
    for (KxParamBundle* b : bundles) {
        insertBundle(b);
    }
}

bool KxParamBundle::operator==(const KxParamBundle& other) const {
    if (name_ != other.name_ || params_ != other.params_ || bundles_.size() != other.bundles_.size()) {
        return false;
    }
    for (size_t i = 0; i < bundles_.size(); ++i) {
        if (*bundles_[i] != *other.bundles_[i]) {
            return false;
        }
    }
    return true;
}

// ---------------------------------------------------------------------------
// Text form

namespace {

const char* kindName(KxParam::Kind kind) {
    switch (kind) {
        case KxParam::INT:
            return "int";
        case KxParam::FLOAT:
            return "float";
        case KxParam::DOUBLE:
            return "double";
        default:
            return "string";
    }
}

void appendNumber(std::string& out, KxParam::Kind kind, double v) {
    char buf[64];
    std::to_chars_result r;
    if (kind == KxParam::INT) {
        r = std::to_chars(buf, buf + sizeof(buf), static_cast<long long>(v));
    } else if (kind == KxParam::FLOAT) {
        r = std::to_chars(buf, buf + sizeof(buf), static_cast<float>(v));
    } else {
        r = std::to_chars(buf, buf + sizeof(buf), v);
    }
    out.append(buf, r.ptr);
}

bool parseNumber(const std::string& word, KxParam::Kind kind, double& value) {
    const char* first = word.data();
    const char* last = first + word.size();
    std::from_chars_result r;
    if (kind == KxParam::INT) {
        long long v = 0;
        r = std::from_chars(first, last, v);
        if (v < INT32_MIN || v > INT32_MAX) {
            return false;
        }
        value = static_cast<double>(v);
    } else if (kind == KxParam::FLOAT) {
        float v = 0;
        r = std::from_chars(first, last, v);
        value = v;
    } else {
        r = std::from_chars(first, last, value);
    }
    return r.ec == std::errc() && r.ptr == last;
}

}  // namespace

std::string KxParamBundle::toText(int indent) const {
    std::string out;
    writeText(out, indent);
    return out;
}

void KxParamBundle::writeText(std::string& out, int indent) const {
    std::string pad(static_cast<size_t>(indent), ' ');
    for (const KxParam& p : params_) {
        out += pad;
        KxTextScanner::appendQuoted(out, p.getName());
        out += ' ';
        out += kindName(p.getKind());
        if (p.getKind() == KxParam::STRING) {
            out += ' ';
            KxTextScanner::appendQuoted(out, p.getString());
        } else {
            for (double v : p.values()) {
                out += ' ';
                appendNumber(out, p.getKind(), v);
            }
        }
        out += '\n';
    }
    for (const KxParamBundle* b : bundles_) {
        out += pad;
        KxTextScanner::appendQuoted(out, b->name_);
        out += " {\n";
        b->writeText(out, indent + 2);
        out += pad;
        out += "}\n";
    }
}

bool KxParamBundle::fromText(const char* text, size_t length, std::string& error) {
    std::unique_ptr<KxParamBundle> result(new KxParamBundle(name_.c_str()));
    std::vector<KxParamBundle*> stack{result.get()};
    KxTextScanner scanner(text, length);
    std::string token;
    auto fail = [&](const std::string& what) {
        error = "line " + std::to_string(scanner.line()) + ": " + what;
        return false;
    };
    while (true) {
        KxTextScanner::Token t = scanner.next(token);
        if (t == KxTextScanner::END) {
            break;
        }
        if (t == KxTextScanner::CLOSE) {
            if (stack.size() == 1) {
                return fail("unmatched '}'");
            }
            stack.pop_back();
            continue;
        }
        if (t != KxTextScanner::QUOTED) {
            return fail("expected a quoted name");
        }
        std::string name = token;
        t = scanner.next(token);
        if (t == KxTextScanner::OPEN) {
            if (level() + static_cast<int>(stack.size()) > kMaxDepth) {
                return fail("parameter bundles nested deeper than " + std::to_string(kMaxDepth));
            }
            stack.push_back(stack.back()->addBundle(name.c_str()));
            continue;
        }
        if (t != KxTextScanner::WORD) {
            return fail("expected a type or '{' after \"" + name + "\"");
        }
        KxParam::Kind kind;
        if (token == "int") {
            kind = KxParam::INT;
        } else if (token == "float") {
            kind = KxParam::FLOAT;
        } else if (token == "double") {
            kind = KxParam::DOUBLE;
        } else if (token == "string") {
            kind = KxParam::STRING;
        } else {
            return fail("unknown parameter type '" + token + "'");
        }
        KxParam& param = stack.back()->paramForSet(name.c_str(), kind);
        if (kind == KxParam::STRING) {
            if (scanner.next(token) != KxTextScanner::QUOTED) {
                return fail("expected a quoted string value for \"" + name + "\"");
            }
            param.setString(token);
            continue;
        }
        while (scanner.peek() == KxTextScanner::WORD) {
            scanner.next(token);
            double v;
            if (!parseNumber(token, kind, v)) {
                return fail("bad " + std::string(kindName(kind)) + " value '" + token + "' for \"" + name +
                            "\"");
            }
            param.values().push_back(v);
        }
    }
    if (stack.size() != 1) {
        return fail("missing '}' at end of text");
    }
    copyContentsFrom(*result);
    return true;
}
