#include "tests/plugin/other_filter/test_filter.h"

TestFilter testFilter;

OSErr GetDefaultSettings(RunContext *context, SPBlock *settings) {
    testFilter.processedBits = 0;
    InitializeSPSettings(settings, FourCharCode("Test"), false, false);
    if (testFilter.declareSettings) {
        testFilter.declareSettings(context, settings);
    }
    return noErr;
}

bool RemembersSettings(const RunContext *) {
    return false;
}

OSErr GetParameters(NamedImage *image, RunContext *context, Handle *, SPBlock *settings) {
    if (testFilter.makeParameters) {
        testFilter.makeParameters(image, context, settings);
    }
    return noErr;
}

OSErr InteractiveDialog(NamedImage *, RunContext *, Handle) {
    return noErr;
}

OSErr ProcessImage(NamedImage *, RunContext *, Handle, SPBlock *, Boolean) {
    testFilter.processedBits = 8;
    return testFilter.processResult;
}

OSErr ProcessImage16_48(NamedImage *, RunContext *, Handle, SPBlock *, Boolean) {
    testFilter.processedBits = 16;
    return testFilter.processResult;
}
