#pragma once
// The sanitizers' suppression lists that every test program carries (see
// SanitizerSuppressions.cpp); a test that starts another program hands them
// on through LSAN_OPTIONS and TSAN_OPTIONS files.

extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __tsan_default_suppressions();
