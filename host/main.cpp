// hymedian: runs the filter over a picture file.
#include <chrono>
#include <cstdio>
#include <string>

#include "host/filter_result.h"
#include "host/filter_run.h"
#include "host/interrupt.h"
#include "host/module.h"
#include "host/options.h"
#include "host/output_file.h"
#include "host/picture.h"
#include "host/picture_format.h"
#include "host/picture_writer.h"
#include "host/preferences_folder.h"
#include "host/progress_bar.h"
#include "host/vips_library.h"
#include "host/watcher.h"

namespace {

// Parts of the bar; the filter takes longest by far.
constexpr double kReadUntil = 0.05;
constexpr double kFilteredUntil = 0.95;

using Clock = std::chrono::steady_clock;

// Never unloaded: the filter keeps a block of its own behind it.
Module filter;

// What is known of a run while it goes on.
struct Work {
    const PictureFormat *format = nullptr;
    Picture picture;
    Action recorded;
};

Action ActionOf(const Options &options) {
    Action action;
    if (options.radius) {
        action.items.push_back({.key = kRadiusKey, .type = typeFloat, .number = *options.radius});
    }
    return action;
}

void PrintSummary(const Options &options, const Work &work, Clock::time_point start) {
    std::string radius;
    if (const ActionItem *item = FindItem(work.recorded, kRadiusKey)) {
        char text[32];
        std::snprintf(text, sizeof text, ", radius %g", item->number);
        radius = text;
    }
    const std::chrono::duration<double> elapsed = Clock::now() - start;
    // The filter hands 32-bit pictures back unfiltered.
    const char *unfiltered = work.picture.document.depth == 32 ? ", passed through unfiltered" : "";
    std::string lost = LostMetadata(*work.format, work.picture.metadata.get());
    if (!lost.empty()) {
        lost = std::string(" (") + work.format->name + " keeps no " + lost + " data)";
    }
    std::printf("%s -> %s: %s%s%s, %.1f s%s\n", options.inputFile.c_str(), options.outputFile.c_str(),
                DescribePicture(work.picture).c_str(), unfiltered, radius.c_str(), elapsed.count(),
                lost.c_str());
}

// Everything that can be refused is refused before the first pixel is read.
MaybeFailure FilterFile(const Options &options, const Watcher &watcher, Work *work) {
    Picture *picture = &work->picture;
    OutputFile output;
    if (MaybeFailure failure = FindFormat(options.outputFile, &work->format)) {
        return failure;
    }
    if (MaybeFailure failure = OpenPicture(options.inputFile, picture)) {
        return failure;
    }
    if (MaybeFailure failure =
            CheckFormatHolds(*work->format, picture->document, options.inputFile, options.outputFile)) {
        return failure;
    }
    if (MaybeFailure failure =
            PlanOutput({options.inputFile, options.outputFile, options.force, options.inPlace}, &output)) {
        return failure;
    }
    if (MaybeFailure failure = LoadModule(options.pluginFolder, &filter)) {
        return failure;
    }
    if (MaybeFailure failure = CreateTemporary(&output)) {
        return failure;
    }
    if (MaybeFailure failure = ReadPixels(picture, PartOf(watcher, 0, kReadUntil))) {
        return failure;
    }
    const FilterOutcome outcome = RunFilter(
        {&filter, &picture->document, ActionOf(options), true, PartOf(watcher, kReadUntil, kFilteredUntil)});
    work->recorded = outcome.recorded;
    if (MaybeFailure failure = FailureOfFilter(outcome, options.inputFile)) {
        return failure;
    }
    if (MaybeFailure failure = WritePicture(*picture, *work->format, output.temporary, options.outputFile,
                                            PartOf(watcher, kFilteredUntil, 1))) {
        return failure;
    }
    return Publish(&output);
}

MaybeFailure Run(const Options &options) {
    const Clock::time_point start = Clock::now();
    ProgressBar bar = MakeProgressBar(!options.quiet);
    const Watcher watcher = {[&](double done) { AdvanceBar(&bar, done); }, Interrupted};
    Work work;
    MaybeFailure failure = FilterFile(options, watcher, &work);
    ClearBar(&bar);
    if (!failure && !options.quiet) {
        PrintSummary(options, work, start);
    }
    return failure;
}

// Names may hold what would break the line.
int Tell(Failure failure) {
    for (char &character : failure.sentence) {
        character = static_cast<unsigned char>(character) < ' ' || character == 0x7F ? '?' : character;
    }
    if (!failure.sentence.empty()) {
        std::fprintf(stderr, "hymedian: %s\n", failure.sentence.c_str());
    }
    return failure.status;
}

}  // namespace

int main(int count, char **arguments) {
    Options options;
    if (MaybeFailure failure = ParseOptions(count, arguments, &options)) {
        return Tell(*failure);
    }
    if (!options.answer.empty()) {
        std::fputs(options.answer.c_str(), stdout);
        return kExitDone;
    }
    WatchForInterrupts();
    MakePreferencesFolder();
    if (!StartVips(arguments[0])) {
        return Tell({kExitFailed, "The picture library cannot be started."});
    }
    const MaybeFailure failure = Run(options);
    vips_shutdown();
    return failure ? Tell(*failure) : kExitDone;
}
