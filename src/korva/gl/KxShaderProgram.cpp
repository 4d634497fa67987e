#include "korva/gl/KxShaderProgram.h"

#include <GL/glew.h>

#include <fstream>
#include <sstream>
#include <Inventor/elements/SoGLCacheContextElement.h>
#include <Inventor/misc/SoContextHandler.h>

#include "korva/core/KxMessageConsole.h"
#include "korva/gl/KxGLCapabilities.h"
#include "korva/core/KxPackageLoader.h"

namespace {

// The info log of a shader or program, fetched with glGetShaderInfoLog or glGetProgramInfoLog.
std::string infoLog(GLuint object, PFNGLGETSHADERINFOLOGPROC getLog) {
    char buffer[2048] = {0};
    getLog(object, sizeof(buffer) - 1, nullptr, buffer);
    return buffer;
}

GLuint compileStage(GLenum stage, const std::string& source, std::string& log) {
    GLuint shader = glCreateShader(stage);
    const char* text = source.c_str();
    glShaderSource(shader, 1, &text, nullptr);
    glCompileShader(shader);
    GLint ok = GL_FALSE;
    glGetShaderiv(shader, GL_COMPILE_STATUS, &ok);
    if (!ok) {
        log = infoLog(shader, glGetShaderInfoLog);
        glDeleteShader(shader);
        return 0;
    }
    return shader;
}

// The package's resource folder: where the loader found it, or share/<package>
// beside the host library (packages linked directly, as in tests).
std::string resourcePath(const char* package, const char* file) {
    std::string dir = thePackageLoader->getResourceDir(package);
    if (dir.empty()) {
        dir = KxPackageLoader::hostLibraryDir() + "/../share/" + package;
    }
    return dir + "/" + file;
}

bool readFile(const std::string& path, std::string& contents) {
    std::ifstream in(path, std::ios::binary);
    if (!in) {
        return false;
    }
    std::ostringstream buffer;
    buffer << in.rdbuf();
    contents = buffer.str();
    return true;
}

// The program name travels in the callback's data pointer itself.
void deleteProgramCb(void* data, uint32_t) {
    glDeleteProgram(static_cast<GLuint>(reinterpret_cast<uintptr_t>(data)));
}

}  // namespace

std::unique_ptr<KxShaderProgram> KxShaderProgram::create(const char* package, const char* vertexFile,
                                                         const char* fragmentFile) {
    std::string vertex, fragment;
    for (const char* file : {vertexFile, fragmentFile}) {
        std::string path = resourcePath(package, file);
        if (!readFile(path, file == vertexFile ? vertex : fragment)) {
            theMsg->printf("Error: Cannot read shader %s.", path.c_str());
            return nullptr;
        }
    }
    return std::make_unique<KxShaderProgram>(vertex, fragment, std::string(package) + "/" + vertexFile);
}

KxShaderProgram::KxShaderProgram(std::string vertexSource, std::string fragmentSource, std::string name)
    : vertexSource_(std::move(vertexSource)),
      fragmentSource_(std::move(fragmentSource)),
      name_(std::move(name)) {
    SoContextHandler::addContextDestructionCallback(contextDestroyed, this);
}

KxShaderProgram::~KxShaderProgram() {
    SoContextHandler::removeContextDestructionCallback(contextDestroyed, this);
    // Programs can only be deleted with their context current: hand them to
    // Coin, which deletes them the next time that context renders.
    for (const auto& entry : programs_) {
        if (entry.second) {
            SoGLCacheContextElement::scheduleDeleteCallback(
                entry.first.first, deleteProgramCb,
                reinterpret_cast<void*>(static_cast<uintptr_t>(entry.second)));
        }
    }
}

void KxShaderProgram::setUniform(const char* name, float value) {
    uniforms_[name] = {false, value};
}

void KxShaderProgram::setUniform(const char* name, int value) {
    uniforms_[name] = {true, static_cast<float>(value)};
}

bool KxShaderProgram::getUniform(const char* name, float& value) const {
    auto it = uniforms_.find(name);
    if (it == uniforms_.end()) {
        return false;
    }
    value = it->second.second;
    return true;
}

