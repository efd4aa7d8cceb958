// Recorded actions as files.
#include "host/filter/action_file.h"

#include <fstream>
#include <iterator>

#include "tests/host/host_fixture.h"

namespace {

class ActionFile : public HostTest {
  protected:
    // The sentence; empty for success.
    std::string Read(const std::string &text, Action *action) {
        std::ofstream(folder / "action.json", std::ios::binary) << text;
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

TEST_F(ActionFile, EachKindIsWrittenInWords) {
    const Action action = {
        kHybridMedianEvent,
        {{.key = FourCharCode("unit"), .type = typeUnitFloat, .code = FourCharCode("#Pxl"), .number = 2.5},
         {.key = FourCharCode("int "), .type = typeInteger, .integer = 0xFFFFFFF9},
         {.key = FourCharCode("bool"), .type = typeBoolean, .integer = 1},
         {.key = FourCharCode("text"), .type = typeText, .bytes = "a\"\xC9"},
         {.key = FourCharCode("en\xA5m"),
          .type = typeEnumerated,
          .code = FourCharCode("UniT"),
          .integer = FourCharCode("inch")}}};
    EXPECT_EQ(Written(action),
              R"({"event":"HyMd","parameters":{"unit":{"type":"unitfloat","unit":"#Pxl","value":2.5},)"
              R"("int":{"type":"integer","value":-7},"bool":{"type":"boolean","value":true},)"
              R"("text":{"type":"text","value":"a\"…"},)"
              R"("en•m":{"type":"enumerated","of":"UniT","value":"inch"}}})");
    const Action object = {kHybridMedianEvent, {{.key = kRadiusKey, .type = typeObject}}};
    EXPECT_TRUE(WriteAction(object, Path("object.json"), "object.json").has_value());
}

TEST_F(ActionFile, RefusesWhatTheFilterWouldIgnore) {
    const auto radius = [](const std::string &item) {
        return R"({"event": "HyMd", "parameters": {"nRad": )" + item + "}}";
    };
    const std::pair<std::string, const char *> cases[] = {
        {"", "JSON"},
        {"{\"event\": \"HyMd\", \"parameters\": {}", "JSON"},
        {R"({"event": "HyMd", "parameters": {}} more)", "JSON"},
        {std::string(60000, '['), "JSON"},
        {R"({"event": "HyMd", "parameters": {}})" + std::string(66000, ' '), "cannot be read"},
        {"\xFF\xFE", "JSON"},
        {"[]", "not an object"},
        {R"({"event": "HyMd"})", "no \"parameters\""},
        {R"({"parameters": {}})", "no \"event\""},
        {R"({"event": "HyMd", "event": "HyMd", "parameters": {}})", "twice"},
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
        {radius(R"({"type": "float", "value": 1e999})"), "JSON"},
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
