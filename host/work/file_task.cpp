#include "host/work/file_task.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <filesystem>
#include <iterator>

#include "host/filter/action_file.h"
#include "host/filter/plugin.h"
#include "host/picture/comparison.h"
#include "host/picture/metadata.h"
#include "host/picture/picture_format.h"
#include "host/picture/picture_writer.h"
#include "host/picture/sample_range.h"

namespace fs = std::filesystem;

namespace {

constexpr int64_t kMegapixel = 1'000'000;

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
    if (picture.storage.palette) {
        words += ", true colour instead of a palette";
    }
    if (const ActionItem *item = FindItem(recorded, kRadiusKey)) {
        char text[32];
        // A fraction has no effect, so it is not shown.
        std::snprintf(text, sizeof text, ", radius %g", std::trunc(item->number));
        words += text;
    }
    return words;
}

// Why all of a picture has to be in memory; empty for no reason.
const char *ReasonToHoldWhole(const FileRequest &request, const FilterSettings &settings,
                              const PictureFormat &format, const Picture &picture) {
    const struct {
        bool holds;
        const char *reason;
    } reasons[] = {
        {settings.orders.user == DialogUser::person, " with a dialog"},
        {!settings.selection.maskFile.empty(), " with a mask"},
        {!request.outputs[kComparisonOutput].empty(), " with a comparison"},
        {IsReadWhole(picture), " for pictures that cannot be read row by row, as this one"},
        {format.writtenWhole, " for outputs that cannot be written row by row, as this one"},
    };
    const auto *found =
        std::find_if(std::begin(reasons), std::end(reasons), [](const auto &entry) { return entry.holds; });
    return found == std::end(reasons) ? "" : found->reason;
}

MaybeFailure CheckSize(const FileRequest &request, const FilterSettings &settings,
                       const PictureFormat &format, const Picture &picture) {
    const std::string reason = ReasonToHoldWhole(request, settings, format, picture);
    const int32_t most =
        request.maxMegapixels.value_or(reason.empty() ? kMaxStreamedMegapixels : kMaxWholeMegapixels);
    const int64_t pixels = int64_t{picture.document.width} * picture.document.height;
    if (pixels <= most * kMegapixel) {
        return reason.empty() || FitsIntoMemory(PixelBytes(picture.document))
                   ? std::nullopt
                   : MaybeFailure(TooLittleMemory(request.inputFile));
    }
    return FileFailure(request.inputFile, "its " + SizeOf(picture.document) + " pixels are more than the " +
                                              std::to_string(most) +
                                              " megapixels that --max-megapixels allows" +
                                              (request.maxMegapixels ? "" : reason));
}

// A dialog shows the picture whole, and a comparison is made when all of it is done.
Store StoreFor(const FileTask &task) {
    return task.settings.orders.user == DialogUser::person || !task.outputs[kComparisonOutput].empty()
               ? Store::whole
               : Store::slots;
}

MaybeFailure WriteFurtherResults(const FileTask &task, const Picture &picture, const Action &recorded) {
    if (!task.outputs[kComparisonOutput].empty()) {
        if (MaybeFailure failure =
                WriteComparison(picture, task.written[kComparisonOutput], task.outputs[kComparisonOutput])) {
            return failure;
        }
    }
    return task.outputs[kActionOutput].empty()
               ? std::nullopt
               : WriteAction(recorded, task.written[kActionOutput], task.outputs[kActionOutput]);
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
    if (MaybeFailure failure = CheckSize(request, settings, *format, *picture)) {
        return failure;
    }
    if (MaybeFailure failure = CheckMode(plugin, picture->document, request.inputFile)) {
        return failure;
    }
    if (MaybeFailure failure = CheckFormatHolds(*format, picture->document, request.inputFile,
                                                request.outputs[kPictureOutput])) {
        return failure;
    }
    if (MaybeFailure failure =
            CheckChoice(settings.save.storage, *format, picture->storage, request.outputs[kPictureOutput])) {
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

MaybeFailure DoFileTask(const FileTask &task, const FilterPlace &place, const Watcher &watcher,
                        const std::function<void(const Failure &)> &leave, Picture *picture,
                        FileReport *report) {
    const PictureFormat *format = nullptr;
    if (MaybeFailure failure = FindFormat(task.outputs[kPictureOutput], &format)) {
        return failure;
    }
    Choose(task.settings.save.storage, &picture->storage);
    const Sharing sharing = place.jobs > 1 ? Sharing::withWorkers : Sharing::none;
    const Watcher silent = {[](double) {}, watcher.cancelled};
    if (MaybeFailure failure =
            Select(task.settings.selection, task.inputFile, sharing, silent, &picture->document)) {
        return failure;
    }
    if (MaybeFailure failure = ChooseRange(task.settings.range, task.inputFile, silent, &picture->document)) {
        return failure;
    }
    const auto write = [&](const RowSource &rows) {
        return WritePicture(*picture, *format, task.settings.save, task.written[kPictureOutput],
                            task.outputs[kPictureOutput], rows);
    };
    Action recorded;
    if (MaybeFailure failure = StreamPicture(
            {place, task.settings.orders, watcher, StoreFor(task), write, leave}, picture, &recorded)) {
        return failure;
    }
    if (MaybeFailure failure = WriteFurtherResults(task, *picture, recorded)) {
        return failure;
    }
    std::vector<std::string> lost;
    if (MaybeFailure failure = CarryMetadata({task.inputFile, task.written[kPictureOutput],
                                              task.outputs[kPictureOutput], task.settings.save.stamp},
                                             &lost)) {
        return failure;
    }
    *report = {WordsOn(*picture, recorded), WordsOnLoss(format->name, lost)};
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
