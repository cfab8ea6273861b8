// SPDX-License-Identifier: MIT

/// What the leak checker passes over: fontconfig keeps its configuration until the process ends.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libfontconfig\n";
}
