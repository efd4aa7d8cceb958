// A filter of another kind on the same driver: it measures, and so writes a measurement file and a run log.
#include <cstring>
#include <fstream>

#include "imagestore/strings.h"
#include "log/html_log.h"
#include "photoshop/image_modes.h"
#include "platform/files.h"
#include "platform/posix_paths.h"
#include "settings/setting_registry.h"
#include "tests/support/dates.h"
#include "tests/support/key_name_table.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/test_host.h"
#include "toolkit/filter_hooks.h"
#include "toolkit/run_context.h"

namespace {

constexpr char kMeasurementPath[] = "Disk:measured.txt";
OSErr processResult = noErr;

char *OwnedText(const char *text) {
    char *owned = AllocateCString(kTextSize);
    DuplicateCString(text, owned, kTextSize);
    return owned;
}

}  // namespace

OSErr GetDefaultSettings(RunContext *context, SPBlock *settings) {
    DisposeCString(context->preferenceStrings[2]);
    context->preferenceStrings[2] = OwnedText(kMeasurementPath);
    InitializeSPSettings(settings, FourCharCode("Test"), false, false);
    AddSPInputSettingLong(settings, FourCharCode("inpt"), 0, 9, 4);
    AddSPOutputSettingBoolean(settings, FourCharCode("full"), 1);
    AddSPOutputSettingCString(settings, FourCharCode("path"), nullptr);
    AddSPOutputSettingFloat(settings, FourCharCode("area"), 0, 1e6f, 12.5f);
    AddSPOutputSettingLong(settings, FourCharCode("coun"), 0, 1000, 42);
    AddSPOutputSettingRadio(settings, FourCharCode("shap"), FourCharCode("rBsh"), 1, 3, 2);
    AddSPOutputSettingLong(settings, FourCharCode("hide"), 0, 9, 7);
    AddSPOutputSettingLong(settings, FourCharCode("lost"), 0, 9, 7);
    AddSPOutputSettingLong(settings, FourCharCode("crlf"), 0, 0, 0);
    return noErr;
}

OSErr GetParameters(NamedImage *, RunContext *, Handle *, SPBlock *settings) {
    char *text = OwnedText("a<b");
    SetSPOutputSettingCString(settings, 1, text);
    DisposeCString(text);
    return noErr;
}

OSErr InteractiveDialog(NamedImage *, RunContext *, Handle) {
    return noErr;
}

OSErr ProcessImage(NamedImage *, RunContext *, Handle, SPBlock *settings, Boolean) {
    // A run that fails has no path to tell of.
    if (processResult != noErr) {
        SetSPOutputSettingCString(settings, 1, nullptr);
    }
    return processResult;
}

OSErr ProcessImage16_48(NamedImage *image, RunContext *context, Handle parameters, SPBlock *settings,
                        Boolean skipDialog) {
    return ProcessImage(image, context, parameters, settings, skipDialog);
}

namespace {

class Outputs : public ScratchFolder {
  protected:
    void SetUp() override {
        faults::MountVolume("Disk", folder);
        AddKeyNameTable({{"full", "Full", "none"},
                         {"path", "Path", "none"},
                         {"area", "Area", "cur2"},
                         {"coun", "Count", "pieces"},
                         {"shap", "Shape", "blan"},
                         {"hide", "Hidden", "omit"},
                         {"crlf", "", "crlf"}});
    }

    void TearDown() override {
        faults::RemoveResources();
        ScratchFolder::TearDown();
    }

    std::string File(const char *name) const {
        std::ifstream file(folder / name, std::ios::binary);
        std::string text(std::istreambuf_iterator<char>(file), {});
        return WithoutDates(text);
    }

    OSErr Run(const char *documentName) {
        FSSpec spec;
        SpecFromPosixPath(folder / documentName, &spec);
        spec.vRefNum = volume;
        spec.parID = 2;
        ReadImageDocumentDesc info = {};
        info.maxVersion = 1;
        info.documentFileSpec = &spec;
        TestHostOptions options;
        options.documentInfo = documentName[0] == 0 ? nullptr : &info;
        const TestDocument document = {plugInModeGrayScale, 8, 1, {0, 0, 1, 1}, {9}, {}};
        return RunPlugin(document, options).result;
    }

    // The volume "Disk" is the second one.
    static constexpr int16_t volume = -2;
};

constexpr char kLine[] = "Full\tTRUE\tPath\ta<b\tArea\t12.5000\t(in^2)\tCount\t42\tpieces\tShape\t2\t";

TEST_F(Outputs, TwoRunsGiveTwoLinesAndTwoBlocks) {
    EXPECT_EQ(Run("photo.tif"), noErr);
    EXPECT_EQ(Run("photo.tif"), noErr);
    const std::string line = std::string(kLine) + "Disk:photo.tif\tNOW\r";
    EXPECT_EQ(File("measured.txt"), line + line);

    const std::string block =
        "Full  TRUE\r<br>\r"
        "Path a&lt;b\r<br>\r"
        "Area 12.5000(in^2)\r<br>\r"
        "Count 42\rpieces\r<br>\r"
        "Shape 2\r\r<br>\r"
        "Disk:photo.tif\r<br>\r<hr>\r";
    const std::string page = File("photo/index.html");
    EXPECT_EQ(page.substr(132), block + block + "</body>\r</html>\r");
    EXPECT_EQ(_FetchHTMLlogfref(), 0);
}

TEST_F(Outputs, UnsavedDocumentsAndFailedRunsAreMeasuredToo) {
    processResult = memFullErr;
    EXPECT_EQ(Run(""), memFullErr);
    processResult = noErr;
    std::string line = std::string(kLine) + "<not_saved>\tNOW\r";
    line.replace(line.find("a<b"), 3, "NULL");
    EXPECT_EQ(File("measured.txt"), line);
}

}  // namespace
