// Ctrl-C and its relatives.
#pragma once

// From now on SIGINT, SIGTERM and SIGHUP no longer end the process; they are only remembered.
void WatchForInterrupts();
bool Interrupted();
