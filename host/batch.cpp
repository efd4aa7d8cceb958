#include "host/batch.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <nlohmann/json.hpp>
#include <numeric>

#include "host/interrupt.h"
#include "host/picture/metadata.h"
#include "host/progress_bar.h"
#include "host/work/worker_job.h"
#include "host/work/worker_pool.h"

namespace {

using Clock = std::chrono::steady_clock;

// A picture that a worker is working on.
struct Assigned {
    size_t request;
    PlannedFile planned;
    Clock::time_point start;
};

struct Batch {
    const Options *options;
    FilterSettings settings;  // with the answer to a dialog, once it has been given for all pictures
    const std::vector<FileRequest> *requests;
    Plugin *plugin;
    ProgressBar bar;
    std::vector<double> progress;  // indexed by request
    size_t doneCount = 0;
    size_t failedCount = 0;  // not counting interrupted ones
    int status = kExitDone;  // of the latest failure

    size_t next = 0;                                            // the next request for a worker
    size_t jobCount = 0;                                        // handed out to these workers so far
    std::vector<size_t> large = {};                             // requests left for later
    std::map<size_t, std::unique_ptr<Assigned>> assigned = {};  // by job number
};

bool AsksPerson(const Batch &batch) {
    return batch.settings.orders.user == DialogUser::person;
}

// A person is asked about one picture at a time.
int32_t JobsFor(const Batch &batch) {
    return AsksPerson(batch) ? 1 : batch.options->jobs;
}

void Advance(Batch *batch, size_t request, double done) {
    batch->progress[request] = done;
    const double sum = std::accumulate(batch->progress.begin(), batch->progress.end(), 0.0);
    AdvanceBar(&batch->bar, sum / static_cast<double>(batch->progress.size()));
}

// A picture that goes to standard output has it for itself.
FILE *SummaryStream(const Options &options) {
    return options.output == kPipe ? stderr : stdout;
}

// For other programs, one line a picture.
void PrintObject(const FileRequest &request, const MaybeFailure &failure, const FileReport &report,
                 double seconds) {
    nlohmann::ordered_json object = {{"input", request.inputName},
                                     {"output", request.outputs[kPictureOutput]}};
    if (failure) {
        object["error"] = Renamed(*failure, request.inputFile, request.inputName).sentence;
    } else {
        object.update({{"mode", report.mode},
                       {"width", report.width},
                       {"height", report.height},
                       {"depth", report.depth},
                       {"pages", report.pages},
                       {"radius", report.radius},
                       {"seconds", seconds},
                       {"lost", report.lost}});
    }
    // Names may be of any bytes.
    const auto replace = nlohmann::ordered_json::error_handler_t::replace;
    std::printf("%s\n", object.dump(-1, ' ', false, replace).c_str());
    std::fflush(stdout);
}

// A picture is finished, for better or worse.
void Settle(Batch *batch, size_t index, const MaybeFailure &failure, const FileReport &report,
            Clock::time_point start) {
    const FileRequest &request = (*batch->requests)[index];
    const std::chrono::duration<double> elapsed = Clock::now() - start;
    ClearBar(&batch->bar);
    if (batch->options->json) {
        PrintObject(request, failure, report, elapsed.count());
    }
    if (failure) {
        batch->failedCount += failure->status == kExitInterrupted ? 0U : 1U;
        batch->status = failure->status;
        Tell(Renamed(*failure, request.inputFile, request.inputName));
    } else {
        ++batch->doneCount;
        if (!batch->options->quiet && !batch->options->json) {
            std::fprintf(SummaryStream(*batch->options), "%s -> %s: %s, %.1f s%s\n",
                         request.inputName.c_str(), request.outputs[kPictureOutput].c_str(),
                         WordsOn(report).c_str(), elapsed.count(),
                         WordsOnLoss(report.format, report.lost).c_str());
            std::fflush(SummaryStream(*batch->options));
        }
    }
    Advance(batch, index, 1);
}

// Tells how all of it went; returns the exit status.
int Conclude(Batch *batch) {
    const size_t count = batch->requests->size();
    ClearBar(&batch->bar);
    if (count > 1 && !batch->options->quiet && !batch->options->json) {
        const size_t undone = count - batch->doneCount - batch->failedCount;
        std::fprintf(SummaryStream(*batch->options), "%zu pictures: %zu done, %zu failed%s\n", count,
                     batch->doneCount, batch->failedCount,
                     undone > 0 ? (", " + std::to_string(undone) + " left undone").c_str() : "");
    }
    if (Interrupted()) {
        return kExitInterrupted;
    }
    return count > 1 && batch->failedCount > 0 ? kExitFailed : batch->status;
}

// Ends the process at once, with nothing of the picture left behind.
[[noreturn]] void Leave(Batch *batch, size_t index, PlannedFile *planned, const Failure &failure) {
    for (OutputFile &output : planned->outputs) {
        RemoveTemporary(&output);
    }
    Settle(batch, index, failure, {}, Clock::now());
    const int status = Conclude(batch);
    std::fflush(stdout);
    std::_Exit(status);
}

MaybeFailure DoHere(Batch *batch, size_t index, FileReport *report) {
    const Watcher watcher = {[=](double done) { Advance(batch, index, done); }, Interrupted};
    PlannedFile planned;
    if (Picture picture; MaybeFailure failure = PlanFile((*batch->requests)[index], batch->settings,
                                                         batch->plugin->info, &planned, &picture)) {
        return failure;
    }
    const FilterPlace place = {batch->plugin, batch->options->pluginFolder, JobsFor(*batch)};
    const auto leave = [&](const Failure &failure) { Leave(batch, index, &planned, failure); };
    if (MaybeFailure failure = DoFileTask(planned.task, place, watcher, leave, report)) {
        return failure;
    }
    return PublishFile(&planned);
}

void RunHere(Batch *batch, size_t index) {
    const Clock::time_point start = Clock::now();
    FileReport report;
    const MaybeFailure failure = DoHere(batch, index, &report);
    Settle(batch, index, failure, report, start);
}

// Plans requests until one suits a worker.
NextJob NextFile(Batch *batch, std::string *job) {
    while (batch->next < batch->requests->size()) {
        auto assigned = std::make_unique<Assigned>();
        assigned->request = batch->next++;
        assigned->start = Clock::now();
        Picture picture;
        const MaybeFailure failure = PlanFile((*batch->requests)[assigned->request], batch->settings,
                                              batch->plugin->info, &assigned->planned, &picture);
        if (failure) {
            Settle(batch, assigned->request, failure, {}, assigned->start);
        } else if (IsWorthWorkers(picture.document, JobsFor(*batch))) {
            batch->large.push_back(assigned->request);
        } else {
            *job = PackFileJob(batch->options->pluginFolder, assigned->planned.task);
            batch->assigned.emplace(batch->jobCount++, std::move(assigned));
            return NextJob::made;
        }
    }
    return NextJob::none;
}

// The caller now owns the picture's planned outputs; dropping them removes temporary files.
std::unique_ptr<Assigned> TakeBack(Batch *batch, size_t job) {
    std::unique_ptr<Assigned> assigned;
    assigned.swap(batch->assigned.at(job));
    batch->assigned.erase(job);
    return assigned;
}

bool TakeAnswer(Batch *batch, size_t job, const std::string &packed) {
    const std::unique_ptr<Assigned> assigned = TakeBack(batch, job);
    FileAnswer answer;
    if (!UnpackAnswer(packed, &answer)) {
        answer.failure = FileFailure(assigned->planned.task.inputFile, kDamagedAnswer);
    }
    if (!answer.failure) {
        answer.failure = PublishFile(&assigned->planned);
    }
    Settle(batch, assigned->request, answer.failure, answer.report, assigned->start);
    if (batch->options->dialogForEach) {
        return true;
    }
    if (!answer.failure && answer.report.radius > 0) {
        RepeatAnswer(answer.report.radius, &batch->settings.orders);
    }
    // Who cancels a dialog that is for all pictures cancels them all.
    return !AsksPerson(*batch) || !answer.failure || answer.failure->status != kExitInterrupted;
}

bool TakeDeath(Batch *batch, size_t job, const std::string &how) {
    const std::unique_ptr<Assigned> assigned = TakeBack(batch, job);
    const FileTask &task = assigned->planned.task;
    const Failure failure =
        FileFailure(task.inputFile, "its worker process " + how + ", nothing was written");
    Settle(batch, assigned->request, failure, {}, assigned->start);
    return true;
}

// Small pictures go to workers whole. So do pictures with a dialog, since an interrupt has to end it at once.
// Pictures worth several workers are left for later. Ends early when a dialog has been answered for all of
// them.
PoolEnd RunInWorkers(Batch *batch) {
    batch->jobCount = 0;
    WorkerCalls calls;
    calls.next = [=, asked = AsksPerson(*batch)](std::string *job) {
        return asked == AsksPerson(*batch) ? NextFile(batch, job) : NextJob::none;
    };
    calls.progress = [=](size_t job, double done) { Advance(batch, batch->assigned.at(job)->request, done); };
    calls.answered = [=](size_t job, const std::string &answer) { return TakeAnswer(batch, job, answer); };
    calls.died = [=](size_t job, const std::string &how) { return TakeDeath(batch, job, how); };
    calls.cancelled = Interrupted;
    const auto workers = std::min(static_cast<size_t>(JobsFor(*batch)), batch->requests->size());
    const PoolEnd end = RunWorkers(static_cast<int32_t>(workers), {}, calls);
    // Whatever is still assigned was interrupted.
    for (const auto &[job, assigned] : batch->assigned) {
        Settle(batch, assigned->request, Interruption(assigned->planned.task.inputFile), {}, assigned->start);
    }
    batch->assigned.clear();
    for (; end == PoolEnd::notStarted && batch->next < batch->requests->size(); ++batch->next) {
        Settle(batch, batch->next, FileFailure((*batch->requests)[batch->next].inputFile, kNoWorkers), {},
               Clock::now());
    }
    return end;
}

// Asks a person about the first picture, or about each; false if the rest is to be left undone.
bool RunWithDialog(Batch *batch) {
    if (batch->requests->size() > 1 && !batch->options->dialogForEach && !batch->options->quiet &&
        !batch->options->json) {
        std::fprintf(SummaryStream(*batch->options), "%zu pictures: the answer in the dialog is for all\n",
                     batch->requests->size());
        std::fflush(SummaryStream(*batch->options));
    }
    return RunInWorkers(batch) == PoolEnd::done;
}

void RunWithoutDialog(Batch *batch) {
    const size_t left = batch->requests->size() - batch->next;
    if (left > 1 && batch->options->jobs > 1) {
        RunInWorkers(batch);
    } else {
        batch->large.resize(left);
        std::iota(batch->large.begin(), batch->large.end(), batch->next);
    }
    // An interrupt is told of with one picture at least.
    for (size_t i = 0; i < batch->large.size() && batch->status != kExitInterrupted; ++i) {
        RunHere(batch, batch->large[i]);
    }
}

}  // namespace

int RehearseBatch(const Options &options, const FilterSettings &settings,
                  const std::vector<FileRequest> &requests, const Plugin &plugin) {
    int status = kExitDone;
    for (const FileRequest &request : requests) {
        PlannedFile planned;
        Picture picture;
        if (const MaybeFailure failure = CheckFile(request, settings, plugin.info, &planned, &picture)) {
            status = Tell(Renamed(*failure, request.inputFile, request.inputName));
        } else if (!options.quiet) {
            std::fprintf(SummaryStream(options), "%s -> %s: would be filtered: %s\n",
                         request.inputName.c_str(), request.outputs[kPictureOutput].c_str(),
                         DescribePicture(picture).c_str());
        }
    }
    return requests.size() > 1 && status != kExitDone ? kExitFailed : status;
}

int RunBatch(const Options &options, const FilterSettings &settings, const std::vector<FileRequest> &requests,
             Plugin *plugin) {
    Batch batch = {&options,
                   settings,
                   &requests,
                   plugin,
                   MakeProgressBar(!options.quiet),
                   std::vector<double>(requests.size())};
    if (!AsksPerson(batch) || RunWithDialog(&batch)) {
        RunWithoutDialog(&batch);
    }
    return Conclude(&batch);
}
