#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

// A GLSL program made of one vertex and one fragment source, compiled lazily
// for each rendering context and each set of macros. Uniform values and
// attribute locations are kept here and sent whenever the program is applied,
// so they may be set before any context exists.
//
// Macros are inserted as "#define NAME" lines right after the "#version" line
// (or at the top when there is none). With clip planes enabled the macro
// "KORVA_CLIP_PLANES" is defined; shaders then write gl_ClipVertex so that the
// scene's clip planes cut the shape.
class KxShaderProgram {
public:
    // Reads both files from the package's resource folder (share/<package>).
    // Null, with an "Error: " line, when a file cannot be read.
    static std::unique_ptr<KxShaderProgram> create(const char* package, const char* vertexFile,
                                                   const char* fragmentFile);

    KxShaderProgram(std::string vertexSource, std::string fragmentSource, std::string name);
    ~KxShaderProgram();
    KxShaderProgram(const KxShaderProgram&) = delete;
    KxShaderProgram& operator=(const KxShaderProgram&) = delete;

    void setMacros(const std::vector<std::string>& macros) { macros_ = macros; }
    void addMacro(const std::string& macro) { macros_.push_back(macro); }
    void clearMacros() { macros_.clear(); }
    const std::vector<std::string>& getMacros() const { return macros_; }

    void setUniform(const char* name, float value);
    void setUniform(const char* name, int value);
    bool getUniform(const char* name, float& value) const;

    // Generic attributes are bound to fixed locations before linking. Use
    // locations from 1 upwards: 0 aliases gl_Vertex.
    void bindAttribLocation(const char* name, int location);
    int getAttribLocation(const char* name) const;

    void enableClipPlanes(bool on) { clipPlanes_ = on; }

    // Makes the program current in the current context (identified by the
    // cache-context id), compiling and linking it for the current macros on
    // first use, and sends the uniforms. False when it does not compile; the
    // compiler log is reported once as an "Error: " line.
    bool apply(int contextId);
    // Switches programs off (fixed-function pipeline).
    static void off();

    // Deletes the programs made for a context; call with that context current.
    void releaseContext(int contextId);
    int numPrograms(int contextId) const;

    // The source with the macros' #define lines after its #version line.
    static std::string insertMacros(const std::string& source, const std::vector<std::string>& macros);

private:
    unsigned int build(const std::vector<std::string>& macros);
    std::string macroKey(const std::vector<std::string>& macros) const;
    static void contextDestroyed(uint32_t contextId, void* data);

    std::string vertexSource_;
    std::string fragmentSource_;
    std::string name_;
    std::vector<std::string> macros_;
    bool clipPlanes_ = false;
    std::map<std::string, std::pair<bool, float>> uniforms_;  // (is int, value)
    std::map<std::string, int> attribLocations_;
    std::map<std::pair<int, std::string>, unsigned int>
        programs_;  // (context, macros) -> program, 0 = failed
};
