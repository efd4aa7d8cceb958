#include "platform/remote/window_program.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>

#include "platform/remote/line.h"

namespace {

using Actions = posix_spawn_file_actions_t;
using Attributes = posix_spawnattr_t;

// The line first, since its descriptor could be one of those that are replaced.
bool PlaceDescriptors(int line, Actions *actions) {
    bool sound = posix_spawn_file_actions_adddup2(actions, line, remote::kWindowLine) == 0;
    for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        sound = sound && posix_spawn_file_actions_addopen(actions, standard, "/dev/null", O_RDWR, 0) == 0;
    }
    // The host may have left others open for its children.
    return sound && posix_spawn_file_actions_addclosefrom_np(actions, remote::kWindowLine + 1) == 0;
}

// A process group of its own, so that keys at the host's terminal are the host's; and no signal is blocked or
// ignored.
bool ResetSignals(Attributes *attributes) {
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    return posix_spawnattr_setflags(
               attributes, POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF) == 0 &&
           posix_spawnattr_setpgroup(attributes, 0) == 0 &&
           posix_spawnattr_setsigmask(attributes, &none) == 0 &&
           posix_spawnattr_setsigdefault(attributes, &all) == 0;
}

bool Spawn(const std::string &path, int line, pid_t *process) {
    Actions actions;
    Attributes attributes;
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    std::string name = remote::kWindowProgram;
    char *arguments[] = {name.data(), nullptr};
    const bool sound = PlaceDescriptors(line, &actions) && ResetSignals(&attributes) &&
                       posix_spawn(process, path.c_str(), &actions, &attributes, arguments, environ) == 0;
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return sound;
}

}  // namespace

int remote::StartWindowProgram(const std::string &folder, int *process) {
    int ends[2];
    if (folder.empty() || !MakeLine(ends)) {
        return -1;
    }
    const bool started = Spawn(folder + "/" + kWindowProgram, ends[1], process);
    close(ends[1]);
    if (!started) {
        close(ends[0]);
        return -1;
    }
    return ends[0];
}

int remote::EndWindowProgram(int process) {
    int status = -1;
    // A host that waits for all its children may have waited for this one already.
    if (waitpid(process, &status, WNOHANG) == 0) {
        kill(process, SIGKILL);
        while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
        }
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}
