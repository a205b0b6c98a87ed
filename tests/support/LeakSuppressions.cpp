// Fontconfig keeps a few allocations for the life of the process without a
// pointer LeakSanitizer can see; they are not ours and do not grow, so the
// sanitizer builds of every suite that lays out text ignore them.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig.so\n";
}
