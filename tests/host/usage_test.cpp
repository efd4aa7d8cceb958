// The command line: what is refused, and with what message.
#include <regex>

#include "tests/host/program_fixture.h"

namespace {

TEST_F(Program, FailsWithOneSentenceOverOptions) {
    WriteNoise("good.png", 40, 30, 3);
    WriteBytes("good.json", "{}");
    ExpectRefusals({
        {"", 2, "--help"},
        {"good.png", 2, "good.png"},
        {"--worker", 2, "--worker"},
        {"good.png -o new.png --raduis 2", 2, "--raduis"},
        {"good.png -o new.png -r 0.5", 2, "radius"},
        {"good.png -o new.png -r 6.01", 2, "radius can be any number from 1 to 6;"},
        {"good.png -o new.png -r nan", 2, "radius"},
        {"good.png -o new.png -r wide", 2, "wide"},
        {"good.png -o new.png -r 5 --record new.json", 2, "--record keeps a radius of at most 4"},
        {"good.png -o new.png --play good.json -r 2", 2, "--play"},
        {"good.png -o new.png --dialog -r 2", 2, "--dialog"},
        {"good.png -o new.png --dialog", 1, "Dialogs need"},
        {"good.png -o new.png --select 1,1,40,5", 2, "does not lie inside"},
        {"good.png -o new.png --select 1,1,0,5", 2, "1,1,0,5"},
        {"good.png -o new.png --range 2,2", 2, "--range 2,2"},
        {"good.png -o new.png --range 1", 2, "--range 1"},
        {"good.png -o new.png --range 0,inf", 2, "--range 0,inf"},
        {"good.png -o new.png --jobs 0", 2, "jobs"},
    });
}

// The options that a text mentions, as "-o,--output FILE", without a manual's quotes, fonts and escapes.
std::set<std::string> OptionsIn(const std::string &text, const char *line) {
    const std::regex pattern(line);
    std::set<std::string> options;
    for (std::sregex_iterator found(text.begin(), text.end(), pattern), end; found != end; ++found) {
        std::string option = (*found)[1];
        for (const auto &[from, to] : {std::pair(R"( "|"|\\f[IR])", ""), {R"(\\-)", "-"}, {", ", ","}}) {
            option = std::regex_replace(option, std::regex(from), to);
        }
        EXPECT_TRUE(options.insert(option).second) << option;
    }
    return options;
}

TEST_F(Program, HelpReadmeAndManualNameTheSameOptions) {
    const std::string help = Wait(Start({"--help"})).out;
    const std::string readme = ContentsOf(HYMEDIAN_README);
    const std::string manual = ContentsOf(HYMEDIAN_MANUAL);
    const std::set<std::string> options = OptionsIn(help, R"(\n  (-.*?)(?=\n|  | Excludes))");
    EXPECT_GT(options.size(), 15u);
    EXPECT_EQ(OptionsIn(readme, R"(\n\| `(-[^`]*)` \|)"), options);
    EXPECT_EQ(OptionsIn(manual, R"(\n\.TP\n\.B[IR]? (\\-.*))"), options);
    for (const std::string &text : {help, readme, manual}) {
        EXPECT_NE(text.find("any number from 1 to 6, fractions are dropped"), std::string::npos) << text;
    }
    const std::string version = Wait(Start({"--version"})).out;
    EXPECT_NE(manual.find('"' + version.substr(0, version.find('\n')) + '"'), std::string::npos) << version;
}

TEST_F(Program, TellsWhatThePluginSays) {
    const Ended ended = Wait(Start({"--info"}));
    EXPECT_EQ(ended.status, 0);
    for (const char *word : {"Hybrid Median…", "Noise", "4.0", "Lab 16", "CMYK 8"}) {
        EXPECT_NE(ended.out.find(word), std::string::npos) << word;
    }
}

}  // namespace
