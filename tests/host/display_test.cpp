// The filter's dialog on an invisible display of its own.
#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
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

// The processes that `program` has started, and those that these have, by name.
std::vector<pid_t> Descendants(pid_t program, const std::string &name) {
    std::vector<pid_t> found;
    const std::string number = std::to_string(program);
    std::ifstream children("/proc/" + number + "/task/" + number + "/children");
    for (pid_t child = 0; children >> child;) {
        std::string itsName;
        std::ifstream("/proc/" + std::to_string(child) + "/comm") >> itsName;
        if (itsName == name) {
            found.push_back(child);
        }
        const std::vector<pid_t> below = Descendants(child, name);
        found.insert(found.end(), below.begin(), below.end());
    }
    return found;
}

enum class Ends { byInterrupt, withItsDisplay, withItsWindow };

TEST_F(Display, DialogsEndWithItAndByInterrupts) {
    WriteNoise("in.png", 400, 300, 3);
    const std::set<std::string> before = Names();
    for (const Ends how : {Ends::byInterrupt, Ends::withItsDisplay, Ends::withItsWindow}) {
        SCOPED_TRACE(static_cast<int>(how));
        if (!StartServer()) {
            GTEST_SKIP() << "Xvfb is not installed";
        }
        const pid_t program = Start({"in.png", "-o", "new.png", "--dialog"});
        EXPECT_TRUE(ComesTrue([&] { return ShowsWindow(); }));
        const std::vector<pid_t> windows = Descendants(program, "hymedian-dialog");
        ASSERT_EQ(windows.size(), 1u);
        if (how == Ends::byInterrupt) {
            kill(program, SIGINT);
        } else if (how == Ends::withItsDisplay) {
            StopServer();
        } else {
            kill(windows[0], SIGKILL);
        }
        if (!ComesTrue([=] { return HasEnded(program); })) {
            ADD_FAILURE() << "the program does not end";
            kill(-program, SIGKILL);
        }
        const Ended ended = Wait(program);
        EXPECT_EQ(ended.status, 130);
        EXPECT_EQ(ended.err, "hymedian: in.png: interrupted, nothing was written.\n");
        EXPECT_EQ(Names(), before);
        EXPECT_EQ(kill(-program, 0), -1) << "a process of the program's is left";
        EXPECT_TRUE(ComesTrue([&] {
            return ContentsOf("/proc/" + std::to_string(windows[0]) + "/maps").empty();
        })) << "a window is left";
        StopServer();
    }
}

}  // namespace
