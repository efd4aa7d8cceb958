#include "host/batch_plan.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <map>

#include "host/picture/picture_format.h"

namespace fs = std::filesystem;

namespace {

constexpr char kStandardInput[] = "standard input";
constexpr char kStandardOutput[] = "standard output";
constexpr mode_t kAnyonesFile = 0666;

// A picture, and its place below the folder of outputs.
struct Input {
    std::string file;
    fs::path place;
};

bool IsFolder(const std::string &path) {
    std::error_code error;
    return fs::is_directory(path, error);
}

bool IsHidden(const fs::path &path) {
    return path.filename().string().starts_with('.');
}

bool IsOutput(const Options &options, const fs::path &path) {
    return !options.suffix.empty() && path.stem().string().ends_with(options.suffix);
}

bool IsPictureToFilter(const Options &options, const fs::directory_entry &entry) {
    std::error_code error;
    const PictureFormat *format = nullptr;
    return entry.is_regular_file(error) && !IsHidden(entry.path()) && !IsOutput(options, entry.path()) &&
           !FindFormat(entry.path().string(), kFormatOfName, &format);
}

// Hidden folders, and that of the outputs, stay out. So do folders that cannot be read.
MaybeFailure PicturesIn(const Options &options, const std::string &folder, std::vector<Input> *inputs) {
    std::error_code error;
    std::vector<Input> found;
    fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied, error), end;
    if (error) {
        return FileFailure(folder, error.message());
    }
    for (; entry != end; entry.increment(error)) {
        std::error_code none;
        if (entry->is_directory(none) &&
            (IsHidden(entry->path()) ||
             (!options.output.empty() && fs::equivalent(entry->path(), options.output, none)))) {
            entry.disable_recursion_pending();
        } else if (IsPictureToFilter(options, *entry)) {
            found.push_back({entry->path().string(), entry->path().lexically_relative(folder)});
        }
    }
    if (error) {
        return FileFailure(folder, error.message());
    }
    if (found.empty()) {
        return FileFailure(folder, "there are no pictures in this folder");
    }
    std::sort(found.begin(), found.end(), [](const Input &a, const Input &b) { return a.file < b.file; });
    inputs->insert(inputs->end(), found.begin(), found.end());
    return std::nullopt;
}

MaybeFailure FindInputs(const Options &options, std::vector<Input> *inputs) {
    for (const std::string &name : options.inputFiles) {
        if (!options.recursive || !IsFolder(name)) {
            inputs->push_back({name, fs::path(name).filename()});
        } else if (MaybeFailure failure = PicturesIn(options, name, inputs)) {
            return failure;
        }
    }
    return std::nullopt;
}

bool KeepsNames(const Options &options) {
    return options.output != kPipe &&
           (options.output.empty() || options.recursive || IsFolder(options.output));
}

std::string OutputOf(const Options &options, const Input &input) {
    if (options.output == kPipe) {
        return kStandardOutput;
    }
    if (!KeepsNames(options)) {
        return options.output;
    }
    const fs::path path = options.output.empty() ? fs::path(input.file) : options.output / input.place;
    return options.suffix.empty()
               ? path.string()
               : (path.parent_path() / (path.stem().string() + options.suffix + path.extension().string()))
                     .string();
}

MaybeFailure CheckPlaces(const Options &options, const std::vector<Input> &inputs) {
    const bool several = inputs.size() > 1;
    const bool toFile = !options.output.empty() && options.output != kPipe && !IsFolder(options.output);
    std::error_code error;
    const struct {
        bool refused;
        std::string sentence;
    } checks[] = {
        {several && options.output == kPipe, "Standard output takes one picture."},
        {several && !options.comparisonFile.empty(), "--compare takes one picture."},
        {several && !options.recordFile.empty(), "--record takes one picture."},
        {options.recursive && toFile && fs::exists(options.output, error),
         options.output + ": this is no folder."},
        {several && toFile && !options.recursive,
         options.output + ": several pictures need an existing folder to go to."},
        {toFile && !options.recursive && options.output.ends_with('/'),
         options.output + ": there is no such folder."},
    };
    for (const auto &[refused, sentence] : checks) {
        if (refused) {
            return Failure{kExitUsage, sentence};
        }
    }
    return std::nullopt;
}

// What cannot be read from its beginning goes to a file first.
MaybeFailure TakeStandardInput(FileRequest *request) {
    request->inputName = kStandardInput;
    struct stat info = {};
    if (fstat(STDIN_FILENO, &info) == 0 && S_ISREG(info.st_mode) && lseek(STDIN_FILENO, 0, SEEK_CUR) == 0) {
        request->inputFile = "/proc/" + std::to_string(getpid()) + "/fd/0";
        return std::nullopt;
    }
    request->spooled = std::make_shared<ScratchFile>();
    const mode_t mask = umask(0);
    umask(mask);
    if (!MakeScratch(TemporaryFolder(), request->spooled.get()) ||
        !CopyBytes(STDIN_FILENO, request->spooled->descriptor) ||
        fchmod(request->spooled->descriptor, kAnyonesFile & ~mask) != 0) {
        return FileFailure(kStandardInput, std::string("cannot be read: ") + std::strerror(errno));
    }
    request->inputFile = request->spooled->path;
    return std::nullopt;
}

}  // namespace

MaybeFailure PlanBatch(const Options &options, std::vector<FileRequest> *requests) {
    std::vector<Input> inputs;
    if (MaybeFailure failure = FindInputs(options, &inputs)) {
        return failure;
    }
    if (MaybeFailure failure = CheckPlaces(options, inputs)) {
        return failure;
    }
    std::error_code error;
    std::map<fs::path, std::string> taken;  // inputs by output path
    for (const Input &input : inputs) {
        const std::string output = OutputOf(options, input);
        const auto [other, isNew] = taken.emplace(fs::weakly_canonical(output, error), input.file);
        if (!isNew) {
            std::string sentence = input.file;
            sentence.append(": its output would be ").append(output);
            sentence.append(", which is that of ").append(other->second).append(" already.");
            return Failure{kExitUsage, sentence};
        }
        FileRequest request = {input.file,
                               input.file,
                               {output, options.comparisonFile, options.recordFile},
                               options.force,
                               options.inPlace,
                               options.recursive,
                               options.output == kPipe,
                               KeepsNames(options),
                               nullptr};
        if (input.file == kPipe) {
            if (MaybeFailure failure = TakeStandardInput(&request)) {
                return failure;
            }
        }
        requests->push_back(request);
    }
    return std::nullopt;
}
