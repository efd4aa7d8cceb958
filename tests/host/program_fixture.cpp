#include "tests/host/program_fixture.h"

#include <fcntl.h>
#include <linux/capability.h>
#include <signal.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <sstream>

unsigned PermissionsOf(const std::filesystem::path &file) {
    return static_cast<unsigned>(std::filesystem::status(file).permissions());
}

void Program::SetUpTestSuite() {
    ASSERT_TRUE(StartVips("host_test"));
    HasHeif();
}

Program::Program() {
    setenv("HYMEDIAN_PREFERENCES", (output / "preferences").c_str(), 1);
    std::filesystem::create_directory(output);
}

Program::~Program() {
    std::filesystem::remove_all(output);
}

// Keeps windows off the developer's desktop.
void Program::ChooseDisplay() const {
    for (const char *variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
        unsetenv(variable);
    }
    if (!display.empty()) {
        setenv("DISPLAY", display.c_str(), 1);
    }
}

// Whatever the tests themselves were started to ignore.
void Program::ResetInterrupts() const {
    for (const int number : {SIGINT, SIGTERM, SIGHUP}) {
        signal(number, std::ranges::find(ignored, number) == ignored.end() ? SIG_DFL : SIG_IGN);
    }
}

void Program::Limit() const {
    if (fileSizeLimit != 0) {
        // Writing beyond the limit fails, as on a full disk.
        const rlimit limit = {fileSizeLimit, fileSizeLimit};
        setrlimit(RLIMIT_FSIZE, &limit);
    }
    if (!givesFilesAway) {
        prctl(PR_CAPBSET_DROP, CAP_CHOWN);
    }
    if (descriptorLimit != 0) {
        const rlimit limit = {descriptorLimit, descriptorLimit};
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}

void Program::PlaceDescriptors() {
    const auto redirect = [&](int descriptor, const char *name) {
        dup2(open((output / name).c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), descriptor);
    };
    redirect(STDOUT_FILENO, "out");
    redirect(STDERR_FILENO, "err");
    // First moves them out of the way, since one may occupy a number that another needs.
    for (int &descriptor : descriptors) {
        descriptor = fcntl(descriptor, F_DUPFD_CLOEXEC, 64);
    }
    for (size_t i = 0; i < descriptors.size(); ++i) {
        dup2(descriptors[i], STDERR_FILENO + 1 + static_cast<int>(i));
    }
}

pid_t Program::Start(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), executable);
    std::vector<char *> pointers;
    for (std::string &argument : arguments) {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        setpgid(0, 0);
        ChooseDisplay();
        ResetInterrupts();
        Limit();
        PlaceDescriptors();
        if (chdir(folder.c_str()) == 0) {
            execv(executable.c_str(), pointers.data());
        }
        _exit(127);
    }
    return child;
}

Ended Program::Wait(pid_t child) {
    int status = 0;
    rusage usage = {};
    wait4(child, &status, 0, &usage);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ContentsOf(output / "out"),
            ContentsOf(output / "err"), usage.ru_maxrss / 1024};
}

void Program::ExpectOneSentence(const Ended &ended, const std::string &start) {
    EXPECT_EQ(ended.out, "");
    EXPECT_EQ(ended.err.find("hymedian: " + start), 0u) << ended.err;
    EXPECT_EQ(std::count(ended.err.begin(), ended.err.end(), '\n'), 1) << ended.err;
}

void Program::ExpectRefusals(const std::vector<Refusal> &refusals) {
    const std::set<std::string> before = Names();
    for (const auto &[command, status, named] : refusals) {
        SCOPED_TRACE(command);
        std::istringstream words(command);
        const std::vector<std::string> arguments(std::istream_iterator<std::string>(words), {});
        const Ended ended = Wait(Start(arguments));
        EXPECT_EQ(ended.status, status);
        ExpectOneSentence(ended, "");
        EXPECT_NE(ended.err.find(named), std::string::npos) << "expected: " << named << "; " << ended.err;
        ASSERT_EQ(Names(), before);
    }
}

void Program::WriteNoise(const std::string &name, int width, int height, int bands, VipsBandFormat format,
                         VipsInterpretation interpretation) {
    std::vector<uint8_t> bytes(static_cast<size_t>(width * height * bands) * vips_format_sizeof(format));
    std::generate(bytes.begin(), bytes.end(), std::mt19937(3));
    const OwnedObject<VipsImage> image(
        vips_image_new_from_memory(bytes.data(), bytes.size(), width, height, bands, format));
    image->Type = interpretation;
    ASSERT_EQ(vips_image_write_to_file(image.get(), Path(name).c_str(), nullptr), 0) << vips_error_buffer();
}
