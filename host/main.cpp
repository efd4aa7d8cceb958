// hymedian: runs the filter over picture files.
#include <sys/socket.h>

#include <csignal>
#include <cstdio>
#include <cstring>
#include <vector>

#include "host/batch.h"
#include "host/batch_plan.h"
#include "host/filter/action_file.h"
#include "host/filter/last_radius.h"
#include "host/filter/plugin.h"
#include "host/interrupt.h"
#include "host/options.h"
#include "host/picture/vips_library.h"
#include "host/work/worker.h"
#include "host/work/worker_pool.h"
#include "platform/native_paths.h"

namespace {

// Never unloaded: the filter keeps a block behind the module's data word.
Plugin plugin;

MaybeFailure TakeSettings(const Options &options, FilterSettings *settings) {
    settings->selection = {options.selection, options.maskFile};
    settings->save = {options.format, options.compressionLevel, options.storage, options.stamp};
    settings->range = options.range;
    settings->maxMegapixels = options.maxMegapixels;
    settings->pages = options.pages;
    settings->passes = options.passes;
    settings->amount = options.amount;
    settings->lastRadius = LastRadius();
    if (options.dialog) {
        settings->orders.user = DialogUser::person;
    } else if (options.radius) {
        settings->orders = OrdersForRadius(*options.radius);
    }
    return options.playFile.empty() ? std::nullopt : ReadAction(options.playFile, &settings->orders.action);
}

MaybeFailure Prepare(const Options &options, FilterSettings *settings, std::vector<FileRequest> *requests) {
    if (MaybeFailure failure = PlanBatch(options, requests)) {
        return failure;
    }
    if (MaybeFailure failure = TakeSettings(options, settings)) {
        return failure;
    }
    if (MaybeFailure failure = OpenPlugin(options.pluginFolder, &plugin)) {
        return failure;
    }
    return CheckDialogUser(settings->orders, options.pluginFolder);
}

int Run(const Options &options) {
    FilterSettings settings;
    std::vector<FileRequest> requests;
    if (MaybeFailure failure = Prepare(options, &settings, &requests)) {
        return Tell(*failure);
    }
    if (options.info) {
        std::fputs(DescribePlugin(plugin.info).c_str(), stdout);
        return kExitDone;
    }
    if (options.dryRun) {
        return RehearseBatch(options, settings, requests, plugin);
    }
    WatchForInterrupts();
    MakePreferencesFolder();
    return RunBatch(options, settings, requests, &plugin);
}

// Tells a worker from a user who typed the workers' argument, and who has no line to a parent.
bool HasWorkerLine() {
    int type = 0;
    socklen_t size = sizeof type;
    return getsockopt(kWorkerLine, SOL_SOCKET, SO_TYPE, &type, &size) == 0 && type == SOCK_SEQPACKET;
}

}  // namespace

int main(int count, char **arguments) {
    // A file beyond a limit then fails to be written, like any that has no room.
    std::signal(SIGXFSZ, SIG_IGN);
    if (count == 2 && std::strcmp(arguments[1], kWorkerArgument) == 0 && HasWorkerLine()) {
        return RunWorker();
    }
    Options options;
    if (MaybeFailure failure = ParseOptions(count, arguments, &options)) {
        return Tell(*failure);
    }
    if (!options.answer.empty()) {
        std::fputs(options.answer.c_str(), stdout);
        return kExitDone;
    }
    if (!StartVips(arguments[0])) {
        return Tell({kExitFailed, "The picture library cannot be started."});
    }
    const int status = Run(options);
    vips_shutdown();
    return status;
}
