// Runs the program itself in a folder of its own.
#pragma once

#include <sys/resource.h>
#include <sys/types.h>
#include <vips/vips.h>

#include <cstdint>
#include <string>
#include <vector>

#include "host/picture/vips_library.h"
#include "tests/support/scratch_folder.h"

struct Ended {
    int status;  // -1 for a program that a signal ended
    std::string out, err;
    int64_t megabytes;  // of memory, at its most
};

// What the program is to refuse.
struct Refusal {
    const char *command;  // its arguments, with blanks between them
    int status;
    const char *named;  // somewhere in the sentence
};

unsigned PermissionsOf(const std::filesystem::path &file);

class Program : public ScratchFolder {
  protected:
    static void SetUpTestSuite();

    Program();
    ~Program() override;

    // Starts the program in the test's folder; what it prints goes to files outside.
    pid_t Start(std::vector<std::string> arguments);

    Ended Wait(pid_t child);

    // The program said one sentence, which begins with `start`, and nothing else.
    static void ExpectOneSentence(const Ended &ended, const std::string &start);

    // Each with one sentence, and with nothing changed in the test's folder.
    void ExpectRefusals(const std::vector<Refusal> &refusals);

    // A picture of grey noise in the given format and colour space.
    void WriteNoise(const std::string &name, int width, int height, int bands,
                    VipsBandFormat format = VIPS_FORMAT_UCHAR,
                    VipsInterpretation interpretation = VIPS_INTERPRETATION_sRGB);

    std::string executable = HYMEDIAN_PROGRAM;  // that is started next
    std::vector<int> descriptors;  // that the next program is born with, behind the standard ones
    std::string display;           // of the next program; empty for none
    rlim_t fileSizeLimit = 0;      // of the next program; 0 for none
    rlim_t descriptorLimit = 0;    // likewise
    bool givesFilesAway = true;    // where root does
    std::filesystem::path output = folder.string() + "-output";

  private:
    void ChooseDisplay() const;
    void Limit() const;
    void PlaceDescriptors();
};
