// Texts that hold the current date and time, made comparable.
#pragma once

#include <string>

// Every short date with a time becomes "NOW".
std::string WithoutDates(std::string text);
