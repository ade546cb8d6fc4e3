// SPDX-License-Identifier: MIT
//
// libplot keeps some hundred bytes of every plot for itself, in png plots through libpng, which is
// no leak of ours. Nothing is printed about it, for tests compare what comes to standard error. The
// sanitizer's runtime is a library of its own and looks these two up by name.

extern "C" {

[[gnu::visibility("default")]] const char* __lsan_default_suppressions();
const char* __lsan_default_suppressions() { return "leak:libplot.so\nleak:libpng16.so\n"; }

[[gnu::visibility("default")]] const char* __lsan_default_options();
const char* __lsan_default_options() { return "print_suppressions=0"; }

}  // extern "C"
