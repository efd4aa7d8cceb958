#include "host/work/file_task.h"

#include <cmath>
#include <cstdio>
#include <filesystem>

#include "host/filter/action_file.h"
#include "host/filter/plugin.h"
#include "host/picture/comparison.h"
#include "host/picture/picture_format.h"
#include "host/picture/picture_writer.h"

namespace fs = std::filesystem;

namespace {

// The part of the progress bar that reading and filtering fill; writing fills the rest. Chosen: it is by far
// the shorter of the two.
constexpr double kFilteredUntil = 0.95;

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

std::string WordsOn(const Picture &picture, const Action &recorded) {
    std::string words = DescribePicture(picture);
    // The filter hands 32-bit pictures back unfiltered.
    if (picture.document.depth == 32) {
        words += ", passed through unfiltered";
    }
    if (const ActionItem *item = FindItem(recorded, kRadiusKey)) {
        char text[32];
        // A fraction has no effect, so it is not shown.
        std::snprintf(text, sizeof text, ", radius %g", std::trunc(item->number));
        words += text;
    }
    return words;
}

MaybeFailure WriteResults(const FileTask &task, const Picture &picture, const PictureFormat &format,
                          const Action &recorded, const Watcher &watcher) {
    if (!task.outputs[kComparisonOutput].empty()) {
        if (MaybeFailure failure =
                WriteComparison(picture, task.written[kComparisonOutput], task.outputs[kComparisonOutput])) {
            return failure;
        }
    }
    if (!task.outputs[kActionOutput].empty()) {
        if (MaybeFailure failure =
                WriteAction(recorded, task.written[kActionOutput], task.outputs[kActionOutput])) {
            return failure;
        }
    }
    return WritePicture(picture, format, task.written[kPictureOutput], task.outputs[kPictureOutput], watcher);
}

}  // namespace

MaybeFailure PlanFile(const FileRequest &request, const FilterSettings &settings, const PluginInfo &plugin,
                      PlannedFile *planned, Picture *picture) {
    const PictureFormat *format = nullptr;
    if (MaybeFailure failure = FindFormat(request.outputs[kPictureOutput], &format)) {
        return failure;
    }
    if (MaybeFailure failure = OpenPicture(request.inputFile, picture)) {
        return failure;
    }
    if (MaybeFailure failure = CheckSize(*picture, request.maxMegapixels)) {
        return failure;
    }
    if (MaybeFailure failure = CheckMode(plugin, picture->document, request.inputFile)) {
        return failure;
    }
    if (MaybeFailure failure = CheckFormatHolds(*format, picture->document, request.inputFile,
                                                request.outputs[kPictureOutput])) {
        return failure;
    }
    if (MaybeFailure failure = CheckPlaces(request)) {
        return failure;
    }
    FileTask *task = &planned->task;
    *task = {request.inputFile, request.outputs, {}, settings};
    for (size_t i = 0; i < kOutputCount; ++i) {
        const bool inPlace = request.inPlace && i == kPictureOutput;
        if (!request.outputs[i].empty()) {
            if (MaybeFailure failure = PlanOutput(
                    {request.inputFile, request.outputs[i], request.force, inPlace}, &planned->outputs[i])) {
                return failure;
            }
        }
    }
    for (size_t i = 0; i < kOutputCount; ++i) {
        if (!request.outputs[i].empty()) {
            if (MaybeFailure failure = CreateTemporary(&planned->outputs[i])) {
                return failure;
            }
            task->written[i] = planned->outputs[i].temporary;
        }
    }
    return std::nullopt;
}

MaybeFailure DoFileTask(const FileTask &task, Picture *picture, const FilterCall &filter,
                        const Watcher &watcher, FileReport *report) {
    const PictureFormat *format = nullptr;
    if (MaybeFailure failure = FindFormat(task.outputs[kPictureOutput], &format)) {
        return failure;
    }
    Document *document = &picture->document;
    const Watcher silent = {[](double) {}, watcher.cancelled};
    if (MaybeFailure failure = Select(task.settings.selection, task.inputFile, silent, document)) {
        return failure;
    }
    Action recorded;
    if (MaybeFailure failure = filter(picture, PartOf(watcher, 0, kFilteredUntil), &recorded)) {
        return failure;
    }
    BlendByMask(document);
    if (MaybeFailure failure =
            WriteResults(task, *picture, *format, recorded, PartOf(watcher, kFilteredUntil, 1))) {
        return failure;
    }
    const std::string lost = LostMetadata(*format, picture->metadata.get());
    *report = {WordsOn(*picture, recorded),
               lost.empty() ? "" : std::string(" (") + format->name + " keeps no " + lost + " data)"};
    return std::nullopt;
}

MaybeFailure PublishFile(PlannedFile *planned) {
    for (OutputFile &output : planned->outputs) {
        if (!output.temporary.empty()) {
            if (MaybeFailure failure = Publish(&output)) {
                return failure;
            }
        }
    }
    return std::nullopt;
}
