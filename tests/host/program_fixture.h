// Runs the real program in a folder of its own.
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
    int status;  // -1 if a signal ended the program
    std::string out, err;
    int64_t megabytes;  // peak memory
};

// A command that the program must refuse.
struct Refusal {
    const char *command;  // its arguments, separated by blanks
    int status;
    const char *named;  // must occur in the message
};

unsigned PermissionsOf(const std::filesystem::path &file);

class Program : public ScratchFolder {
  protected:
    static void SetUpTestSuite();

    Program();
    ~Program() override;

    // Starts the program in the test's folder; its output goes to files elsewhere.
    pid_t Start(std::vector<std::string> arguments);

    Ended Wait(pid_t child);

    // The program printed one sentence, which begins with `start`, and nothing else.
    static void ExpectOneSentence(const Ended &ended, const std::string &start);

    // Each is refused with one sentence, and nothing in the test's folder changes.
    void ExpectRefusals(const std::vector<Refusal> &refusals);

    // Writes grey noise in the given format and colour space.
    void WriteNoise(const std::string &name, int width, int height, int bands,
                    VipsBandFormat format = VIPS_FORMAT_UCHAR,
                    VipsInterpretation interpretation = VIPS_INTERPRETATION_sRGB);

    std::string executable = HYMEDIAN_PROGRAM;  // the program to start next
    std::vector<int> ignored;  // which of SIGINT, SIGTERM and SIGHUP the next program is started to ignore
    std::vector<int> descriptors;  // descriptors that the next program inherits besides the standard ones
    std::string display;           // the next program's; empty for none
    rlim_t fileSizeLimit = 0;      // the next program's; 0 for none
    rlim_t descriptorLimit = 0;    // likewise
    bool givesFilesAway = true;    // whether root may change files' owners
    std::filesystem::path output = folder.string() + "-output";

  private:
    void ChooseDisplay() const;
    void ResetInterrupts() const;
    void Limit() const;
    void PlaceDescriptors();
};
