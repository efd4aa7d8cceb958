// hymedian-dialog: shows the dialogs of the module that starts it, at the other end of a line.
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/socket.h>

#include <cstdio>

#include "platform/qt/screen_backend.h"
#include "platform/remote/answering.h"
#include "platform/remote/window_program.h"

namespace {

bool HasLine() {
    int type = 0;
    socklen_t size = sizeof type;
    return getsockopt(remote::kWindowLine, SOL_SOCKET, SO_TYPE, &type, &size) == 0 && type == SOCK_SEQPACKET;
}

}  // namespace

int main() {
    if (!HasLine()) {
        std::fputs("hymedian-dialog: it is started by the plug-in, to show its dialog.\n", stderr);
        return 2;
    }
    fcntl(remote::kWindowLine, F_SETFD, FD_CLOEXEC);
    // Without a display Qt aborts, which is nothing to look into.
    const rlimit noCoreFile = {0, 0};
    setrlimit(RLIMIT_CORE, &noCoreFile);
    remote::AnswerDialogs(remote::kWindowLine, qt::ScreenDialogs());
    return 0;
}
