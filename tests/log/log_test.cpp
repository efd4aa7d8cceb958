#include <cfloat>
#include <cmath>
#include <cstring>
#include <functional>

#include "imagestore/strings.h"
#include "log/html_log.h"
#include "log/number_text.h"
#include "platform/files.h"
#include "tests/support/scratch_folder.h"

namespace {

std::string Text(float value) {
    Str255 text;
    RealToString(value, text);
    return {reinterpret_cast<char *>(text + 1), text[0]};
}

TEST(NumberText, RealsHaveSixDigits) {
    const std::pair<float, const char *> cases[] = {
        {0.0f, "0.0"},
        {-0.0f, "0.0"},
        {std::nanf(""), "0.0"},
        {INFINITY, "inf"},
        {-INFINITY, "-inf"},
        {1.0f, "1.00000"},
        {-2.5f, "-2.50000"},
        {0.1f, "0.10000"},
        {0.099999f, "0.09999"},
        {0.0123456f, "0.01234"},
        {0.001f, "0.00100"},
        {0.000999f, "0.99900e-3"},
        {-0.000123f, "-0.12300e-3"},
        {0.0001f, "1.00000e-4"},
        {9.999996f, "10.00000"},
        {100.0f, "100.000"},
        {999.9996f, "1000.000"},
        {1000.0f, "1000.000"},
        {1000.5f, "1000.50"},
        {9999.996f, "10000.00"},
        {10000.0f, "1.00000e+4"},
        {99999.96f, "10.00000e+4"},
        {1e6f, "10.00000e+5"},
        {1e12f, "10.00000e+11"},
        {FLT_MAX, "3.40282e+38"},
        {FLT_MIN, "0.11755e-37"},
        {FLT_TRUE_MIN, "0.14013e-44"},
    };
    for (const auto &[value, text] : cases) {
        EXPECT_EQ(Text(value), text);
    }
    EXPECT_EQ(CStringToOSType("nRad"), FourCharCode("nRad"));
    EXPECT_EQ(PStringToOSType(reinterpret_cast<ConstStringPtr>("\4nRad")), FourCharCode("nRad"));
}

class Log : public ScratchFolder {
  protected:
    void SetUp() override {
        faults::MountVolume("Disk", folder.generic_string());
        std::filesystem::create_directories(folder / "My.Folder");
        context.logBasePath = basePath;
    }

    void PlaceBeside(const char *path) { DuplicateCString(path, basePath, kTextSize); }

    std::string Page(const char *path) const { return ContentsOf(folder / path); }

