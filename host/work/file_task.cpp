#include "host/work/file_task.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <filesystem>

#include "host/work/stack_task.h"

namespace fs = std::filesystem;

namespace {

bool IsSamePlace(const std::string &a, const std::string &b) {
    std::error_code error;
    return !a.empty() && !b.empty() && fs::weakly_canonical(a, error) == fs::weakly_canonical(b, error);
}

MaybeFailure CheckPlaces(const FileRequest &request) {
    for (size_t i = 0; i < kOutputCount; ++i) {
        const std::string &next = request.outputs[(i + 1) % kOutputCount];
        if (IsSamePlace(request.outputs[i], next)) {
            return Failure{kExitUsage, next + ": two outputs cannot go to one file."};
        }
    }
    return std::nullopt;
}

// A file of one picture has one page, which may be asked for.
MaybeFailure CheckOnlyPage(const FileTask &task) {
    const std::optional<PageRange> &range = task.settings.pages;
    return range && range->last > 1 ? MaybeFailure({kExitUsage, task.inputFile + ": it has only one page."})
                                    : std::nullopt;
}

MaybeFailure CheckInput(const FileTask &task, const PluginInfo &plugin, Picture *picture) {
    PageStack stack;
    if (OpenStack(task.inputFile, task.inputFile, &stack)) {
        ScratchFile page;
        return CheckStack(task, plugin, stack, &page, picture);
    }
    if (MaybeFailure failure = OpenPicture(task.inputFile, picture)) {
        return failure;
    }
    if (MaybeFailure failure = CheckOnlyPage(task)) {
        return failure;
    }
    return CheckPicture(task, plugin, *picture);
}

MaybeFailure PlanPipe(PlannedFile *planned) {
    const std::string &name = planned->task.outputs[kPictureOutput];
    if (isatty(STDOUT_FILENO) != 0) {
        return Failure{kExitUsage, name + ": this is a terminal, which pictures do not go to."};
    }
    if (!MakeScratch(TemporaryFolder(), &planned->piped)) {
        return FileFailure(name, std::string("cannot be written: ") + std::strerror(errno));
    }
    planned->task.written[kPictureOutput] = planned->piped.path;
    return std::nullopt;
}

size_t FirstFile(const FileRequest &request) {
    return request.toStandardOutput ? kPictureOutput + 1 : kPictureOutput;
}

// The folder will be made.
bool LacksFolder(const FileRequest &request, const std::string &output) {
    std::error_code error;
    return request.makesFolders && !fs::exists(FolderOfFile(output), error);
}

MaybeFailure MakeFolderOf(const std::string &file) {
    std::error_code error;
    fs::create_directories(FolderOfFile(file), error);
    return error ? MaybeFailure(FileFailure(file, "its folder cannot be made: " + error.message()))
                 : std::nullopt;
}

}  // namespace

MaybeFailure CheckFile(const FileRequest &request, const FilterSettings &settings, const PluginInfo &plugin,
                       PlannedFile *planned, Picture *picture) {
    planned->task = {request.inputFile, request.outputs, {}, settings};
    if (request.keepsName) {
        planned->task.settings.save.format = FormatOfContent(request.inputFile);
    }
    if (MaybeFailure failure = CheckInput(planned->task, plugin, picture)) {
        return failure;
    }
    if (MaybeFailure failure = CheckPlaces(request)) {
        return failure;
    }
    for (size_t i = FirstFile(request); i < kOutputCount; ++i) {
        const std::string &output = request.outputs[i];
        if (!output.empty() && !LacksFolder(request, output)) {
            const bool inPlace = request.inPlace && i == kPictureOutput;
            if (MaybeFailure failure =
                    PlanOutput({request.inputFile, output, request.force, inPlace}, &planned->outputs[i])) {
                return failure;
            }
        }
    }
    return std::nullopt;
}

MaybeFailure PlanFile(const FileRequest &request, const FilterSettings &settings, const PluginInfo &plugin,
                      PlannedFile *planned, Picture *picture) {
    if (MaybeFailure failure = CheckFile(request, settings, plugin, planned, picture)) {
        return failure;
    }
    if (LacksFolder(request, request.outputs[kPictureOutput])) {
        if (MaybeFailure failure = MakeFolderOf(request.outputs[kPictureOutput])) {
            return failure;
        }
        return PlanFile(request, settings, plugin, planned, picture);
    }
    for (size_t i = FirstFile(request); i < kOutputCount; ++i) {
        if (!request.outputs[i].empty()) {
            if (MaybeFailure failure = CreateTemporary(&planned->outputs[i])) {
                return failure;
            }
            planned->task.written[i] = planned->outputs[i].temporary;
        }
    }
    return request.toStandardOutput ? PlanPipe(planned) : std::nullopt;
}

MaybeFailure DoFileTask(const FileTask &task, const FilterPlace &place, const Watcher &watcher,
                        const std::function<void(const Failure &)> &leave, FileReport *report) {
    PageStack stack;
    if (OpenStack(task.inputFile, task.inputFile, &stack)) {
        return DoStack(task, place, watcher, leave, stack, report);
    }
    Picture picture;
    if (MaybeFailure failure = OpenPicture(task.inputFile, &picture)) {
        return failure;
    }
    return DoPicture(task, place, watcher, leave, &picture, report);
}

MaybeFailure PublishFile(PlannedFile *planned) {
    for (OutputFile &output : planned->outputs) {
        if (!output.temporary.empty()) {
            if (MaybeFailure failure = Publish(&output)) {
                return failure;
            }
        }
    }
    if (planned->piped.descriptor >= 0 && !CopyBytes(planned->piped.descriptor, STDOUT_FILENO)) {
        return FileFailure(planned->task.outputs[kPictureOutput],
                           std::string("cannot be written: ") + std::strerror(errno));
    }
    return std::nullopt;
}
