// A different kind of filter on the same driver: it measures, and so writes a measurement file and a run log.
#include "plugin/outputs.h"

#include <cmath>

#include "imagestore/paths.h"
#include "imagestore/strings.h"
#include "log/html_log.h"
#include "photoshop/image_modes.h"
#include "platform/files.h"
#include "platform/native_paths.h"
#include "tests/plugin/other_filter/test_filter.h"
#include "tests/support/dates.h"
#include "tests/support/file_facts.h"
#include "tests/support/key_name_table.h"
#include "tests/support/scratch_folder.h"
#include "tests/support/test_host.h"

namespace {

constexpr OSType kCountKey = FourCharCode("coun");

void SetMeasurementPath(RunContext *context, const char *path) {
    DisposeCString(context->preferenceStrings[kMeasurementPathSlot]);
    context->preferenceStrings[kMeasurementPathSlot] = AllocateCString(kTextSize);
    DuplicateCString(path, context->preferenceStrings[kMeasurementPathSlot], kTextSize);
}

void DeclareEveryKind(RunContext *context, SPBlock *settings) {
    SetMeasurementPath(context, "Disk:measured.txt");
    AddSPInputSettingLong(settings, FourCharCode("inpt"), 0, 9, 4);
    AddSPOutputSettingBoolean(settings, FourCharCode("full"), 1);
    AddSPOutputSettingCString(settings, FourCharCode("path"), nullptr);
    AddSPOutputSettingFloat(settings, FourCharCode("area"), 0, 1e6f, 12.5f);
    AddSPOutputSettingLong(settings, kCountKey, 0, 1000, 42);
    AddSPOutputSettingRadio(settings, FourCharCode("shap"), FourCharCode("rBsh"), 1, 3, 2);
    AddSPOutputSettingLong(settings, FourCharCode("hide"), 0, 9, 7);
    AddSPOutputSettingLong(settings, FourCharCode("lost"), 0, 9, 7);
    AddSPOutputSettingLong(settings, FourCharCode("crlf"), 0, 0, 0);
}

void MeasureAPath(NamedImage *, const RunContext *, SPBlock *settings) {
    char text[kTextSize] = "a<b";
    SetSPOutputSettingCString(settings, 1, text);
}

class Outputs : public ScratchFolder {
  protected:
    void SetUp() override {
        faults::MountVolume("Disk", folder.generic_string());
        AddKeyNameTable({{"full", "Full", "none"},
                         {"path", "Path", "none"},
                         {"area", "Area", "cur2"},
                         {"coun", "Count", "pieces"},
                         {"shap", "Shape", "blan"},
                         {"hide", "Hidden", "omit"},
                         {"crlf", "", "crlf"}});
        testFilter = {DeclareEveryKind, MeasureAPath};
    }

    std::string File(const char *name) const { return WithoutDates(ContentsOf(folder / name)); }

