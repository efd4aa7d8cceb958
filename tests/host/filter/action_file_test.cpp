// Recorded actions as files.
#include "host/filter/action_file.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <iterator>

#include "tests/host/host_fixture.h"

namespace {

class ActionFile : public HostTest {
  protected:
    // The error message; empty for success.
    std::string Read(const std::string &text, Action *action) {
        WriteBytes("action.json", text);
        const MaybeFailure failure = ReadAction(Path("action.json"), action);
        return failure ? failure->sentence : "";
    }

    std::string Written(const Action &action) {
        EXPECT_FALSE(WriteAction(action, Path("written.json"), "written.json"));
        std::ifstream file(folder / "written.json");
        std::string text;
        for (std::string word; file >> word;) {
            text += word;
        }
        return text;
    }
};

TEST_F(ActionFile, RadiiComeBackExactly) {
    for (const double radius : {0.0, 1.0, 2.3, 1.0 / 3, double{2.7f}, 4.0}) {
        Action action, read;
        action.items.push_back({.key = kRadiusKey, .type = typeFloat, .number = radius});
        ASSERT_EQ(Read(Written(action), &read), "");
        ASSERT_EQ(read.items.size(), 1u);
        EXPECT_EQ(FindItem(read, kRadiusKey)->number, radius);
    }
    Action read;
    EXPECT_EQ(Read(R"({"parameters": {"nRad": {"value": 3, "type": "float"}}, "event": "HyMd"})", &read), "");
    EXPECT_EQ(FindItem(read, kRadiusKey)->number, 3);
    EXPECT_EQ(Read(R"({"event": "HyMd", "parameters": {}})", &(read = {})), "");
    EXPECT_TRUE(read.items.empty());
}

TEST_F(ActionFile, NothingIsWrittenThatWouldNotPlay) {
    const Action sound = {kHybridMedianEvent, {{.key = kRadiusKey, .type = typeFloat, .number = 2.5}}};
    EXPECT_EQ(Written(sound), R"({"event":"HyMd","parameters":{"nRad":{"type":"float","value":2.5}}})");
    const std::pair<ActionItem, const char *> cases[] = {
        {{.key = kRadiusKey, .type = typeFloat, .number = 5},
         "is a radius of 5, and --play takes those from 0 to 4"},
        {{.key = kRadiusKey, .type = typeFloat, .number = 4.0001}, "from 0 to 4"},
        {{.key = kRadiusKey, .type = typeFloat, .number = NAN}, "from 0 to 4"},
        {{.key = kRadiusKey, .type = typeInteger, .integer = 2}, "of the type \"float\""},
        {{.key = FourCharCode("rads"), .type = typeFloat, .number = 2}, "\"rads\" is not one"},
    };
    for (const auto &[item, named] : cases) {
        const MaybeFailure failure =
            WriteAction({kHybridMedianEvent, {item}}, Path("new.json"), "asked.json");
        ASSERT_TRUE(failure) << named;
        EXPECT_EQ(failure->sentence.find("asked.json: nothing was written: the parameter \""), 0u);
        EXPECT_NE(failure->sentence.find(named), std::string::npos) << failure->sentence;
        EXPECT_FALSE(std::filesystem::exists(Path("new.json")));
    }
}

TEST_F(ActionFile, RefusesWhatTheFilterWouldIgnore) {
    const auto radius = [](const std::string &item) {
        return R"({"event": "HyMd", "parameters": {"nRad": )" + item + "}}";
    };
    const std::pair<std::string, const char *> cases[] = {
        {"", "not valid JSON: it ends too early"},
        {"{\"event\": \"HyMd\", \"parameters\": {}", "ends too early"},
        {R"({"event": "HyMd", "parameters": {}} more)", "mistake in line 1"},
        {"{\"event\":\n\"HyMd\",\n}\n\n", "mistake in line 3"},
        {std::string(60000, '['), "ends too early"},
        {R"({"event": "HyMd", "parameters": {}})" + std::string(66000, ' '), "larger than any action"},
        {"\xFF\xFE", "mistake in line 1"},
        {"[]", "not an object"},
        {R"({"event": "HyMd"})", "no \"parameters\""},
        {R"({"parameters": {}})", "no \"event\""},
        {R"({"event": "HyMd", "event": "HyMd", "parameters": {}})", "\"event\" is there twice"},
        {R"({"event": "HyMd", "parameters": {}, "radius": 2})", "unknown \"radius\""},
        {R"({"event": "GBlr", "parameters": {}})", "another event"},
        {R"({"event": 5, "parameters": {}})", "another event"},
        {R"({"event": "HyMd", "parameters": [1]})", "\"parameters\" is not an object"},
        {R"({"event": "HyMd", "parameters": {"radius": {"type": "float", "value": 2}}})", "four characters"},
        {R"({"event": "HyMd", "parameters": {"rads": {"type": "float", "value": 2}}})",
         "\"rads\" is not one"},
        {radius("2"), "no \"type\""},
        {radius(R"({"type": "float"})"), "no \"value\""},
        {radius(R"({"type": "double", "value": 2})"), "unknown type"},
        {radius(R"({"type": "float", "value": 2, "unit": "#Pxl"})"), "unknown \"unit\""},
        {radius(R"({"type": "float", "value": "2"})"), "no value of the type \"float\""},
        {radius(R"({"type": "float", "value": 1e999})"), "number that is too large"},
        {radius(R"({"type": "integer", "value": 2})"), "must be of the type \"float\""},
        {radius(R"({"type": "integer", "value": 18446744073709551615})"), "no value of the type \"integer\""},
        {radius(R"({"type": "integer", "value": 2.5})"), "no value of the type \"integer\""},
        {radius(R"({"type": "unit float", "unit": "#Pxl", "value": 2})"), "must be of the type \"float\""},
        {radius(R"({"type": "unit float", "unit": "pixels", "value": 2})"),
         "no value of the type \"unit float\""},
        {radius(R"({"type": "boolean", "value": 1})"), "no value of the type \"boolean\""},
        {radius(R"({"type": "text", "value": "2"})"), "must be of the type \"float\""},
        {radius(R"({"type": "enumerated", "of": "UniT", "value": "two"})"), "no value of the type"},
        {radius(R"({"type": "float", "value": 4.0001})"), "from 0 to 4"},
        {radius(R"({"type": "float", "value": -0.1})"), "from 0 to 4"},
    };
    for (const auto &[text, named] : cases) {
        SCOPED_TRACE(text.substr(0, 100));
        Action action;
        const std::string sentence = Read(text, &action);
        EXPECT_EQ(sentence.find(Path("action.json") + ": "), 0u) << sentence;
        EXPECT_NE(sentence.find(named), std::string::npos) << sentence;
    }
}

}  // namespace
