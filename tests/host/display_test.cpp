// The filter's dialog on an invisible display of its own.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <functional>
#include <thread>

#include "tests/host/program_fixture.h"

namespace {

constexpr std::chrono::seconds kPatience(30);

class Display : public Program {
  protected:
    ~Display() override { StopServer(); }

    // False when no display server can be started.
    bool StartServer() {
        int ends[2];
        EXPECT_EQ(pipe2(ends, O_CLOEXEC), 0);
        server = fork();
        if (server == 0) {
            const int nowhere = open("/dev/null", O_RDWR);
            dup2(nowhere, STDERR_FILENO);
            dup2(ends[1], STDOUT_FILENO);
            execlp("Xvfb", "Xvfb", "-displayfd", "1", "-screen", "0", "640x480x24", "-fbdir", output.c_str(),
                   nullptr);
            _exit(127);
        }
        close(ends[1]);
        display = ":";
        char digit = 0;
        // Read the whole line: closing the pipe early kills the server.
        while (digit != '\n' && read(ends[0], &digit, 1) == 1) {
            display += digit == '\n' ? "" : std::string(1, digit);
        }
        close(ends[0]);
        return digit == '\n';
    }

    void StopServer() {
        if (server > 0) {
            kill(server, SIGTERM);
            waitpid(server, nullptr, 0);
            server = -1;
        }
    }

    static bool ComesTrue(const std::function<bool()> &condition) {
        const auto start = std::chrono::steady_clock::now();
        while (!condition() && std::chrono::steady_clock::now() < start + kPatience) {
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return condition();
    }

    // The screen is black until a window covers most of it.
    bool ShowsWindow() const {
        const std::string screen = ContentsOf(output / "Xvfb_screen0");
        return std::count(screen.begin(), screen.end(), '\0') < static_cast<int64_t>(screen.size()) / 2;
    }

    static bool HasEnded(pid_t program) {
        siginfo_t info = {};
        waitid(P_PID, static_cast<id_t>(program), &info, WEXITED | WNOHANG | WNOWAIT);
        return info.si_pid == program;
    }

    pid_t server = -1;
};

TEST_F(Display, DialogsEndWithItAndByInterrupts) {
    // A process that its display takes along ends with threads at work, which no search for leaks can stand.
    setenv("ASAN_OPTIONS", "detect_leaks=0", 1);
    WriteNoise("in.png", 400, 300, 3);
    const std::set<std::string> before = Names();
    const struct {
        bool serverEnds;  // otherwise the program is interrupted
        int status;
        const char *sentence;
    } cases[] = {
        {false, 130, "hymedian: in.png: interrupted, nothing was written.\n"},
        {true, 1,
         "hymedian: in.png: the dialog's process ended with status 1, perhaps because the display went away, "
         "nothing was written.\n"},
    };
    for (const auto &c : cases) {
        if (!StartServer()) {
            GTEST_SKIP() << "Xvfb is not installed";
        }
        const pid_t program = Start({"in.png", "-o", "new.png", "--dialog"});
        EXPECT_TRUE(ComesTrue([&] { return ShowsWindow(); }));
        c.serverEnds ? StopServer() : static_cast<void>(kill(program, SIGINT));
        if (!ComesTrue([=] { return HasEnded(program); })) {
            ADD_FAILURE() << "the program does not end";
            kill(-program, SIGKILL);
        }
        const Ended ended = Wait(program);
        EXPECT_EQ(ended.status, c.status);
        EXPECT_EQ(ended.err, c.sentence);
        EXPECT_EQ(Names(), before);
        EXPECT_EQ(kill(-program, 0), -1) << "a process of the program's is left";
        StopServer();
    }
}

}  // namespace
