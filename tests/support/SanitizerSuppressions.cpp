// Reports from inside the font stack, which the sanitizers cannot see into:
// - Fontconfig keeps a few allocations for the life of the process without a
//   pointer LeakSanitizer can find; they do not grow.
// - Pango initialises fontconfig on a thread of its own and waits for it with
//   GLib's futex-based locks, and HarfBuzz shares font data between threads
//   with inline atomic reference counts; ThreadSanitizer sees neither in these
//   uninstrumented libraries and reports their hand-overs as races.
// Our own code gets no such allowance.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig.so\n";
}

extern "C" const char* __tsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions() {
    return "race:libfontconfig.so\n"
           "race:libglib-2.0.so\n"
           "race:libharfbuzz.so\n";
}
