// The worker's side: a process that does jobs for its parent and does not outlive it.
#pragma once

// Does jobs until the parent hangs up; returns the exit status.
int RunWorker();
