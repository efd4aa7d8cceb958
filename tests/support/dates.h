// Makes texts that contain the current date and time comparable.
#pragma once

#include <string>

// Replaces every short date with a time by "NOW".
std::string WithoutDates(std::string text);
