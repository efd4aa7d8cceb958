// Shows where the time of a whole run goes. `run_bench PICTURE OUTPUT RADIUS` prints a row of a Markdown
// table: the picture's size; the seconds for reading, for filtering through the plug-in's entry point, for
// the filter alone, and for writing; the filter's nanoseconds per pixel, its own memory, and the longest time
// between two checks for cancelling. Times are the best of three runs. 8-bit RGB pictures only.
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>

#include "host/filter/filter_run.h"
#include "host/filter/plugin.h"
#include "host/filter/tiles.h"
#include "host/picture/picture.h"
#include "host/picture/picture_format.h"
#include "host/picture/picture_writer.h"
#include "host/report/failure.h"
#include "imagestore/named_images.h"
#include "median/hybrid_filter.h"
#include "photoshop/filter_record.h"
#include "platform/faults/fault_injection.h"
#include "platform/native_paths.h"
#include "toolkit/run_context.h"

namespace {

using Clock = std::chrono::steady_clock;

constexpr int kRounds = 3;

double SecondsSince(Clock::time_point start) {
    return std::chrono::duration<double>(Clock::now() - start).count();
}

struct Figures {
    double reading, filtering, filterAlone, writing;
    double longestSilence;  // between two checks for cancelling
    int64_t filterMemory;   // allocated by the filter itself
};

// What the callbacks work on; the filter passes them no context.
struct {
    Clock::time_point lastAsked;
    int64_t memoryBefore;
    Figures *figures;
} watched;

Boolean Ask() {
    Figures *figures = watched.figures;
    figures->longestSilence = std::max(figures->longestSilence, SecondsSince(watched.lastAsked));
    figures->filterMemory = std::max(figures->filterMemory, faults::BytesInUse() - watched.memoryBefore);
    watched.lastAsked = Clock::now();
    return false;
}

[[noreturn]] void Give(const MaybeFailure &failure) {
    Tell(*failure);
    std::exit(1);
}

void Need(const MaybeFailure &failure) {
    if (failure) {
        Give(failure);
    }
}

// The filter on an image of its own, as the plug-in calls it.
void FilterAlone(const Document &document, float radius, Figures *figures) {
    NamedImage *image = nullptr;
    if (MakeTempImage(static_cast<int16_t>(document.width), static_cast<int16_t>(document.height), 3,
                      &image) != noErr) {
        std::exit(1);
    }
    for (int32_t y = 0; y < document.height; ++y) {
        PutLine(image, 0, y, static_cast<int32_t>(RowBytes(document)),
                document.source.get() + y * RowBytes(document));
    }
    FilterRecord record = {};
    record.abortProc = Ask;
    RunContext context = {};
    context.filterRecord = &record;
    *figures = {};
    watched = {Clock::now(), faults::BytesInUse(), figures};
    const Clock::time_point start = Clock::now();
    NewHyMedian(image, radius, true, &context, 1, 2, 3);
    figures->filterAlone = SecondsSince(start);
    TossTempImage(image);
}

Figures MeasureRun(Module *module, const char *file, const char *output, float radius) {
    const PictureFormat *format = nullptr;
    Need(FindFormat(output, kFormatOfName, &format));
    Picture picture;
    Figures figures;
    Clock::time_point start = Clock::now();
    Need(OpenPicture(file, &picture));
    Need(ReadPixels(&picture, {}));
    const double reading = SecondsSince(start);
    FilterAlone(picture.document, radius, &figures);
    figures.reading = reading;

    const FilterOrders orders = {{}, DialogUser::script, static_cast<int32_t>(radius)};
    start = Clock::now();
    const FilterOutcome outcome =
        RunTiles({module, &picture.document, orders, true, {}},
                 CutIntoTiles(WholeRect(picture.document), WholeRect(picture.document)));
    figures.filtering = SecondsSince(start);
    if (outcome.result != noErr) {
        Give(FileFailure(file, "cannot be filtered"));
    }
    start = Clock::now();
    const Document &written = picture.document;
    Need(WritePicture(picture, *format, {}, output, output,
                      [&](int32_t row) { return written.destination.get() + row * RowBytes(written); }));
    figures.writing = SecondsSince(start);
    return figures;
}

}  // namespace

int main(int argc, char **argv) {
    if (argc != 4) {
        std::fprintf(stderr, "usage: run_bench PICTURE OUTPUT RADIUS\n");
        return 2;
    }
    MakePreferencesFolder();
    if (!StartVips(argv[0])) {
        return 1;
    }
    Plugin plugin;
    Need(OpenPlugin(DefaultPluginFolder(), &plugin));
    const float radius = std::strtof(argv[3], nullptr);
    Picture picture;
    Need(OpenPicture(argv[1], &picture));
    const Document &document = picture.document;
    if (document.planes != 3 || document.depth != 8) {
        Give(FileFailure(argv[1], "only RGB pictures of 8 bits are measured"));
    }
    const double pixels = double{1} * document.width * document.height;

    Figures best = {};
    for (int round = 0; round < kRounds; ++round) {
        const Figures figures = MeasureRun(&plugin.module, argv[1], argv[2], radius);
        best = round == 0 ? figures
                          : Figures{std::min(best.reading, figures.reading),
                                    std::min(best.filtering, figures.filtering),
                                    std::min(best.filterAlone, figures.filterAlone),
                                    std::min(best.writing, figures.writing),
                                    std::min(best.longestSilence, figures.longestSilence),
                                    std::max(best.filterMemory, figures.filterMemory)};
    }
    std::printf("| %d × %d | %.2f | %.2f | %.2f | %.2f | %.1f | %.1f | %.0f |\n", document.width,
                document.height, best.reading, best.filtering, best.filterAlone, best.writing,
                best.filterAlone / pixels * 1e9, static_cast<double>(best.filterMemory) / 1e6,
                best.longestSilence * 1e3);
    return 0;
}
