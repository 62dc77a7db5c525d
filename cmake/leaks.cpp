// What libraries keep to the end of the process isn't ours: the toolkit's connection to the desktop's message
// bus, on a real display only, and the font configuration.
extern "C" const char* __lsan_default_suppressions();
extern "C" const char* __lsan_default_suppressions() {
    return "leak:libdbus-1\nleak:libfontconfig\n";
}
