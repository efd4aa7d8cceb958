// Several pictures and processes, and what becomes of the others when one of them ends too early.
#include <sys/wait.h>

#include <algorithm>
#include <chrono>
#include <climits>
#include <csignal>
#include <fstream>
#include <functional>
#include <thread>

#include "host/work/worker_pool.h"
#include "tests/host/program_fixture.h"

namespace {

namespace fs = std::filesystem;

bool HasEnded(pid_t process) {
    siginfo_t info = {};
    return waitid(P_PID, static_cast<id_t>(process), &info, WEXITED | WNOHANG | WNOWAIT) != 0 ||
           info.si_pid == process;
}

// The temporary file shows that work has begun.
void WaitForWork(pid_t process, const std::function<bool()> &hasTemporary) {
    while (!hasTemporary() && !HasEnded(process)) {
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
}

TEST_F(Program, OneFailureDoesNotStopABatch) {
    fs::create_directory(folder / "out");
    for (const char *name : {"a.png", "b.tif", "c.webp"}) {
        WriteNoise(name, 40, 30, 3);
    }
    WriteNoise("large.tif", 900, 500, 3);
    WriteBytes("bad.png", "nonsense");
    for (const char *jobs : {"1", "3"}) {
        const Ended ended = Wait(Start(
            {"a.png", "bad.png", "large.tif", "b.tif", "c.webp", "-o", "out", "-f", "-j", jobs, "-r", "1"}));
        EXPECT_EQ(ended.status, 1);
        EXPECT_NE(ended.out.find("\n5 pictures: 4 done, 1 failed\n"), std::string::npos) << ended.out;
        EXPECT_EQ(ended.err.find("hymedian: bad.png: "), 0u) << ended.err;
        for (const char *name : {"a.png", "b.tif", "c.webp", "large.tif"}) {
            EXPECT_TRUE(fs::remove(folder / "out" / name)) << name;
        }
        EXPECT_TRUE(fs::is_empty(folder / "out"));
    }
    EXPECT_EQ(Wait(Start({"a.png", "b.tif", "--in-place", "-q", "-r", "1"})).status, 0);
}

TEST_F(Program, WithoutWorkersEveryPictureFails) {
    WriteNoise("a.png", 40, 30, 3);
    WriteNoise("b.png", 40, 30, 3);
    const std::string noise = ContentsOf(folder / "a.png");
    descriptorLimit = 60;  // too few to pass any on
    const Ended ended = Wait(Start({"a.png", "b.png", "--in-place", "-j", "2"}));
    EXPECT_EQ(ended.status, 1);
    EXPECT_EQ(ended.out, "2 pictures: 0 done, 2 failed\n");
    EXPECT_EQ(ended.err,
              "hymedian: a.png: no worker process can be started; --jobs 1 does without.\n"
              "hymedian: b.png: no worker process can be started; --jobs 1 does without.\n");
    EXPECT_EQ(ContentsOf(folder / "a.png"), noise);
}

TEST_F(Program, InterruptLeavesNothing) {
    for (const char *name : {"in.png", "next.png", "last.png"}) {
        WriteNoise(name, 2000, 2000, 3);
    }
    const std::set<std::string> before = Names();
    const struct {
        int signal;
        std::vector<std::string> arguments;
        const char *out;
    } cases[] = {
        {SIGINT, {"in.png", "-o", "out.png", "-r", "4"}, ""},
        {SIGTERM, {"in.png", "-o", "out.png", "-r", "4"}, ""},
        {SIGINT,
         {"in.png", "next.png", "last.png", "--in-place", "-r", "4"},
         "3 pictures: 0 done, 0 failed, 3 left undone\n"},
    };
    for (const auto &[signal, arguments, out] : cases) {
        const pid_t child = Start(arguments);
        WaitForWork(child, [&] { return Names() != before; });
        kill(-child, signal);
        const Ended ended = Wait(child);
        EXPECT_EQ(ended.status, 130) << ended.err;
        EXPECT_EQ(ended.out, out);
        EXPECT_EQ(ended.err, "hymedian: in.png: interrupted, nothing was written.\n");
        EXPECT_EQ(Names(), before);
        EXPECT_EQ(kill(-child, 0), -1) << "a worker is left";
    }
}

// As nohup and background jobs of shells expect.
TEST_F(Program, InterruptsThatWereIgnoredStayIgnored) {
    WriteNoise("in.png", 900, 700, 3);
    const std::set<std::string> before = Names();
    ignored = {SIGINT, SIGTERM, SIGHUP};
    const pid_t child = Start({"in.png", "-o", "out.png", "-r", "4"});
    WaitForWork(child, [&] { return Names() != before; });
    for (const int signal : ignored) {
        kill(-child, signal);
    }
    const Ended ended = Wait(child);
    EXPECT_EQ(ended.status, 0) << ended.err;
    EXPECT_EQ(ended.err, "");
}

TEST_F(Program, KilledRunsAreClearedUpAfterAndLivingOnesLeftAlone) {
    WriteNoise("in.png", 2000, 2000, 3);
    WriteNoise("small.png", 20, 20, 3);
    const std::set<std::string> before = Names();
    // Waits for a file that was not there before.
    const auto startLongRun = [&](const char *out, const std::set<std::string> &known) {
        const pid_t child = Start({"in.png", "-o", out, "-r", "4", "--jobs", "1"});
        std::set<std::string> names = known;
        while (std::includes(known.begin(), known.end(), names.begin(), names.end())) {
            names = Names();
        }
        return child;
    };
    const pid_t dying = startLongRun("never.png", before);
    kill(-dying, SIGKILL);
    Wait(dying);
    const std::set<std::string> withTemporary = Names();
    EXPECT_EQ(withTemporary.size(), before.size() + 1);
    EXPECT_EQ(PermissionsOf(folder / *withTemporary.begin()), 0600U) << "of " << *withTemporary.begin();
    const pid_t living = startLongRun("later.png", withTemporary);
    kill(-living, SIGSTOP);
    EXPECT_EQ(Wait(Start({"small.png", "-o", "small-out.png"})).status, 0);
    kill(-living, SIGCONT);
    EXPECT_EQ(Wait(living).status, 0);
    std::set<std::string> after = before;
    after.insert({"small-out.png", "later.png"});
    EXPECT_EQ(Names(), after);
}

// Sends a signal to a worker of the program's, if it has one: the process table lists children under the
// first thread. A child that runs the program's own command is none (a leak checker's, at the end, which must
// not die).
bool SignalWorkerOf(pid_t program, int signal) {
    const std::string number = std::to_string(program);
    std::ifstream children("/proc/" + number + "/task/" + number + "/children");
    for (pid_t child; children >> child;) {
        std::ifstream file("/proc/" + std::to_string(child) + "/cmdline");
        std::string command;
        std::getline(file, command);
        if (command.find(kWorkerArgument) != std::string::npos) {
            return kill(child, signal) == 0;
        }
    }
    return false;
}

TEST_F(Program, DeadWorkersAreToldAndLeaveNothing) {
    WriteNoise("large.png", 1500, 1500, 3);
    WriteNoise("small.png", 300, 250, 3);
    WriteNoise("small2.png", 300, 250, 3);
    fs::create_directory(folder / "out");
    const std::set<std::string> before = Names();
    const struct {
        std::vector<std::string> command;
        int kills;  // workers without work can die unnoticed
    } cases[] = {
        {{"large.png", "-o", "new.png", "-r", "4", "-j", "2"}, INT_MAX},
        {{"small.png", "small2.png", "-o", "out", "-r", "4", "-j", "2"}, 1},
    };
    for (const auto &[command, kills] : cases) {
        const pid_t program = Start(command);
        for (int killed = 0; killed < kills && !HasEnded(program);) {
            killed += SignalWorkerOf(program, SIGKILL) ? 1 : 0;
        }
        const Ended ended = Wait(program);
        EXPECT_EQ(ended.status, 1);
        EXPECT_NE(ended.err.find("worker process was ended by signal 9"), std::string::npos) << ended.err;
        EXPECT_EQ(Names(), before);
        // No process of the program's group is left.
        EXPECT_EQ(kill(-program, 0), -1);
    }
    EXPECT_EQ(Names("out").size(), 1u) << "the other picture was done";
}

// What goes to the whole process group is the parent's to answer, however early it comes.
TEST_F(Program, WorkersOutliveInterrupts) {
    WriteNoise("a.png", 300, 250, 3);
    WriteNoise("b.png", 300, 250, 3);
    fs::create_directory(folder / "out");
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        const pid_t program = Start({"a.png", "b.png", "-o", "out", "-f", "-r", "4", "-j", "2"});
        int sent = 0;
        while (!HasEnded(program)) {
            sent += SignalWorkerOf(program, signal) ? 1 : 0;
        }
        const Ended ended = Wait(program);
        EXPECT_EQ(ended.status, 0) << ended.err;
        EXPECT_GT(sent, 0);
    }
}

// The workers are on the first bands by the time the file turns out to be truncated.
TEST_F(Program, CutPicturesEndRunsThatHaveBegun) {
    WriteNoise("large.png", 900, 700, 3);
    WriteNoise("large.jpg", 900, 700, 3);
    for (const char *name : {"large.png", "large.jpg"}) {
        fs::resize_file(folder / name, fs::file_size(folder / name) * 2 / 3);
    }
    const std::set<std::string> before = Names();
    for (const std::string name : {"large.png", "large.jpg"}) {
        for (const char *select : {"0,0,900,700", "0,0,900,400"}) {
            const Ended ended =
                Wait(Start({name, "-o", "new.tif", "-r", "4", "-j", "3", "--select", select}));
            EXPECT_EQ(ended.status, 1);
            ExpectOneSentence(ended, name + ": cannot be read");
            EXPECT_EQ(Names(), before);
        }
    }
}

}  // namespace
