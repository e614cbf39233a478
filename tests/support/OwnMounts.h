// A check among mounts that nobody else sees.
#pragma once

#include <functional>
#include <string>

namespace orrinvale::testing {

/// Runs the check as root in a process where /mnt is an empty tmpfs, and whatever it mounts and
/// starts goes with it, however it ends. What it says is a failure; "skip: " and a reason skips the
/// test, as does a machine where this can not be had.
void withOwnMounts(const std::function<std::string()>& check);

/// Gives this process a table of mounts of its own, for runInChild(); false where that can not be
/// had.
[[nodiscard]] bool unshareMounts();

/// Shows a file or a folder in the place of another one.
[[nodiscard]] bool bindMount(const std::string& what, const std::string& where);

/// Makes the folder where it is missing, and mounts an empty tmpfs there; false when it can not.
[[nodiscard]] bool mountRam(const char* folder);

}  // namespace orrinvale::testing
