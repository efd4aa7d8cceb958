// Ctrl-C and its relatives.
#pragma once

// From now on SIGINT, SIGTERM and SIGHUP no longer end the process; they are only remembered. Those that it
// was started to ignore, as nohup and shells do for what runs in the background, stay ignored.
void WatchForInterrupts();
bool Interrupted();