    char basePath[kTextSize] = {};
    RunContext context = {};
};

constexpr char kHeader[] =
    "<!DOCTYPE HTML PUBLIC \"-//W3C//DTD HTML 4.01 Transitional//EN\" "
    "\"http://www.w3.org/TR/html4/loose.dtd\">\r"
    "<html>\r<head>\r</head>\r<body>\r";

TEST_F(Log, PagesGrowByARunAtATime) {
    PlaceBeside("Disk:photo.tif");
    const auto *radius = reinterpret_cast<ConstStringPtr>("\7Radius ");
    const auto *units = reinterpret_cast<ConstStringPtr>("\4(px)");
    EXPECT_EQ(_CloseIndexHTML(), noErr);
    EXPECT_EQ(_FetchHTMLlogfref(), 0);
    std::string expected = kHeader;
    EXPECT_EQ(expected.size(), 132u);
    for (const size_t size : {177u, 206u}) {
        EXPECT_EQ(LogLabelReal(&context, radius, 4, units), noErr);
        EXPECT_GT(_FetchHTMLlogfref(), 0);
        EXPECT_EQ(_CloseIndexHTML(), noErr);
        expected += "Radius 4.00000(px)\r<br>\r<hr>\r";
        EXPECT_EQ(Page("photo/index.html"), expected + "</body>\r</html>\r");
        EXPECT_EQ(Page("photo/index.html").size(), size);
    }
    EXPECT_EQ(LogLabelVal(&context, nullptr, -7, units), noErr);
    EXPECT_EQ(LogLabelVal(&context, radius, 8, reinterpret_cast<ConstStringPtr>("")), noErr);
    EXPECT_EQ(LogCString(&context, "a<b & c"), noErr);
    _CloseIndexHTML();
    expected += "-7\r(px)\r<br>\rRadius 8\r\r<br>\ra&lt;b &amp; c\r<br>\r<hr>\r</body>\r</html>\r";
    EXPECT_EQ(Page("photo/index.html"), expected);

    // A truncated page is rewritten from its start.
    WriteBytes("photo/index.html", "short");
    LogCString(&context, "x");
    _CloseIndexHTML();
    EXPECT_EQ(Page("photo/index.html"), "x\r<br>\r<hr>\r</body>\r</html>\r");
}

TEST_F(Log, PlaceOfThePageFollowsTheDocument) {
    WriteBytes("taken", "a document");
    const struct {
        const char *document;
        OSErr result;
        const char *page;
    } cases[] = {
        {"Disk:My.Folder:photo.tif", noErr, "My.Folder/photo/index.html"},
        {"Disk:taken", dupFNErr, nullptr},
        {"Disk:My.Folder:plain", dirNFErr, nullptr},  // the folder created is not the one that holds the page
        {"Disk:My.Folder:.hidden", dirNFErr, nullptr},
        {"Disk:none:photo.tif", dirNFErr, nullptr},
    };
    for (const auto &c : cases) {
        PlaceBeside(c.document);
        EXPECT_EQ(LogCString(&context, "x"), c.result) << c.document;
        EXPECT_EQ(_FetchHTMLlogfref() != 0, c.page != nullptr);
        _CloseIndexHTML();
        if (c.page != nullptr) {
            EXPECT_TRUE(std::filesystem::exists(folder / c.page));
        }
    }
    std::filesystem::create_directory(folder / "My.Folder/plain+HTML");
    WriteBytes("My.Folder/plain+HTML/index.html", "</body>\r</html>\r");
    PlaceBeside("Disk:My.Folder:plain");
    EXPECT_EQ(LogCString(&context, "x"), noErr);
    _CloseIndexHTML();
    EXPECT_EQ(Page("My.Folder/plain+HTML/index.html"), "x\r<br>\r<hr>\r</body>\r</html>\r");
    context.logBasePath = nullptr;
    EXPECT_EQ(LogCString(&context, "x"), fnfErr);
}

TEST_F(Log, EscapingCutsTo255) {
    const auto repeated = [](const char *piece, int count) {
        std::string text;
        for (int i = 0; i < count; ++i) {
            text += piece;
        }
        return text;
    };
    const std::pair<std::string, std::string> cases[] = {
        {"a<b & c", "a&lt;b &amp; c"},
        {repeated("&", 256), repeated("&amp;", 51)},
        {repeated("<", 255), repeated("&lt;", 63) + "&lt"},
        {"\xB5m \xA5\xE1\xD0", "&micro;m &middot;&middot;&shy;"},
        {"\"\\' \xC9\xD2\x80\xFC\xFF", "&quot;&#92;' \xC9\xD2&Auml;&cedil;\xFF"},
        {std::string(300, 'x'), std::string(255, 'x')},
        {"", ""},
    };
    for (const auto &[text, escaped] : cases) {
        char out[256];
        _FixHTMLCString(text.c_str(), out);
        EXPECT_EQ(out, escaped);
    }
}

TEST_F(Log, EntitiesAreThePagesOwn) {
    // FNV-1a over the conversion of every character, one line each.
    uint64_t hash = 0xCBF29CE484222325;
    for (int code = 1; code < 256; ++code) {
        const char text[] = {static_cast<char>(code), 0};
        char out[256];
        _FixHTMLCString(text, out);
        for (const char c : std::string(out) + '\n') {
            hash = (hash ^ static_cast<uint8_t>(c)) * 0x100000001B3;
        }
    }
    EXPECT_EQ(hash, 0x81F6F7DCC193A735U);
}

// Whichever write of an entry fails, its error is returned and nothing is written after the gap.
TEST_F(Log, EntriesEndAtTheFirstFailure) {
    PlaceBeside("Disk:photo.tif");
    ASSERT_EQ(_OpenAndAppendIndexHTML(&context), noErr);
    const auto *text = reinterpret_cast<ConstStringPtr>("\2ab");
    const int16_t page = _FetchHTMLlogfref();
    const std::pair<std::function<OSErr()>, std::string> entries[] = {
        {[&] { return WriteStr(page, text, true, true); }, "ab\t\r"},
        {[&] { return WriteCString(page, "cd", true, true); }, "cd\t\r"},
        {[&] { return WriteVal(page, -7, true, true); }, "-7\t\r"},
        {[&] { return WriteReal(page, 4, true, true); }, "4.00000\t\r"},
        {[&] { return LogCString(&context, "a"); }, "a\r<br>\r"},
        {[&] { return LogLabelVal(&context, text, 3, text); }, "ab3\rab\r<br>\r"},
        {[&] { return LogLabelReal(&context, text, 3, text); }, "ab3.00000ab\r<br>\r"},
    };
    for (const auto &[write, whole] : entries) {
        bool struck = true;
        for (int64_t n = 1; struck; ++n) {
            const size_t before = Page("photo/index.html").size();
            faults::FailFileCall(n, dskFulErr);
            const OSErr err = write();
            struck = faults::FaultStruck();
            const std::string written = Page("photo/index.html").substr(before);
            EXPECT_EQ(err, struck ? dskFulErr : noErr) << whole;
            EXPECT_EQ(written, whole.substr(0, struck ? written.size() : whole.size()));
            EXPECT_EQ(written.size() < whole.size(), struck);
        }
        faults::FailFileCall(0, noErr);
    }
    EXPECT_EQ(_FetchHTMLlogfref(), page) << "the page stays open";
    _CloseIndexHTML();
}

}  // namespace
