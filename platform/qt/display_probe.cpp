#include "platform/qt/display_probe.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <QGuiApplication>

namespace {

// Whatever happens, it prints nothing and leaves nothing behind.
[[noreturn]] void TryApplication() {
    const rlimit noCoreFile = {0, 0};
    setrlimit(RLIMIT_CORE, &noCoreFile);
    const int nowhere = open("/dev/null", O_RDWR | O_CLOEXEC);
    dup2(nowhere, STDOUT_FILENO);
    dup2(nowhere, STDERR_FILENO);
    int count = 1;
    char name[] = "hymedian";
    char *arguments[] = {name, nullptr};
    const QGuiApplication application(count, arguments);
    _exit(0);
}

}  // namespace

bool qt::DisplayAnswers() {
    const pid_t child = fork();
    if (child == 0) {
        TryApplication();
    }
    int status = 0;
    return child > 0 && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}