    OSErr Run(const char *documentName, int32_t maxVersion = 1) {
        FSSpec spec;
        SpecFromNativePath((folder / documentName).string(), &spec);
        FSSpec onDisk;
        CStringToFSSpec("Disk:any", &onDisk);
        spec.vRefNum = onDisk.vRefNum;
        spec.parID = 2;
        ReadImageDocumentDesc info = {};
        info.maxVersion = maxVersion;
        info.documentFileSpec = &spec;
        TestHostOptions options;
        options.documentInfo = documentName[0] == 0 ? nullptr : &info;
        const TestDocument document = {plugInModeGrayScale, 8, 1, {0, 0, 1, 1}, {9}, {}};
        return RunPlugin(document, options).result;
    }
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
    if (const std::string codes = TypeAndCreator(folder / "measured.txt"); !codes.empty()) {
        EXPECT_EQ(codes, "TEXTttxt");
    }
}

TEST_F(Outputs, UnsavedDocumentsAndFailedRunsAreMeasuredToo) {
    testFilter.makeParameters = nullptr;
    testFilter.processResult = memFullErr;
    EXPECT_EQ(Run(""), memFullErr);
    // The first version of a host's document information has no file.
    EXPECT_EQ(Run("photo.tif", 0), memFullErr);
    std::string line = std::string(kLine) + "<not_saved>\tNOW\r";
    line.replace(line.find("a<b"), 3, "NULL");
    EXPECT_EQ(File("measured.txt"), line + line);
}

TEST_F(Outputs, WithoutAPathThereIsNoFileAndWithoutItsTextNoLog) {
    testFilter.declareSettings = [](RunContext *context, SPBlock *settings) {
        DeclareEveryKind(context, settings);
        SetMeasurementPath(context, "");
    };
    EXPECT_EQ(Run("empty.tif"), noErr);
    testFilter.declareSettings = [](RunContext *context, SPBlock *settings) {
        DeclareEveryKind(context, settings);
        DisposeCString(context->preferenceStrings[kMeasurementPathSlot]);
        context->preferenceStrings[kMeasurementPathSlot] = nullptr;
    };
    EXPECT_EQ(Run("none.tif"), noErr);
    EXPECT_NE(File("empty/index.html"), "");
    EXPECT_FALSE(exists(folder / "none"));
    EXPECT_EQ(FileCount(), 1u);
}

// The file exists, but opening it, the second call after the path's, reports that it does not: the file is
// created again. Any other error leaves it alone.
TEST_F(Outputs, AFileThatCannotBeCreatedIsDeletedFirst) {
    constexpr char kBefore[] = "what stood there\r";
    WriteBytes("measured.txt", kBefore);
    SPBlock *settings = _AllocateSPBlock(3);
    AddSPOutputSettingLong(settings, kCountKey, 0, 9, 4);
    RunContext context = {};
    SetMeasurementPath(&context, "Disk:measured.txt");
    faults::FailFileCall(2, ioErr);
    WriteMeasurements(&context, settings);
    EXPECT_EQ(File("measured.txt"), kBefore);
    faults::FailFileCall(2, fnfErr);
    WriteMeasurements(&context, settings);
    EXPECT_EQ(File("measured.txt"), "Count\t4\tpieces\t");
    DisposeCString(context.preferenceStrings[kMeasurementPathSlot]);
    _DisposeSPBlock(settings);
}

TEST_F(Outputs, UnitsAreThoseOfThePreferences) {
    struct Units {
        float index;
        float calibration;

        bool operator==(const Units &) const = default;
    };
    constexpr float kPerPoint = 1.0f / 72.0f;
    const struct {
        Units remembered, used;
        const char *area;
    } cases[] = {
        {{0, 5}, {6, kPerPoint}, "(in^2)"},  // never set
        {{0, 0}, {6, kPerPoint}, "(in^2)"},   {{2, 0}, {2, 0}, "(in^2)"},
        {{2, 1}, {2, 1}, "(mm^2)"},           {{2.9f, 1}, {2.9f, 1}, "(mm^2)"},
        {{1, 1}, {1, 1}, "(\265m^2)"},        {{0.5f, 1}, {0.5f, 1}, "(in^2)"},
        {{10, 1}, {10, 1}, "(nm^2)"},         {{10.5f, 1}, {10.5f, 1}, "(in^2)"},
        {{-2, 1}, {-2, 1}, "(in^2)"},         {{1e30f, 1}, {1e30f, 1}, "(in^2)"},
        {{-1e30f, 1}, {-1e30f, 1}, "(in^2)"},
    };
    const auto area = [&](Units remembered, Units *used) {
        testFilter.declareSettings = [=](RunContext *context, SPBlock *settings) {
            DeclareEveryKind(context, settings);
            SetPreferenceFloat(context, kUnitIndexOffset, remembered.index);
            SetPreferenceFloat(context, kLengthCalibrationOffset, remembered.calibration);
        };
        testFilter.makeParameters = [=](NamedImage *, const RunContext *context, SPBlock *) {
            *used = {PreferenceFloat(context, kUnitIndexOffset),
                     PreferenceFloat(context, kLengthCalibrationOffset)};
        };
        std::filesystem::remove(folder / "measured.txt");
        EXPECT_EQ(Run("photo.tif"), noErr);
        const std::string line = File("measured.txt");
        return line.substr(line.find('('), line.find(')') + 1 - line.find('('));
    };
    for (const auto &c : cases) {
        Units used;
        EXPECT_EQ(area(c.remembered, &used), c.area) << c.remembered.index;
        EXPECT_EQ(used, c.used) << c.remembered.index;
    }
    Units used;
    EXPECT_EQ(area({NAN, 1}, &used), "(in^2)");
}

TEST_F(Outputs, ABlockHoldsTwentySettingsAndAnInputTooManyPushesTheLastOut) {
    const auto declare = [](int inputsAfterwards) {
        return [=](RunContext *context, SPBlock *settings) {
            SetMeasurementPath(context, "Disk:measured.txt");
            AddSPInputSettingLong(settings, FourCharCode("inpt"), 0, 9, 4);
            for (int32_t i = 0; i < 30; ++i) {
                AddSPOutputSettingLong(settings, kCountKey, 0, 99, i);
            }
            EXPECT_EQ(CountSPOutputs(settings), 19u);
            for (int i = 0; i < inputsAfterwards; ++i) {
                AddSPInputSettingLong(settings, FourCharCode("inpt"), 0, 9, 4);
            }
        };
    };
    const auto fields = [](int32_t first) {
        std::string text;
        for (int32_t i = first; i < 19; ++i) {
            text += "Count\t" + std::to_string(i) + "\tpieces\t";
        }
        return text;
    };
    testFilter.makeParameters = nullptr;
    for (const int inputsAfterwards : {0, 1}) {
        testFilter.declareSettings = declare(inputsAfterwards);
        std::filesystem::remove(folder / "measured.txt");
        EXPECT_EQ(Run("photo.tif"), noErr);
        EXPECT_EQ(File("measured.txt"), fields(inputsAfterwards));
    }
}

}  // namespace
