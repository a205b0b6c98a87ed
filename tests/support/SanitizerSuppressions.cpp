// Reports from inside the font stack, which the sanitizers cannot see into:
// - Fontconfig keeps a few allocations for the life of the process without a
//   pointer LeakSanitizer can find; they do not grow.
// - Pango initialises fontconfig on a thread of its own and waits for it with
//   GLib's futex-based locks, and HarfBuzz shares font data between threads
//   with inline atomic reference counts; ThreadSanitizer sees neither in these
//   uninstrumented libraries and reports their hand-overs as races.
// - glibc's tzset keeps the time zone name under a lock of its own; ICU's
//   date formatting and localtime_r both go through it from many threads,
//   and ThreadSanitizer, which does not see that lock, reports the hand-over.
// - GStreamer (the camera) hands buffers and state between its streaming
//   threads with GLib's atomics and futex-based locks in the same unseen way,
//   and takes its own element and state locks in orders of its own making.
// - GIO's D-Bus connections (local notifications) pass messages to their
//   worker thread through the same unseen GLib locks.
// Our own code gets no such allowance.
#include "SanitizerSuppressions.h"

extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig.so\n";
}

extern "C" const char* __tsan_default_suppressions() {
    return "race:libfontconfig.so\n"
           "race:libglib-2.0.so\n"
           "race:libharfbuzz.so\n"
           "race:libgobject-2.0.so\n"
           "race:libgio-2.0.so\n"
           "race:libgst\n"
           "race:liborc-0.4.so\n"
           "deadlock:libgst\n"
           "race:tzset_internal\n";
}
