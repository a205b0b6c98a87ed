#pragma once
// The model's thread-locals (the pool's free lists, the release depth) are
// read on every block made or freed. The initial-exec model reads them at a
// fixed offset from the thread pointer instead of asking the loader for the
// thread's block each time; they are a few dozen bytes, well within the
// static space the loader keeps for libraries loaded at start.
#define MORVANE_FAST_TLS __attribute__((tls_model("initial-exec")))
