// PathCleaner: removes entries by their paths, one after another, by the rules of cleaning.
// CleanTasks.h stands on it.
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/cleaning/CategoryScan.h"
#include "engine/removal/RemovalDoor.h"

namespace orrinvale {

/// What the tasks of cleaning work with; nothing is owned.
struct CleanTaskParts {
    CleanParts clean;
    std::string stateFolder;  ///< where removals take turns
    std::function<std::unique_ptr<RemovalDoor>()> makeDoor;
};

/// One thread.
class PathCleaner final {
public:
    explicit PathCleaner(const CleanTaskParts& parts) : m_parts(parts) {}

    /// Looks at the entry and removes it, with all that is in it; one line in the log when it
    /// stays. Where the last call took a part of it and lacked rights for the rest, it goes on by
    /// what that one saw.
    struct Outcome {
        bool isDone = false;       ///< nothing is left that may go
        bool isKept = false;       ///< a rule keeps it, which is no failure
        bool lacksRights = false;  ///< something of it is this user's to see and not to remove
    };
    Outcome remove(const std::string& path);

private:
    [[nodiscard]] std::optional<CleanRow> rowAt(const std::string& path);

    const CleanTaskParts m_parts;
    std::optional<CleanRow> m_begun;  // what the last call left
};

}  // namespace orrinvale
