#include "host/options.h"

#include <CLI/CLI.hpp>
#include <algorithm>
#include <charconv>
#include <filesystem>
#include <iterator>
#include <numeric>
#include <thread>
#include <utility>

#include "host/filter/plugin.h"
#include "host/picture/sample_range.h"
#include "host/picture/selection.h"
#include "host/work/file_task.h"
#include "hybridmedian/public.h"

namespace {

constexpr int32_t kMaxPasses = 100;  // chosen: a picture has long stopped changing
constexpr int32_t kMaxJobs = 256;    // chosen: more than nearly any machine has processors

Failure WrongUsage(const std::string &reason) {
    return {kExitUsage, reason + "; 'hymedian --help' lists the options."};
}

// The parser's messages may span several lines.
std::string OneLine(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

bool HasSuffix(const std::string &file, const std::string &suffix) {
    return file.size() >= suffix.size() &&
           file.compare(file.size() - suffix.size(), suffix.size(), suffix) == 0;
}

constexpr char kExamples[] =
    "EXAMPLES\n"
    "  hymedian scan.tif -o clean.tif -r 2            all pages of a scan\n"
    "  hymedian -R pictures -o cleaned -r 2           a tree of pictures, mirrored\n"
    "  hymedian *.jpg --suffix=-clean --amount 50     results beside their inputs, half as strong\n"
    "  convert a.png tif:- | hymedian - -o - --format tif -r 2 > b.tif";

constexpr char kRadii[] = "any number from 1 to 6";
static_assert(kMinRadius == 1 && kMaxRadius == 6);

// Also refuses NaN.
bool IsRadius(double radius) {
    return radius >= double{kMinRadius} && radius <= double{kMaxRadius};
}

std::optional<PageRange> ParsePages(const std::string &text) {
    PageRange range = {};
    const char *end = text.data() + text.size();
    auto parsed = std::from_chars(text.data(), end, range.first);
    range.last = range.first;
    if (parsed.ec == std::errc() && parsed.ptr != end && *parsed.ptr == '-') {
        parsed = std::from_chars(parsed.ptr + 1, end, range.last);
    }
    const bool sound = parsed.ec == std::errc() && parsed.ptr == end;
    return sound && range.first >= 1 && range.last >= range.first ? std::optional(range) : std::nullopt;
}

// How many letters have to be put in, left out or changed to get from one word to the other.
size_t Distance(const std::string &from, const std::string &to) {
    std::vector<size_t> row(to.size() + 1);
    std::iota(row.begin(), row.end(), size_t{0});
    for (size_t i = 0; i < from.size(); ++i) {
        size_t corner = std::exchange(row[0], i + 1);
        for (size_t j = 0; j < to.size(); ++j) {
            const size_t changed = corner + (from[i] == to[j] ? 0 : 1);
            corner = row[j + 1];
            row[j + 1] = std::min({changed, row[j] + 1, corner + 1});
        }
    }
    return row.back();
}

// "; did you mean --radius?", for the first option that there is not, or how to name a file like it.
std::string Suggestion(const CLI::App &app, int count, char **arguments) {
    constexpr size_t kFarthest = 3;
    constexpr size_t kShortest = 4;  // with its dashes
    for (int i = 1; i < count; ++i) {
        const std::string argument = arguments[i];
        std::error_code error;
        if (argument == "--" || !argument.starts_with("-") || argument == kPipe) {
            continue;
        }
        if (std::filesystem::exists(argument, error)) {
            return "; the file of that name is ./" + argument;
        }
        const std::string name = argument.substr(0, argument.find('='));
        if (app.get_option_no_throw(name) != nullptr || name.size() < kShortest) {
            continue;
        }
        std::string nearest;
        size_t least = kFarthest;
        for (const CLI::Option *option : app.get_options()) {
            for (const std::string &known : option->get_lnames()) {
                const bool begins = ("--" + known).starts_with(name);
                if (const size_t distance = begins ? 0 : Distance(name, "--" + known); distance < least) {
                    least = distance;
                    nearest = known;
                }
            }
        }
        if (!nearest.empty() || argument.starts_with("--")) {
            return nearest.empty() ? "" : "; did you mean --" + nearest + "?";
        }
    }
    return {};
}

MaybeFailure CheckOptions(const Options &options) {
    const bool beyondActions = options.radius && *options.radius > kMaxPlayedRadius;
    const std::string first = options.inputFiles.empty() ? "" : options.inputFiles.front();
    const bool nowhere = options.output.empty() && options.suffix.empty() && !options.inPlace;
    const auto pipedIn = std::count(options.inputFiles.begin(), options.inputFiles.end(), kPipe);
    std::error_code error;
    const bool isFolder = std::filesystem::is_directory(options.output, error);
    const struct {
        bool refused;
        std::string reason;
    } checks[] = {
        {options.inputFiles.empty() && !options.info, "A picture is missing"},
        {beyondActions && !options.recordFile.empty(),
         "--record keeps a radius of at most " + std::to_string(kMaxPlayedRadius)},
        {options.jobs < 1 || options.jobs > kMaxJobs,
         "The number of jobs must be from 1 to " + std::to_string(kMaxJobs)},
        {options.passes < 1 || options.passes > kMaxPasses,
         "The passes can be from 1 to " + std::to_string(kMaxPasses)},
        {options.amount < 0 || options.amount > 100, "The amount can be from 0 to 100 percent"},
        {!options.comparisonFile.empty() && (options.passes > 1 || options.amount < 100),
         "--compare goes with neither --passes nor --amount"},
        {options.maxMegapixels.value_or(1) < 1, "The limit must be at least 1 megapixel"},
        {options.compressionLevel.value_or(0) < 0 || options.compressionLevel.value_or(0) > 9,
         "The compression level must be from 0 to 9"},
        {options.json && options.output == kPipe, "--json and -o - both go to standard output"},
        {pipedIn > 1, "Standard input can be read once"},
        {pipedIn > 0 && (options.output.empty() || isFolder),
         "Standard input needs an output: name one with -o"},
        {(options.output == kPipe) != (options.format != kFormatOfName),
         "Standard output, -o -, and --format go together"},
        {options.suffix.find('/') != std::string::npos, "A --suffix has no slash"},
        {options.inPlace && !options.suffix.empty(), "--in-place takes no --suffix"},
        {!options.comparisonFile.empty() && !HasSuffix(options.comparisonFile, ".png"),
         options.comparisonFile + ": the name of a comparison must end in .png"},
        {nowhere && !options.info,
         first + ": an output is missing: name one with -o, or use --suffix or --in-place"},
    };
    const auto *failed =
        std::find_if(std::begin(checks), std::end(checks), [](const auto &check) { return check.refused; });
    return failed == std::end(checks) ? std::nullopt : MaybeFailure(WrongUsage(failed->reason));
}

}  // namespace

MaybeFailure ParseOptions(int count, char **arguments, Options *options) {
    options->pluginFolder = DefaultPluginFolder();
    options->jobs =
        static_cast<int32_t>(std::clamp(std::thread::hardware_concurrency(), 1u, unsigned{kMaxJobs}));
    std::optional<double> radius;
    std::optional<int32_t> quality;
    std::string dialog, format, selection, range, compression, pages;
    CLI::App app("Removes specks and dust from pictures and keeps their edges and fine lines.", "hymedian");
    app.add_option("INPUT", options->inputFiles,
                   "The pictures: PNG, JPEG, TIFF, WebP, HEIC, AVIF, PPM, PAM or GIF; - for standard input");
    app.add_option(
           "-o,--output", options->output,
           "The filtered picture, whose suffix decides the format; or the folder of all outputs; - for "
           "standard output")
        ->type_name("FILE");
    app.add_option("--format", format,
                   "The format on standard output: png, jpg, tif, webp, heic, avif, ppm or pam")
        ->type_name("NAME");
    app.add_flag("-R,--recursive", options->recursive,
                 "Take the pictures in folders, and make the same folders below that of the outputs");
    app.add_option("--suffix", options->suffix, "Put this behind the names of outputs, as in --suffix=-clean")
        ->type_name("TEXT");
    auto *radiusOption = app.add_option("-r,--radius", radius,
                                        std::string("How far the filter reaches: ") + kRadii +
                                            ", fractions are dropped; without it, as far as the last time")
                             ->type_name("N");
    auto *play = app.add_option("--play", options->playFile, "Play a recorded action back")
                     ->type_name("FILE")
                     ->excludes(radiusOption);
    app.add_flag("--dialog", dialog,
                 "Ask for the radius, with a preview: once for all pictures, or, as --dialog=each, for each")
        ->excludes(radiusOption)
        ->excludes(play);
    app.add_option("--record", options->recordFile, "Write the action for --play")->type_name("FILE");
    app.add_option("--select", selection, "Filter this rectangle alone")->type_name("X,Y,W,H");
    app.add_option("--mask", options->maskFile, "Filter as far as this grey picture is white")
        ->type_name("FILE");
    app.add_option("--passes", options->passes, "Filter so many times over; without it, once")
        ->type_name("N");
    app.add_option("--amount", options->amount,
                   "How many percent of the result are mixed with the input; without it, 100")
        ->type_name("P");
    app.add_option("--page", pages, "Filter only these pages of a TIFF; the others stay")->type_name("N[-M]");
    app.add_option("--range", range,
                   "The floats that are filtered as black and white; without it, the least and greatest")
        ->type_name("A,B");
    app.add_option("--compare", options->comparisonFile, "Write before and after, side by side")
        ->type_name("FILE.png");
    app.add_option("-j,--jobs", options->jobs, "How many processes filter; without it, one per processor")
        ->type_name("N");
    app.add_option("--max-megapixels", options->maxMegapixels,
                   "Refuse larger pictures; without it, those of more than " +
                       std::to_string(kMaxStreamedMegapixels) + ", or of more than " +
                       std::to_string(kMaxWholeMegapixels) + " where all of it must be in memory")
        ->type_name("N");
    app.add_option("--compression-level", options->compressionLevel,
                   "Of PNG outputs: from 0, fast, to 9, small; without it, about as fast as the filter")
        ->type_name("N");
    app.add_flag("--in-place", options->inPlace, "Write over the inputs");
    app.add_flag("-f,--force", options->force,
                 "Write over existing outputs, and with --in-place over write-protected inputs");
    app.add_option(
           "--compression", compression,
           std::string("How a TIFF is compressed: ") + kCompressionNames + "; without it, as the input")
        ->type_name("NAME");
    app.add_option("--quality", quality,
                   "The quality of JPEG, WebP, HEIC and AVIF, 1 to 100; without it, as the input's")
        ->type_name("N");
    app.add_flag("--stamp", options->stamp, "Say in each output when and by what it was written");
    app.add_option("--plugin", options->pluginFolder, "The folder of the filter's module")
        ->type_name("FOLDER");
    app.add_flag("--info", options->info, "Tell what the plug-in says of itself");
    app.add_flag("-q,--quiet", options->quiet, "No progress bar and no summary");
    app.add_flag("--json", options->json, "Tell of each picture in a line of JSON");
    app.add_flag("--dry-run", options->dryRun, "Only say what would be done");
    app.footer(kExamples);
    app.set_version_flag("--version", "hymedian " HYMEDIAN_VERSION);
    try {
        app.parse(count, arguments);
    } catch (const CLI::CallForHelp &) {
        options->answer = app.help();
        return std::nullopt;
    } catch (const CLI::CallForVersion &version) {
        options->answer = std::string(version.what()) + "\n";
        return std::nullopt;
    } catch (const CLI::ParseError &error) {
        return WrongUsage(OneLine(error.what()) + Suggestion(app, count, arguments));
    }
    options->dialog = !dialog.empty();
    options->dialogForEach = dialog == "each";
    if (options->dialog && !options->dialogForEach && dialog != "true") {
        return WrongUsage("--dialog can only be given alone or as --dialog=each");
    }
    options->format = FormatNamed(format);
    if (!format.empty() && options->format == kFormatOfName) {
        return WrongUsage("--format can be png, jpg, tif, webp, heic, avif, ppm or pam");
    }
    options->storage.compression = CompressionNamed(compression);
    if (!compression.empty() && options->storage.compression < 0) {
        return WrongUsage("--compression can be " + std::string(kCompressionNames));
    }
    if (quality && (*quality < 1 || *quality > 100)) {
        return WrongUsage("The --quality can be any whole number from 1 to 100");
    }
    options->storage.quality = quality.value_or(0);
    if (radius && !IsRadius(*radius)) {
        return WrongUsage(std::string("The radius can be ") + kRadii);
    }
    if (radius) {
        options->radius = static_cast<int32_t>(*radius);
    }
    options->selection = ParseRect(selection);
    if (!selection.empty() && !options->selection) {
        return WrongUsage("--select " + selection + ": a rectangle is X,Y,W,H in pixels, and not empty");
    }
    options->pages = ParsePages(pages);
    if (!pages.empty() && !options->pages) {
        return WrongUsage("--page " + pages + ": pages are N or N-M, counted from 1");
    }
    options->range = ParseRange(range);
    if (!range.empty() && !options->range) {
        return WrongUsage("--range " + range + ": a range is A,B, two numbers of which the first is less");
    }
    return CheckOptions(*options);
}
