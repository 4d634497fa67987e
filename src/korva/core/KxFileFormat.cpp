#include "korva/core/KxFileFormat.h"

#include <algorithm>

bool KxFileFormat::hasExtension(const std::string& extension) const {
    return std::find(extensions.begin(), extensions.end(), extension) != extensions.end();
}