void KxShaderProgram::bindAttribLocation(const char* name, int location) {
    attribLocations_[name] = location;
}

int KxShaderProgram::getAttribLocation(const char* name) const {
    auto it = attribLocations_.find(name);
    return it == attribLocations_.end() ? -1 : it->second;
}

std::string KxShaderProgram::insertMacros(const std::string& source, const std::vector<std::string>& macros) {
    std::string defines;
    for (const std::string& macro : macros) {
        defines += "#define " + macro + "\n";
    }
    std::string::size_type version = source.find("#version");
    if (version == std::string::npos) {
        return defines + source;
    }
    std::string::size_type lineEnd = source.find('\n', version);
    if (lineEnd == std::string::npos) {
        return source + "\n" + defines;
    }
    return source.substr(0, lineEnd + 1) + defines + source.substr(lineEnd + 1);
}

std::string KxShaderProgram::macroKey(const std::vector<std::string>& macros) const {
    std::string key;
    for (const std::string& macro : macros) {
        key += macro + ";";
    }
    return key;
}

unsigned int KxShaderProgram::build(const std::vector<std::string>& macros) {
    std::string log;
    GLuint vertex = compileStage(GL_VERTEX_SHADER, insertMacros(vertexSource_, macros), log);
    GLuint fragment =
        vertex ? compileStage(GL_FRAGMENT_SHADER, insertMacros(fragmentSource_, macros), log) : 0;
    if (!vertex || !fragment) {
        theMsg->printf("Error: Shader %s does not compile: %s", name_.c_str(), log.c_str());
        if (vertex) {
            glDeleteShader(vertex);
        }
        return 0;
    }
    GLuint program = glCreateProgram();
    glAttachShader(program, vertex);
    glAttachShader(program, fragment);
    for (const auto& attrib : attribLocations_) {
        glBindAttribLocation(program, attrib.second, attrib.first.c_str());
    }
    glLinkProgram(program);
    glDeleteShader(vertex);
    glDeleteShader(fragment);
    GLint ok = GL_FALSE;
    glGetProgramiv(program, GL_LINK_STATUS, &ok);
    if (!ok) {
        theMsg->printf("Error: Shader %s does not link: %s", name_.c_str(),
                       infoLog(program, glGetProgramInfoLog).c_str());
        glDeleteProgram(program);
        return 0;
    }
    return program;
}

bool KxShaderProgram::apply(int contextId) {
    if (!KxGLCapabilities::initGlew() || !GLEW_VERSION_2_0) {
        return false;
    }
    std::vector<std::string> macros = macros_;
    if (clipPlanes_) {
        macros.push_back("KORVA_CLIP_PLANES");
    }
    auto key = std::make_pair(contextId, macroKey(macros));
    auto it = programs_.find(key);
    if (it == programs_.end()) {
        it = programs_.emplace(key, build(macros)).first;
    }
    GLuint program = it->second;
    if (!program) {
        return false;
    }
    glUseProgram(program);
    for (const auto& uniform : uniforms_) {
        GLint location = glGetUniformLocation(program, uniform.first.c_str());
        if (location < 0) {
            continue;  // optimised away in this macro variant
        }
        if (uniform.second.first) {
            glUniform1i(location, static_cast<GLint>(uniform.second.second));
        } else {
            glUniform1f(location, uniform.second.second);
        }
    }
    return true;
}

void KxShaderProgram::off() {
    if (KxGLCapabilities::initGlew() && GLEW_VERSION_2_0) {
        glUseProgram(0);
    }
}

void KxShaderProgram::releaseContext(int contextId) {
    for (auto it = programs_.begin(); it != programs_.end();) {
        if (it->first.first == contextId) {
            if (it->second) {
                glDeleteProgram(it->second);
            }
            it = programs_.erase(it);
        } else {
            ++it;
        }
    }
}

int KxShaderProgram::numPrograms(int contextId) const {
    int count = 0;
    for (const auto& entry : programs_) {
        count += entry.first.first == contextId ? 1 : 0;
    }
    return count;
}

void KxShaderProgram::contextDestroyed(uint32_t contextId, void* data) {
    static_cast<KxShaderProgram*>(data)->releaseContext(static_cast<int>(contextId));
}
