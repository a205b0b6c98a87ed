// Leak-checker suppressions for the sanitizer build: allocations that
// third-party libraries keep for the life of the process (fontconfig's font
// configuration) are
// reported at exit although nothing of ours leaks. LeakSanitizer asks the
// program for this text; other builds ignore the function.

extern "C" const char* __lsan_default_suppressions();

extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig.so\n";
}
