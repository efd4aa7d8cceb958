// The command line: what is refused, and with what message.
#include <regex>

#include "tests/host/program_fixture.h"

namespace {

TEST_F(Program, FailsWithOneSentenceOverOptions) {
    WriteNoise("good.png", 40, 30, 3);
    WriteNoise("-good.png", 40, 30, 3);
    WriteNoise("still.gif", 40, 30, 3);
    WriteBytes("good.json", "{}");
    ExpectRefusals({
        {"", 2, "--help"},
        {"good.png", 2, "good.png"},
        {"--worker", 2, "--worker"},
        {"good.png -o new.png --raduis 2", 2, "--raduis; did you mean --radius?"},
        {"good.png --out new.png", 2, "--out; did you mean --output?"},
        {"good.png -o new.png -radius 2", 2, "did you mean --radius?"},
        {"good.png -o new.png --sharpen 2", 2, "not expected: --sharpen; 'hymedian --help'"},
        {"-good.png -o new.png", 2, "the file of that name is ./-good.png;"},
        {"still.gif --in-place", 2, "GIF is only read"},
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

TEST_F(Program, TellsOtherProgramsInJson) {
    WriteNoise("a.png", 40, 30, 3);
    WriteBytes("b.png", "no picture");
    std::filesystem::create_directory(folder / "out");
    const Ended ended = Wait(Start({"a.png", "b.png", "-o", "out", "-r", "3.9", "--json", "-j", "1"}));
    EXPECT_EQ(ended.status, 1);
    EXPECT_TRUE(std::regex_match(
        ended.out,
        std::regex(R"(\{"input":"a.png","output":"out/a.png","mode":"RGB","width":40,"height":30,"depth":8,)"
                   R"("pages":1,"radius":3,"seconds":[0-9.e-]+,"lost":\[\]\}\n)"
                   R"(\{"input":"b.png","output":"out/b.png","error":"b.png: this is no [^"]*"\}\n)")))
        << ended.out;
    EXPECT_NE(Wait(Start({"a.png", "-o", "a.ppm", "--json"})).out.find(R"("lost":["resolution"])"),
              std::string::npos);
    // The same again, without a radius, and as the first run of all.
    for (const char *words : {", radius 3, as last time, ", ", radius 1, the default, "}) {
        const Ended again = Wait(Start({"a.png", "-o", "out", "-f"}));
        EXPECT_NE(again.out.find(words), std::string::npos) << again.out;
        std::filesystem::remove_all(output / "preferences");
    }
}

TEST_F(Program, PicturesThatKeepTheirNamesKeepTheirFormats) {
    std::filesystem::create_directory(folder / "out");
    WriteNoise("right.png", 40, 30, 3);
    for (const char *name : {"wrong.jpg", "none"}) {
        std::filesystem::copy_file(folder / "right.png", folder / name);
    }
    const struct {
        std::vector<std::string> arguments;
        const char *output, *start;
        bool told;
    } cases[] = {
        {{"wrong.jpg", "-o", "out"}, "out/wrong.jpg", "\x89PNG", true},
        {{"wrong.jpg", "-o", "new.jpg"}, "new.jpg", "\xFF\xD8", false},
        {{"right.png", "-o", "out"}, "out/right.png", "\x89PNG", false},
        {{"none", "--suffix=-a"}, "none-a", "\x89PNG", false},
        {{"none", "--in-place"}, "none", "\x89PNG", false},
    };
    for (const auto &test : cases) {
        const Ended ended = Wait(Start(test.arguments));
        EXPECT_EQ(ended.status, 0) << ended.err;
        EXPECT_TRUE(ContentsOf(folder / test.output).starts_with(test.start)) << test.output;
        EXPECT_EQ(ended.out.find(", PNG in spite of its name") != std::string::npos, test.told) << ended.out;
    }
}

TEST_F(Program, ADryRunWritesNothing) {
    WriteNoise("tree.png", 40, 30, 3);
    std::filesystem::remove_all(output / "preferences");
    const std::set<std::string> before = Names();
    const Ended ended = Wait(Start({"-R", "tree.png", "-o", "new/out", "--dry-run"}));
    EXPECT_EQ(ended.out, "tree.png -> new/out/tree.png: would be filtered: 40 x 30 RGB, 8 bits\n")
        << ended.err;
    EXPECT_EQ(Names(), before);
    EXPECT_FALSE(std::filesystem::exists(output / "preferences"));
    ExpectRefusals({{"tree.png -o tree.png --dry-run", 2, "only with --in-place"}});
}

TEST_F(Program, TellsWhatThePluginSays) {
    const Ended ended = Wait(Start({"--info"}));
    EXPECT_EQ(ended.status, 0);
    for (const char *word : {"Hybrid Median…", "Noise", "4.0", "Lab 16", "CMYK 8"}) {
        EXPECT_NE(ended.out.find(word), std::string::npos) << word;
    }
}

}  // namespace
