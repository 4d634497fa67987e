#include "support/TempDir.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <system_error>

#include <gtest/gtest.h>

TempDir::TempDir() {
    namespace fs = std::filesystem;
    const char* base = std::getenv("KORVA_TEST_TMPDIR");
    fs::path root = base && *base ? fs::path(base) : fs::temp_directory_path();
    fs::create_directories(root);
    std::string pattern = (root / "korva-XXXXXX").string();
    if (!mkdtemp(&pattern[0])) {
        ADD_FAILURE() << "cannot create a temporary directory below " << root;
    }
    path_ = pattern;
}

TempDir::~TempDir() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::vector<std::string> TempDir::list() const {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(path_)) {
        names.push_back(entry.path().filename().string());
    }
    std::sort(names.begin(), names.end());
    return names;
}

std::string readFileBytes(const std::string& path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

void writeFileBytes(const std::string& path, const std::string& bytes) {
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}
