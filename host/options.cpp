#include "host/options.h"

#include <CLI/CLI.hpp>

#include "host/module.h"

namespace {

// What an action may hold.
constexpr double kMinRadius = 1;
constexpr double kMaxRadius = 4;

Failure WrongUsage(const std::string &reason) {
    return {kExitUsage, reason + "; 'hymedian --help' lists the options."};
}

// The parser's messages may span lines.
std::string OneLine(std::string text) {
    std::replace(text.begin(), text.end(), '\n', ' ');
    return text;
}

MaybeFailure CheckOptions(Options *options) {
    // Also refuses what is not a number.
    if (options->radius && !(*options->radius >= kMinRadius && *options->radius <= kMaxRadius)) {
        return WrongUsage("The radius must be from 1 to 4");
    }
    if (options->outputFile.empty() && !options->inPlace) {
        return WrongUsage(options->inputFile + ": an output is missing: name one with -o, or use --in-place");
    }
    if (options->outputFile.empty()) {
        options->outputFile = options->inputFile;
    }
    return std::nullopt;
}

}  // namespace

MaybeFailure ParseOptions(int count, char **arguments, Options *options) {
    options->pluginFolder = DefaultPluginFolder();
    CLI::App app("Removes noise from a picture and keeps its edges and fine lines.", "hymedian");
    app.add_option("INPUT", options->inputFile, "The picture: PNG, JPEG, TIFF or WebP")->required();
    app.add_option("-o,--output", options->outputFile, "The filtered picture; its suffix decides the format");
    app.add_option("-r,--radius", options->radius,
                   "How far the filter reaches, from 1 to 4; without it, as far as the last time");
    app.add_flag("--in-place", options->inPlace, "Write over the input");
    app.add_flag("-f,--force", options->force, "Write over an existing output");
    app.add_option("--plugin", options->pluginFolder, "The folder of the filter's module")
        ->type_name("FOLDER");
    app.add_flag("-q,--quiet", options->quiet, "No progress bar and no summary");
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
        return WrongUsage(OneLine(error.what()));
    }
    return CheckOptions(options);
}
