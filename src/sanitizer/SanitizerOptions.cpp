// The sanitizer settings of a sanitizer build (-DKORVA_SANITIZE=ON), linked
// into every program it makes, so that ctest, the korva processes the tests
// start and a korva started by hand all run alike without environment
// variables. A setting given in ASAN_OPTIONS, LSAN_OPTIONS or UBSAN_OPTIONS
// still overrides these. The runtime reads them before any constructor runs,
// and only from the executable: the hooks are looked up ahead of the
// runtime's own defaults there, not in libraries loaded after it.

extern "C" {

// intercept_tls_get_addr=0: the leak checker's walk over the dynamic
// thread-local storage it records crashes (SIGSEGV in its tracer) on a bogus
// entry left by the GL and Qt libraries loaded at run time.
__attribute__((used, visibility("default"))) const char* __asan_default_options() {
    return "detect_leaks=1:abort_on_error=1:intercept_tls_get_addr=0";
}

__attribute__((used, visibility("default"))) const char* __ubsan_default_options() {
    return "print_stacktrace=1";
}

__attribute__((used, visibility("default"))) const char* __lsan_default_options() {
    return "print_suppressions=0";
}

// Third-party libraries only, never our own code: these keep allocations for
// the life of the process on purpose. Coin: SoDB::init() creates objects such
// as the global "realTime" field. The viewer window (korva --gui): D-Bus and
// fontconfig, loaded by Qt, keep their connection and font caches.
__attribute__((used, visibility("default"))) const char* __lsan_default_suppressions() {
    return "leak:libCoin.so\n"
           "leak:libdbus-1.so\n"
           "leak:libfontconfig.so\n";
}
}
