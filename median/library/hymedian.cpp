// The call itself: what is wrong with it, and what is to be done.
#include "hymedian.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <iterator>
#include <limits>
#include <new>
#include <thread>

#include "image_access.h"
#include "tasks.h"
#include "tile_filter.h"

namespace {

constexpr int kMaxThreads = 256;
// Rows and columns around the last ones can still be counted.
constexpr int64_t kMaxSide = std::numeric_limits<int64_t>::max() - HYMEDIAN_MAX_RADIUS;
// While the range of floats is looked for, the caller is asked each time so many rows are done.
constexpr int64_t kRowsBetweenQuestions = 64;

constexpr const char *kTexts[] = {
    "done",
    "cancelled",
    "not enough memory",
    "a pointer is null",
    "the options' size is unknown to this version",
    "the radius must be from 1 to 6",
    "the number of threads must not be negative",
    "there must be 1 or 3 components",
    "samples must be of 8 or 16 bits or 32-bit floats",
    "the image is empty, or has more rows or columns than can be counted",
    "the strides lead out of memory, or pixels of the output share bytes",
    "input and output differ in components or samples",
    "the output reaches beyond the input",
    "input and output overlap",
    "the range of floats must be finite, its least value below its greatest",
};
static_assert(std::size(kTexts) == HYMEDIAN_RANGE + 1);

int CheckImage(const hymedian_image &image) {
    if (image.components != 1 && image.components != 3) {
        return HYMEDIAN_COMPONENTS;
    }
    if (image.sample != HYMEDIAN_UINT8 && image.sample != HYMEDIAN_UINT16 &&
        image.sample != HYMEDIAN_FLOAT32) {
        return HYMEDIAN_SAMPLE;
    }
    if (std::min(image.width, image.height) < 1 || std::max(image.width, image.height) > kMaxSide) {
        return HYMEDIAN_SIZE;
    }
    ByteRange bytes;
    return FindBytes(image, &bytes) ? HYMEDIAN_OK : HYMEDIAN_STRIDE;
}

bool Overlap(const hymedian_image &a, const hymedian_image &b) {
    ByteRange first, second;
    FindBytes(a, &first);
    FindBytes(b, &second);
    return first.first < second.end && second.first < first.end;
}

int CheckOptions(const hymedian_options &options) {
    if (options.size != sizeof(hymedian_options)) {
        return HYMEDIAN_OPTIONS;
    }
    if (options.radius < HYMEDIAN_MIN_RADIUS || options.radius > HYMEDIAN_MAX_RADIUS) {
        return HYMEDIAN_RADIUS;
    }
    if (options.threads < 0) {
        return HYMEDIAN_THREADS;
    }
    return std::isfinite(options.least) && std::isfinite(options.greatest) &&
                   options.least <= options.greatest
               ? HYMEDIAN_OK
               : HYMEDIAN_RANGE;
}

bool IsInside(int64_t at, int64_t count, int64_t whole) {
    return at >= 0 && count <= whole && at <= whole - count;
}

int Check(const hymedian_image *input, const hymedian_image *output, const hymedian_options *options) {
    if (input == nullptr || output == nullptr || options == nullptr || input->pixels == nullptr ||
        output->pixels == nullptr) {
        return HYMEDIAN_NULL;
    }
    for (const int status : {CheckOptions(*options), CheckImage(*input), CheckImage(*output)}) {
        if (status != HYMEDIAN_OK) {
            return status;
        }
    }
    if (!HasSamplesApart(*output)) {
        return HYMEDIAN_STRIDE;
    }
    if (input->components != output->components || input->sample != output->sample) {
        return HYMEDIAN_MISMATCH;
    }
    if (!IsInside(options->x, output->width, input->width) ||
        !IsInside(options->y, output->height, input->height)) {
        return HYMEDIAN_REGION;
    }
    return Overlap(*input, *output) ? HYMEDIAN_OVERLAP : HYMEDIAN_OK;
}

bool GoOn(const hymedian_options &options, double done) {
    return options.progress == nullptr || options.progress(options.user, done) == 0;
}

// False if cancelled.
bool FindRange(const hymedian_image &input, const hymedian_options &options, FloatImage *floats) {
    floats->least = options.least;
    floats->greatest = options.greatest;
    if (input.sample != HYMEDIAN_FLOAT32 || options.least < options.greatest) {
        return true;
    }
    floats->least = std::numeric_limits<float>::infinity();
    floats->greatest = -floats->least;
    for (int64_t y = 0; y < input.height; ++y) {
        if (y % kRowsBetweenQuestions == 0 && !GoOn(options, 0)) {
            return false;
        }
        WidenRange(input, y, &floats->least, &floats->greatest);
    }
    if (!(floats->least < floats->greatest)) {
        // One value alone, or none at all: no range tells pixels apart.
        floats->least = 0;
        floats->greatest = 1;
    }
    return true;
}

// An image like the output with pixels of its own; null when memory is short.
std::unique_ptr<uint8_t[]> MakeLike(const hymedian_image &output, hymedian_image *image) {
    *image = output;
    image->component_stride = image->sample;
    image->pixel_stride = PixelBytes(*image);
    int64_t bytes = 0;
    if (__builtin_mul_overflow(image->pixel_stride, image->width, &image->row_stride) ||
        __builtin_mul_overflow(image->row_stride, image->height, &bytes)) {
        return nullptr;
    }
    std::unique_ptr<uint8_t[]> pixels(new (std::nothrow) uint8_t[static_cast<size_t>(bytes)]);
    image->pixels = pixels.get();
    return pixels;
}

int Run(const TileFilter &filter, int threads, const hymedian_options &options) {
    TileMemory memory[kMaxThreads];
    const int64_t columns = (filter.output.width - 1) / filter.tileWidth + 1;
    const int64_t rows = (filter.output.height - 1) / filter.tileHeight + 1;
    // As many workers as there is memory for.
    int workers = 0;
    while (workers < std::min<int64_t>(threads, columns * rows) &&
           (memory[workers] = MakeTileMemory(filter)) != nullptr) {
        ++workers;
    }
    if (workers == 0) {
        return HYMEDIAN_NO_MEMORY;
    }
    const auto work = [&](int64_t task, int worker) {
        const int64_t x = task % columns * filter.tileWidth;
        const int64_t y = task / columns * filter.tileHeight;
        FilterTile(filter,
                   {x, y, std::min(filter.tileWidth, filter.output.width - x),
                    std::min(filter.tileHeight, filter.output.height - y)},
                   memory[worker].get());
    };
    // By reference, since a copy would take memory, which may be short.
    return DoTasks(columns * rows, workers, std::cref(work), [&](double done) { return GoOn(options, done); })
               ? HYMEDIAN_OK
               : HYMEDIAN_CANCELLED;
}

}  // namespace

