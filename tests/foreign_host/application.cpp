// A host's library that runs an application of the toolkit that the module's dialog uses, too: the class
// APPLICATION from the header of that name.
#include <cstdlib>
#include HEADER

namespace {

int count = 1;
char name[] = "host";
char *names[] = {name, nullptr};
QCoreApplication *application;

[[gnu::constructor]] void Start() {
    // What the toolkit says while it starts is the host's; only the module is watched.
    qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &) {});
    setenv("QT_QPA_PLATFORM", "offscreen", 1);
    application = new APPLICATION(count, names);
    unsetenv("QT_QPA_PLATFORM");
    qInstallMessageHandler(nullptr);
}

}  // namespace
