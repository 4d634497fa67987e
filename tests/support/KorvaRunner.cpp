#include "support/KorvaRunner.h"

#include <sys/wait.h>

#include <cstdlib>
#include <fstream>

#include "support/TempDir.h"

namespace {

std::string quote(const std::string& s) {
    std::string q = "'";
    for (char c : s) {
        q += c == '\'' ? std::string("'\\''") : std::string(1, c);
    }
    return q + "'";
}

}  // namespace

KorvaRun runKorva(const std::vector<std::string>& args, const KorvaRunOptions& options) {
    TempDir capture;
    std::string in = capture.path("stdin"), out = capture.path("stdout"), err = capture.path("stderr");
    std::ofstream(in) << options.input;
    std::string command;
    if (!options.workingDir.empty()) {
        command += "cd " + quote(options.workingDir) + " && ";
    }
    std::vector<std::string> settings = options.environment;
    if (options.testPackage) {
        settings.push_back("KORVA_PACKAGE_PATH=" KORVA_TEST_PACKAGE_DIR);
        settings.push_back("KORVA_PACKAGES=kxtestpackage");
    }
    command += "env";
    for (const std::string& setting : settings) {
        command += " " + quote(setting);
    }
    for (const std::string& word : options.launcher) {
        command += " " + quote(word);
    }
    command += " ";
    command += quote(KORVA_BINARY_DIR "/bin/korva");
    for (const std::string& a : args) {
        command += " " + quote(a);
    }
    command += " <" + quote(in) + " >" + quote(out) + " 2>" + quote(err);
    int raw = std::system(command.c_str());
    return KorvaRun{WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, readFileBytes(out), readFileBytes(err)};
}

int countOccurrences(const std::string& text, const std::string& what) {
    int n = 0;
    for (size_t at = text.find(what); at != std::string::npos; at = text.find(what, at + 1)) {
        ++n;
    }
    return n;
}
