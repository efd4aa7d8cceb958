// The program that shows dialogs in windows.
#pragma once

#include <string>

namespace remote {

// The program's name in its folder.
constexpr char kWindowProgram[] = "hymedian-dialog";
// Where the program finds its end of the line.
constexpr int kWindowLine = 3;

// Starts the program with nothing but a line of ours, which is returned; -1 if that fails. It shares neither
// the terminal nor the signals of this process.
int StartWindowProgram(const std::string &folder, int *process);

// Waits for a program that has hung up or that is no longer wanted. Returns its exit status, or -1 if it did
// not exit by itself.
int EndWindowProgram(int process);

}  // namespace remote
