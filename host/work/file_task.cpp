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

// Of the bar; the rest is for writing.
constexpr double kFilteredUntil = 0.95;

struct PlannedOutput {
    const std::string &file;  // empty for none
    OutputFile *output;
    std::string *written;
    bool inPlace;
};

bool IsSamePlace(const std::string &a, const std::string &b) {
    std::error_code error;
    return !a.empty() && !b.empty() && fs::weakly_canonical(a, error) == fs::weakly_canonical(b, error);
}

MaybeFailure CheckPlaces(const FileRequest &request) {
    const std::string *files[] = {&request.outputFile, &request.comparisonFile, &request.recordFile};
    for (int i = 0; i < 3; ++i) {
        const std::string &next = *files[(i + 1) % 3];
        if (IsSamePlace(*files[i], next)) {
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
        // Fractions do not reach further.
        std::snprintf(text, sizeof text, ", radius %g", std::trunc(item->number));
        words += text;
    }
    return words;
}

MaybeFailure WriteResults(const FileTask &task, const Picture &picture, const PictureFormat &format,
                          const Action &recorded, const Watcher &watcher) {
    if (!task.comparisonFile.empty()) {
        if (MaybeFailure failure = WriteComparison(picture, task.writtenComparison, task.comparisonFile)) {
            return failure;
        }
    }
    if (!task.recordFile.empty()) {
        if (MaybeFailure failure = WriteAction(recorded, task.writtenRecord, task.recordFile)) {
            return failure;
        }
    }
    return WritePicture(picture, format, task.writtenOutput, task.outputFile, watcher);
}

}  // namespace

MaybeFailure PlanFile(const FileRequest &request, const FilterSettings &settings, const PluginInfo &plugin,
                      PlannedFile *planned, Picture *picture) {
    const PictureFormat *format = nullptr;
    if (MaybeFailure failure = FindFormat(request.outputFile, &format)) {
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
    if (MaybeFailure failure =
            CheckFormatHolds(*format, picture->document, request.inputFile, request.outputFile)) {
        return failure;
    }
    if (MaybeFailure failure = CheckPlaces(request)) {
        return failure;
    }
    FileTask *task = &planned->task;
    *task = {request.inputFile, request.outputFile, request.comparisonFile, request.recordFile, {}, {}, {},
             settings};
    const PlannedOutput outputs[] = {
        {request.outputFile, &planned->output, &task->writtenOutput, request.inPlace},
        {request.comparisonFile, &planned->comparison, &task->writtenComparison, false},
        {request.recordFile, &planned->record, &task->writtenRecord, false},
    };
    for (const auto &[file, output, written, inPlace] : outputs) {
        if (!file.empty()) {
            if (MaybeFailure failure =
                    PlanOutput({request.inputFile, file, request.force, inPlace}, output)) {
                return failure;
            }
        }
    }
    for (const auto &[file, output, written, inPlace] : outputs) {
        if (!file.empty()) {
            if (MaybeFailure failure = CreateTemporary(output)) {
                return failure;
            }
            *written = output->temporary;
        }
    }
    return std::nullopt;
}

MaybeFailure DoFileTask(const FileTask &task, Picture *picture, const FilterCall &filter,
                        const Watcher &watcher, FileReport *report) {
    const PictureFormat *format = nullptr;
    if (MaybeFailure failure = FindFormat(task.outputFile, &format)) {
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
    for (OutputFile *output : {&planned->output, &planned->comparison, &planned->record}) {
        if (!output->temporary.empty()) {
            if (MaybeFailure failure = Publish(output)) {
                return failure;
            }
        }
    }
    return std::nullopt;
}
