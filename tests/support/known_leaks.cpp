// The dialog keeps the line buffer of every rebuild; that is how it is to behave. The library of fonts keeps
// what it has read about them.
extern "C" const char *__lsan_default_suppressions();

extern "C" const char *__lsan_default_suppressions() {
    return "leak:NewLineBuffer\nleak:libfontconfig\n";
}
