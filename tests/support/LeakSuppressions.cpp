// Coin keeps a few objects from SoDB::init() for the life of the process
// (e.g. the global "realTime" field); LeakSanitizer would report them in
// every test that builds a scene.
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libCoin.so\n";
}
