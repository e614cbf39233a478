// PlanHistory: which plans were moved to the trash in the last 30 days, so that each can be undone.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tl/expected.hpp>
#include <vector>

#include "engine/base/Date.h"
#include "engine/duplicates/plan/DuplicatePlan.h"
#include "engine/duplicates/plan/NoteSeal.h"
#include "engine/duplicates/plan/TrashUndo.h"
#include "platform/descriptor.h"

namespace orrinvale {

/// A removal that was noted.
struct NotedRemoval {
    std::string id;  ///< its file's name without the extension; sorts by time
    DuplicatePlan plan;
    std::vector<UndoFolder> folders;
};

/// A file (0600) for each removal in a folder of this user, written before anything moves, so that
/// a kill in the middle loses nothing of it. Any thread; what two processes note at once are two
/// files.
class PlanHistory final {
public:
    /// `stateFolder`: that of this user's program (UserFolders.h).
    explicit PlanHistory(const std::string& stateFolder);

    /// The id that it got, or why it could not be written: among others that it is larger than
    /// load() takes. Forgets what is older than 30 days.
    [[nodiscard]] tl::expected<std::string, std::string> note(const FileSystem& files,
                                                              const DuplicatePlan& plan) const;

    /// The ids of the last 30 days, the oldest first.
    [[nodiscard]] std::vector<std::string> ids() const;

    /// When it was noted, which is when it began: its plan may be older. Nothing for no id.
    [[nodiscard]] static std::optional<Date> timeOf(std::string_view id);

    /// Why not, in words: there is none, or its file is damaged, which concerns no other.
    [[nodiscard]] tl::expected<NotedRemoval, std::string> load(const std::string& id) const;

    /// Its sums by its seal (NoteSeal.h): a list of removals is there at once, however large they
    /// were. Why not, in words, as load(): among others that its record is damaged.
    [[nodiscard]] tl::expected<RemovalSummary, std::string> summaryOf(const std::string& id) const;

    /// Forgets one of which nothing moved.
    void forget(const std::string& id) const;

    /// As long as it is open clear() leaves the removal noted, in every program of this user. Not
    /// open where the file system has no locks.
    [[nodiscard]] Descriptor hold(const std::string& id) const;

    /// Forgets all of them, but for those that somebody holds; what lies in the trash stays there.
    /// False when one could not be forgotten.
    [[nodiscard]] bool clear() const;

private:
    [[nodiscard]] std::vector<std::string> allIds() const;
    [[nodiscard]] std::string fileOf(const std::string& id) const;
    [[nodiscard]] tl::expected<std::string, std::string> textOf(const std::string& id) const;
    [[nodiscard]] bool isOld(const std::string& id) const;
    void forgetOld() const;

    std::string m_folder;
};

}  // namespace orrinvale
