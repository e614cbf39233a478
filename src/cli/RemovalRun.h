// RemovalRun: the program's one removal job, waited for in the terminal.
#pragma once

#include <functional>
#include <memory>

#include "engine/removal/RemovalJob.h"

namespace orrinvale::cli {

enum class Ending : std::uint8_t;
enum class Telling : std::uint8_t;

struct RemovalRun {
    RemovalOutcome outcome;
    Ending ending{};  ///< how the person in front of it ended it
};

/// Runs the list to its end, or until it is stopped, with its progress on the terminal. The files
/// outlive the call.
[[nodiscard]] RemovalRun runRemoval(const FileSystem& files,
                                    const std::shared_ptr<RemovalList>& list,
                                    std::function<std::unique_ptr<RemovalDoor>()> makeDoor,
                                    Telling telling);

}  // namespace orrinvale::cli
