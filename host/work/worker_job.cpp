#include "host/work/worker_job.h"

#include <algorithm>

#include "platform/packing.h"

namespace {

constexpr char kBandMark = 'b';
constexpr char kFileMark = 'f';

bool TakeActionText(std::string_view *packed, Action *action) {
    std::string bytes;
    return TakeText(packed, &bytes) && UnpackAction(bytes, action);
}

std::string JobHead(const std::string &pluginFolder, char mark) {
    std::string packed;
    AppendText(&packed, pluginFolder);
    AppendRecord(&packed, mark);
    return packed;
}

bool TakeNames(std::string_view *packed, OutputNames *names) {
    return std::all_of(names->begin(), names->end(),
                       [=](std::string &name) { return TakeText(packed, &name); });
}

void AppendNames(std::string *packed, const OutputNames &names) {
    for (const std::string &name : names) {
        AppendText(packed, name);
    }
}

bool TakeTask(std::string_view *packed, FileTask *task) {
    Selection *selection = &task->settings.selection;
    return TakeText(packed, &task->inputFile) && TakeNames(packed, &task->outputs) &&
           TakeNames(packed, &task->written) && TakeOrders(packed, &task->settings.orders) &&
           TakeText(packed, &selection->maskFile) && TakeRecord(packed, &selection->rect) &&
           TakeRecord(packed, &task->settings.save) && TakeRecord(packed, &task->settings.range) &&
           TakeRecord(packed, &task->settings.maxMegapixels) && TakeRecord(packed, &task->settings.pages) &&
           TakeRecord(packed, &task->settings.passes) && TakeRecord(packed, &task->settings.amount) &&
           TakeRecord(packed, &task->settings.lastRadius);
}

bool TakeBand(std::string_view *packed, BandJob *job) {
    return TakeRecord(packed, &job->picture) && TakeRecord(packed, &job->place) &&
           TakeOrders(packed, &job->orders);
}

void AppendReport(std::string *packed, const FileReport &report) {
    AppendText(packed, report.kind);
    AppendRecord(packed, report.pages);
    AppendRecord(packed, report.alike);
    AppendRecord(packed, report.radius);
    AppendText(packed, report.mode);
    AppendRecord(packed, report.width);
    AppendRecord(packed, report.height);
    AppendRecord(packed, report.depth);
    AppendText(packed, report.further);
    AppendText(packed, report.format);
    AppendRecord(packed, report.lost.size());
    for (const std::string &kind : report.lost) {
        AppendText(packed, kind);
    }
}

bool TakeReport(std::string_view *packed, FileReport *report) {
    size_t lost = 0;
    bool sound = TakeText(packed, &report->kind) && TakeRecord(packed, &report->pages) &&
                 TakeRecord(packed, &report->alike) && TakeRecord(packed, &report->radius) &&
                 TakeText(packed, &report->mode) && TakeRecord(packed, &report->width) &&
                 TakeRecord(packed, &report->height) && TakeRecord(packed, &report->depth) &&
                 TakeText(packed, &report->further) && TakeText(packed, &report->format) &&
                 TakeRecord(packed, &lost);
    for (size_t i = 0; sound && i < lost; ++i) {
        sound = TakeText(packed, &report->lost.emplace_back());
    }
    return sound;
}

}  // namespace

std::string PackBandJob(const std::string &pluginFolder, const DocumentShape &picture, const BandPlace &place,
                        const FilterOrders &orders) {
    std::string packed = JobHead(pluginFolder, kBandMark);
    AppendRecord(&packed, picture);
    AppendRecord(&packed, place);
    AppendOrders(&packed, orders);
    return packed;
}

std::string PackFileJob(const std::string &pluginFolder, const FileTask &task) {
    std::string packed = JobHead(pluginFolder, kFileMark);
    AppendText(&packed, task.inputFile);
    AppendNames(&packed, task.outputs);
    AppendNames(&packed, task.written);
    const Selection &selection = task.settings.selection;
    AppendOrders(&packed, task.settings.orders);
    AppendText(&packed, selection.maskFile);
    AppendRecord(&packed, selection.rect);
    AppendRecord(&packed, task.settings.save);
    AppendRecord(&packed, task.settings.range);
    AppendRecord(&packed, task.settings.maxMegapixels);
    AppendRecord(&packed, task.settings.pages);
    AppendRecord(&packed, task.settings.passes);
    AppendRecord(&packed, task.settings.amount);
    AppendRecord(&packed, task.settings.lastRadius);
    return packed;
}

bool UnpackJob(std::string_view packed, WorkerJob *job) {
    char mark = 0;
    if (!TakeText(&packed, &job->pluginFolder) || !TakeRecord(&packed, &mark)) {
        return false;
    }
    return mark == kBandMark ? TakeBand(&packed, &job->band.emplace()) : TakeTask(&packed, &job->file);
}

std::string PackOutcome(const FilterOutcome &outcome) {
    std::string packed;
    AppendRecord(&packed, outcome.result);
    AppendText(&packed, outcome.message);
    AppendText(&packed, PackAction(outcome.recorded));
    return packed;
}

bool UnpackOutcome(std::string_view packed, FilterOutcome *outcome) {
    return TakeRecord(&packed, &outcome->result) && TakeText(&packed, &outcome->message) &&
           TakeActionText(&packed, &outcome->recorded);
}

std::string PackAnswer(const FileAnswer &answer) {
    std::string packed;
    AppendRecord(&packed, answer.failure ? answer.failure->status : kExitDone);
    AppendText(&packed, answer.failure ? answer.failure->sentence : "");
    AppendReport(&packed, answer.report);
    return packed;
}

bool UnpackAnswer(std::string_view packed, FileAnswer *answer) {
    Failure failure = {};
    if (!TakeRecord(&packed, &failure.status) || !TakeText(&packed, &failure.sentence) ||
        !TakeReport(&packed, &answer->report)) {
        return false;
    }
    answer->failure = failure.status == kExitDone ? std::nullopt : MaybeFailure(failure);
    return true;
}