int hymedian_filter(const hymedian_image *input, const hymedian_image *output,
                    const hymedian_options *options) {
    const int status = Check(input, output, options);
    if (status != HYMEDIAN_OK) {
        return status;
    }
    const int processors = static_cast<int>(std::max(std::thread::hardware_concurrency(), 1u));
    const int threads = std::min(options->threads == 0 ? processors : options->threads, kMaxThreads);

    TileFilter filter = {};
    filter.input = input;
    filter.output = *output;
    filter.x = options->x;
    filter.y = options->y;
    filter.radius = options->radius;
    filter.floats = {input, 0, 0, options->radius};
    if (!FindRange(*input, *options, &filter.floats)) {
        return HYMEDIAN_CANCELLED;
    }
    PlanTiles(threads, &filter);
    if (options->progress == nullptr || options->partial != 0) {
        return Run(filter, threads, *options);
    }
    const std::unique_ptr<uint8_t[]> kept = MakeLike(*output, &filter.output);
    if (kept == nullptr) {
        return HYMEDIAN_NO_MEMORY;
    }
    const int result = Run(filter, threads, *options);
    for (int64_t y = 0; result == HYMEDIAN_OK && y < output->height; ++y) {
        StorePixels(PixelAt(filter.output, 0, y), 0, y, output->width, *output);
    }
    return result;
}

const char *hymedian_status_text(int status) {
    return status >= 0 && status <= HYMEDIAN_RANGE ? kTexts[status] : "an unknown status";
}

const char *hymedian_version(void) {
    return HYMEDIAN_VERSION;
}
