// The dialog deliberately keeps the line buffer of every rebuild. The font library keeps what it has read
// about fonts, the metadata library the namespaces that it is told of, and HEIC's encoder a kilobyte a
// picture.
extern "C" __attribute__((visibility("default"))) const char *__lsan_default_suppressions();

extern "C" const char *__lsan_default_suppressions() {
    return "leak:NewLineBuffer\nleak:libfontconfig\nleak:registerNs\nleak:x265_malloc\n";
}
