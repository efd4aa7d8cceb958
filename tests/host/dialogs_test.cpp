// The filter's dialog over several pictures, answered by a program of the tests' own.
#include <regex>

#include "tests/host/program_fixture.h"

namespace {

namespace fs = std::filesystem;

class Dialogs : public Program {
  protected:
    // "a3 b3": what was filtered, and at which radius.
    static std::string Radii(const std::string &summary) {
        const std::regex line("([a-z]+)\\.png -> .*, radius ([0-9])");
        std::set<std::string> radii;
        for (std::sregex_iterator found(summary.begin(), summary.end(), line), end; found != end; ++found) {
            radii.insert((*found)[1].str() + (*found)[2].str());
        }
        std::string text;
        for (const std::string &radius : radii) {
            text += (text.empty() ? "" : " ") + radius;
        }
        return text;
    }
};

TEST_F(Dialogs, OneAnswerIsForAllPicturesUnlessEachIsAskedFor) {
    const fs::path plugin = folder / "plugin";
    fs::copy(HYMEDIAN_PLUGIN, plugin);
    fs::copy_file(HYMEDIAN_ANSWERING_DIALOG, plugin / "hymedian-dialog",
                  fs::copy_options::overwrite_existing);
    setenv("HYMEDIAN_ANSWERS", Path("answers").c_str(), 1);
    for (const char *name : {"a.png", "b.png", "c.png"}) {
        WriteNoise(name, 40, 30, 3);
    }
    WriteNoise("large.png", 1200, 900, 3);
    const std::string whole = ContentsOf(folder / "large.png");
    WriteBytes("cut.png", whole.substr(0, whole.size() / 2));
    WriteBytes("bad.png", "no picture");
    const struct {
        std::vector<std::string> pictures;
        const char *option, *answers;
        int status;
        const char *left;  // of the answers
        const char *radii, *words;
    } cases[] = {
        {{"a.png", "b.png", "c.png"},
         "--dialog",
         "352",
         0,
         "52",
         "a3 b3 c3",
         "answer in the dialog is for all"},
        {{"a.png", "large.png"}, "--dialog", "6", 0, "", "a6 large6", "2 pictures: 2 done"},
        {{"bad.png", "cut.png", "a.png", "b.png"}, "--dialog", "42", 1, "2", "a4 b4", "2 done, 2 failed"},
        {{"a.png", "b.png", "c.png"}, "--dialog", "c23", 130, "23", "", "0 done, 0 failed, 3 left undone"},
        {{"a.png", "b.png", "c.png"}, "--dialog=each", "352", 0, "", "a3 b5 c2", "3 done"},
        {{"a.png", "b.png", "c.png"}, "--dialog=each", "c52", 130, "", "b5 c2", "2 done, 0 failed, 1 left"},
    };
    for (const auto &test : cases) {
        SCOPED_TRACE(std::string(test.option) + " " + test.answers);
        WriteBytes("answers", test.answers);
        fs::create_directory(folder / "out");
        std::vector<std::string> arguments = test.pictures;
        arguments.insert(arguments.end(), {"-o", "out", "--plugin", "plugin", "-j", "2", test.option});
        const Ended ended = Wait(Start(arguments));
        EXPECT_EQ(ended.status, test.status) << ended.err;
        EXPECT_EQ(Radii(ended.out), test.radii) << ended.out;
        EXPECT_NE(ended.out.find(test.words), std::string::npos) << ended.out;
        EXPECT_EQ(ContentsOf(folder / "answers"), test.left);
        fs::remove_all(folder / "out");
    }
    ExpectRefusals({{"a.png -o new.png --dialog=some", 2, "alone or as --dialog=each"}});
}

}  // namespace
