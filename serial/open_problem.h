#pragma once

#include <string>

namespace serial {

// One line for a terminal device that could not be opened for that error. For a missing permission
// it tells what the device asks of its user: the group to join and how.
std::string OpenProblem(const std::string& path, int error);

}  // namespace serial
