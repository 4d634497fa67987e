#pragma once

// Facts about the running host that data objects may word their reports by.
class KxApplication {
public:
    // The skin's name: "Korva" unless the environment variable KORVA_SKIN names another.
    static const char* getSkinName();
};
