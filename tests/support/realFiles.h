// The real file system, and no place that is protected, for tests that need nothing else of them.
#pragma once

#include "engine/files/ProtectedPlaces.h"
#include "platform/linux/LinuxFiles.h"

namespace orrinvale {
namespace {

const LinuxFileSystem files;
[[maybe_unused]] const LinuxFileSystem& realFiles = files;  // where "files" are others
[[maybe_unused]] const ProtectedPlaces nothingProtected;

}  // namespace
}  // namespace orrinvale
