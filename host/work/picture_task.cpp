#include "host/work/picture_task.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "host/document/document_mode.h"
#include "host/filter/action_file.h"
#include "host/filter/plugin.h"
#include "host/picture/comparison.h"
#include "host/picture/metadata.h"
#include "host/picture/mixture.h"
#include "host/picture/picture_format.h"
#include "host/picture/picture_writer.h"
#include "host/picture/sample_range.h"
#include "host/work/scratch_file.h"

namespace {

constexpr int64_t kMegapixel = 1'000'000;

FileReport ReportOn(const Picture &picture, const Action &recorded, const PictureFormat &format,
                    const std::vector<std::string> &lost) {
    FileReport report = {.kind = DescribePicture(picture), .format = format.name, .lost = lost};
    const Document &document = picture.document;
    report.mode = ModeOf(document.imageMode).colors;
    report.width = document.width;
    report.height = document.height;
    report.depth = document.depth;
    if (picture.storage.palette) {
        report.kind += ", true colour instead of a palette";
    }
    if (const ActionItem *item = FindItem(recorded, kRadiusKey)) {
        report.radius = static_cast<int32_t>(item->number);  // a fraction has no effect
    }
    return report;
}

// Why all of a picture has to be in memory; empty for no reason.
const char *ReasonToHoldWhole(const FileTask &task, const PictureFormat &format, const Picture &picture) {
    const struct {
        bool holds;
        const char *reason;
    } reasons[] = {
        {task.settings.orders.user == DialogUser::person, " with a dialog"},
        {!task.settings.selection.maskFile.empty(), " with a mask"},
        {!task.outputs[kComparisonOutput].empty(), " with a comparison"},
        {IsReadWhole(picture), " for pictures that cannot be read row by row, as this one"},
        {format.writtenWhole, " for outputs that cannot be written row by row, as this one"},
    };
    const auto *found =
        std::find_if(std::begin(reasons), std::end(reasons), [](const auto &entry) { return entry.holds; });
    return found == std::end(reasons) ? "" : found->reason;
}

MaybeFailure CheckSize(const FileTask &task, const PictureFormat &format, const Picture &picture) {
    const std::string reason = ReasonToHoldWhole(task, format, picture);
    const std::optional<int32_t> &limit = task.settings.maxMegapixels;
    const int32_t most = limit.value_or(reason.empty() ? kMaxStreamedMegapixels : kMaxWholeMegapixels);
    const int64_t pixels = int64_t{picture.document.width} * picture.document.height;
    if (pixels <= most * kMegapixel) {
        return reason.empty() || FitsIntoMemory(PixelBytes(picture.document))
                   ? std::nullopt
                   : MaybeFailure(TooLittleMemory(task.inputFile));
    }
    return FileFailure(task.inputFile, "its " + SizeOf(picture.document) + " pixels are more than the " +
                                           std::to_string(most) + " megapixels that --max-megapixels allows" +
                                           (limit ? "" : reason));
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

using Write = std::function<MaybeFailure(const RowSource &rows)>;

// The passes over one picture.
struct Run {
    const FileTask *task;
    const FilterPlace *place;
    const Watcher *watcher;
    const std::function<void(const Failure &)> *leave;
    FilterOrders orders;
    int32_t pass = 0;
    std::string file = {};  // what the pass before wrote; empty in the first
    Action recorded = {};
};

MaybeFailure FilterOnce(Run *run, const Write &write, Picture *picture) {
    const FilterSettings &settings = run->task->settings;
    const std::string &file = run->file.empty() ? run->task->inputFile : run->file;
    const Sharing sharing = run->place->jobs > 1 ? Sharing::withWorkers : Sharing::none;
    const Watcher silent = {[](double) {}, run->watcher->cancelled};
    if (MaybeFailure failure =
            Select(settings.selection, run->task->inputFile, sharing, silent, &picture->document)) {
        return failure;
    }
    if (MaybeFailure failure = ChooseRange(settings.range, file, silent, &picture->document)) {
        return failure;
    }
    const Watcher watcher = {
        [=](double done) { run->watcher->progress((run->pass + done) / run->task->settings.passes); },
        run->watcher->cancelled};
    return StreamPicture({*run->place, run->orders, watcher, StoreFor(*run->task), write, *run->leave},
                         picture, &run->recorded);
}

// The picture is then what the file holds, and keeps all that it had beside its pixels.
MaybeFailure Reopen(const std::string &file, Picture *picture) {
    Picture next;
    if (MaybeFailure failure = OpenPicture(file, &next)) {
        return Renamed(*failure, file, picture->file);
    }
    picture->unread = std::move(next.unread);
    return std::nullopt;
}

// One pass of several, into an unpacked TIFF, which holds any picture.
MaybeFailure FilterToScratch(Run *run, ScratchFile *scratch, Picture *picture) {
    const FileTask &task = *run->task;
    if (scratch->descriptor < 0) {
        if (MaybeFailure failure = OpenScratch(task.written[kPictureOutput], task.inputFile, scratch)) {
            return failure;
        }
    }
    const PictureFormat *format = nullptr;
    FindFormat({}, FormatNamed("tif"), &format);
    const Storage storage = std::exchange(picture->storage, Storage());
    const auto write = [&](const RowSource &rows) {
        return WritePicture(*picture, *format, {}, scratch->path, task.outputs[kPictureOutput], rows);
    };
    MaybeFailure failure = FilterOnce(run, write, picture);
    failure = failure ? failure : Reopen(scratch->path, picture);
    picture->storage = storage;
    run->file = scratch->path;
    const ActionItem *radius = FindItem(run->recorded, kRadiusKey);
    if (!failure && radius != nullptr) {
        RepeatAnswer(static_cast<int32_t>(radius->number), &run->orders);
    }
    return failure;
}

// The output keeps its input's name, which tells another format than the picture has.
bool IsMisnamed(const FileTask &task, const PictureFormat &format) {
    const PictureFormat *named = nullptr;
    return !FindFormat(task.outputs[kPictureOutput], kFormatOfName, &named) && named != &format;
}

std::string WordsOnSettings(const FilterSettings &settings, int32_t radius) {
    const FilterOrders &orders = settings.orders;
    const bool given = orders.user != DialogUser::nobody || !orders.action.items.empty();
    return std::string(given                           ? ""
                       : settings.lastRadius == radius ? ", as last time"
                                                       : ", the default") +
           (settings.passes > 1 ? ", " + std::to_string(settings.passes) + " passes" : "") +
           (settings.amount < 100 ? ", " + std::to_string(settings.amount) + " %" : "");
}

}  // namespace

MaybeFailure CheckPicture(const FileTask &task, const PluginInfo &plugin, const Picture &picture) {
    const PictureFormat *format = nullptr;
    const std::string &output = task.outputs[kPictureOutput];
    if (MaybeFailure failure = FindFormat(output, task.settings.save.format, &format)) {
        return failure;
    }
    if (MaybeFailure failure = CheckSize(task, *format, picture)) {
        return failure;
    }
    if (MaybeFailure failure = CheckMode(plugin, picture.document, task.inputFile)) {
        return failure;
    }
    if (MaybeFailure failure = CheckFormatHolds(*format, picture.document, task.inputFile, output)) {
        return failure;
    }
    return CheckChoice(task.settings.save.storage, *format, picture.storage, output);
}

MaybeFailure DoPicture(const FileTask &task, const FilterPlace &place, const Watcher &watcher,
                       const std::function<void(const Failure &)> &leave, Picture *picture,
                       FileReport *report) {
    const PictureFormat *format = nullptr;
    const std::string &written = task.written[kPictureOutput];
    const std::string &output = task.outputs[kPictureOutput];
    if (MaybeFailure failure = FindFormat(output, task.settings.save.format, &format)) {
        return failure;
    }
    Run run = {&task, &place, &watcher, &leave, task.settings.orders};
    ScratchFile before, after;
    for (; run.pass + 1 < task.settings.passes; ++run.pass) {
        if (MaybeFailure failure = FilterToScratch(&run, run.pass % 2 == 0 ? &after : &before, picture)) {
            return failure;
        }
    }
    Choose(task.settings.save.storage, &picture->storage);
    const Write write = [&](const RowSource &rows) {
        return WritePicture(*picture, *format, task.settings.save, written, output, rows);
    };
    const Write writeMixed = [&](const RowSource &rows) {
        Mixture mixture;
        if (MaybeFailure failure = StartMixing(task.inputFile, task.settings.amount, &mixture)) {
            return failure;
        }
        MaybeFailure failure = write(MixedRows(rows, &mixture));
        return mixture.failure ? mixture.failure : failure;
    };
    if (MaybeFailure failure = FilterOnce(&run, task.settings.amount < 100 ? writeMixed : write, picture)) {
        return failure;
    }
    if (MaybeFailure failure = WriteFurtherResults(task, *picture, run.recorded)) {
        return failure;
    }
    std::vector<std::string> lost;
    if (MaybeFailure failure =
            CarryMetadata({task.inputFile, written, output, task.settings.save.stamp}, &lost)) {
        return failure;
    }
    *report = ReportOn(*picture, run.recorded, *format, lost);
    report->further =
        (IsMisnamed(task, *format) ? std::string(", ") + format->name + " in spite of its name" : "") +
        WordsOnSettings(task.settings, report->radius);
    return std::nullopt;
}

std::string WordsOn(const FileReport &report) {
    const std::string pages = report.pages == 1 ? "" : std::to_string(report.pages) + " pages of ";
    return pages + (report.alike ? report.kind : "different kinds") +
           (report.radius > 0 ? ", radius " + std::to_string(report.radius) : "") + report.further;
}
