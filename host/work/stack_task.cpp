#include "host/work/stack_task.h"

#include <algorithm>

namespace {

struct StackRun {
    const FileTask *task;
    const FilterPlace *place;
    const Watcher *watcher;
    const std::function<void(const Failure &)> *leave;
    const PageStack *stack;
    ScratchFile input, output;  // the page in work, before and after
    StackWriter writer = {};
    size_t filtered = 0;
    FileReport report = {};
    FilterOrders orders = {};  // a dialog asks once
};

// Pages count from 0 from here on.
struct Pages {
    size_t first, end;
};

Pages PagesToFilter(const FileTask &task, const PageStack &stack) {
    const std::optional<PageRange> &range = task.settings.pages;
    return range ? Pages{static_cast<size_t>(range->first) - 1, static_cast<size_t>(range->last)}
                 : Pages{0, stack.pages.size()};
}

bool TakesPages(const FileTask &task) {
    return IsTiff(task.outputs[kPictureOutput], task.settings.save.format);
}

FileTask TaskOnPage(const FileTask &task, const std::string &input, const std::string &output) {
    FileTask page = task;
    page.inputFile = input;
    page.written[kPictureOutput] = output;
    return page;
}

void Add(const FileReport &page, FileReport *all, size_t index) {
    if (index == 0) {
        *all = page;
        return;
    }
    all->alike = all->alike && all->kind == page.kind;
    for (const std::string &kind : page.lost) {
        if (std::find(all->lost.begin(), all->lost.end(), kind) == all->lost.end()) {
            all->lost.push_back(kind);
        }
    }
}

// Into a file that lies at `output`. Without `filters`, the page is only stored in another way.
MaybeFailure WritePage(StackRun *run, size_t page, bool filters, const std::string &output) {
    if (MaybeFailure failure = TakePage(*run->stack, page, run->input.path)) {
        return failure;
    }
    FileTask task = TaskOnPage(*run->task, run->input.path, output);
    task.settings.orders = run->orders;
    if (!filters) {
        task.settings.selection = {VRect{}, {}};
        task.settings.save.storage = {};
        task.outputs[kComparisonOutput].clear();
        task.outputs[kActionOutput].clear();
    }
    const auto count = static_cast<double>(run->stack->pages.size());
    const Watcher watcher = {
        [=](double done) { run->watcher->progress((static_cast<double>(page) + done) / count); },
        run->watcher->cancelled};
    const auto work = [&]() -> MaybeFailure {
        Picture picture;
        if (MaybeFailure failure = OpenPicture(task.inputFile, &picture)) {
            return failure;
        }
        if (MaybeFailure failure = CheckPicture(task, run->place->plugin->info, picture)) {
            return failure;
        }
        FileReport report;
        if (MaybeFailure failure = DoPicture(task, *run->place, watcher, *run->leave, &picture, &report)) {
            return failure;
        }
        if (!filters) {
            return std::nullopt;
        }
        Add(report, &run->report, run->filtered++);
        RepeatAnswer(report.radius, &run->orders);
        return std::nullopt;
    };
    const MaybeFailure failure = work();
    return failure ? MaybeFailure(Renamed(*failure, task.inputFile, NameOfPage(run->stack->name, page)))
                   : std::nullopt;
}

MaybeFailure AddPage(StackRun *run, size_t page, bool filters) {
    if (!filters && CanCopyPage(*run->stack, page, run->writer)) {
        return CopyPage(*run->stack, page, &run->writer);
    }
    if (MaybeFailure failure = WritePage(run, page, filters, run->output.path)) {
        return failure;
    }
    return PutPage(*run->stack, page, run->output.path, &run->writer);
}

MaybeFailure AddPages(StackRun *run) {
    const Pages wanted = PagesToFilter(*run->task, *run->stack);
    const std::string &written = run->task->written[kPictureOutput];
    if (!TakesPages(*run->task)) {
        return WritePage(run, wanted.first, true, written);
    }
    if (MaybeFailure failure =
            StartStack(*run->stack, written, run->task->outputs[kPictureOutput], &run->writer)) {
        return failure;
    }
    for (size_t page = 0; page < run->stack->pages.size(); ++page) {
        if (run->watcher->cancelled()) {
            return Interruption(run->stack->name);
        }
        if (MaybeFailure failure = AddPage(run, page, wanted.first <= page && page < wanted.end)) {
            return failure;
        }
        run->watcher->progress(static_cast<double>(page + 1) / static_cast<double>(run->stack->pages.size()));
    }
    return std::nullopt;
}

}  // namespace

MaybeFailure CheckStack(const FileTask &task, const PluginInfo &plugin, const PageStack &stack,
                        ScratchFile *file, Picture *picture) {
    const PictureFormat *format = nullptr;
    if (MaybeFailure failure = FindFormat(task.outputs[kPictureOutput], task.settings.save.format, &format)) {
        return failure;
    }
    const Pages wanted = PagesToFilter(task, stack);
    const std::string count = std::to_string(stack.pages.size());
    if (wanted.end > stack.pages.size()) {
        return Failure{kExitUsage, stack.name + ": it has only " + count + " pages."};
    }
    const bool one = wanted.end - wanted.first == 1;
    if (!one && !TakesPages(task)) {
        return FileFailure(stack.name,
                           "it has " + count + " pages, which only a .tif holds; choose one with --page");
    }
    if (!one && !task.outputs[kComparisonOutput].empty()) {
        return FileFailure(stack.name,
                           "it has " + count + " pages; choose one with --page for the comparison");
    }
    if (MaybeFailure failure = OpenScratch(task.outputs[kPictureOutput], stack.name, file)) {
        return failure;
    }
    if (MaybeFailure failure = TakePage(stack, wanted.first, file->path)) {
        return failure;
    }
    MaybeFailure failure = OpenPicture(file->path, picture);
    if (!failure) {
        failure = CheckPicture(TaskOnPage(task, file->path, {}), plugin, *picture);
    }
    return failure ? MaybeFailure(Renamed(*failure, file->path, NameOfPage(stack.name, wanted.first)))
                   : std::nullopt;
}

MaybeFailure DoStack(const FileTask &task, const FilterPlace &place, const Watcher &watcher,
                     const std::function<void(const Failure &)> &leave, const PageStack &stack,
                     FileReport *report) {
    StackRun run = {&task, &place, &watcher, &leave, &stack, {}, {}};
    run.orders = task.settings.orders;
    for (ScratchFile *file : {&run.input, &run.output}) {
        if (MaybeFailure failure = OpenScratch(task.written[kPictureOutput], stack.name, file)) {
            return failure;
        }
    }
    if (MaybeFailure failure = AddPages(&run)) {
        return failure;
    }
    *report = run.report;
    report->pages = run.filtered;
    return std::nullopt;
}
