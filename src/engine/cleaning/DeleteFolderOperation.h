// DeleteFolderOperation: the second half of a Fast Clean, which removes what BrowseFolderOperation
// measured, by the program's one removal job.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "engine/cleaning/CleanList.h"
#include "engine/cleaning/CleanTasks.h"
#include "engine/cleaning/SpaceGain.h"
#include "engine/removal/RemovalJob.h"

namespace orrinvale {

/// Main thread only, where its notices come: ZvBeginFastClean, an entry's ZvDeleteFileSuccess as it
/// goes, what stays of a folder once it is through with it, and ZvFastCleanFinish, or
/// ZvCleanCanceled once it was cancelled. The folders themselves stay. What a rule keeps is told
/// by no notice.
class DeleteFolderOperation final : public CleanOperation {
public:
    /// initWithPath:; `rows` is what was measured in these folders, in their order. Both are its
    /// own from now on.
    DeleteFolderOperation(std::vector<std::string> folders, std::vector<CleanRow> rows,
                          CleanTaskParts parts, CleanPosts posts,
                          SpaceGain::FreeSpace freeSpace = settledFreeSpace);
    /// Stops it and lets go of it; it ends by itself.
    ~DeleteFolderOperation() override;

    /// Starts it and returns.
    void main() override;
    /// Ends it before the next entry, and within a folder that is in hand.
    void cancel() override;

    /// Posts the folder alone, as nobody tried its entries with the right that they want.
    void notifyDeleteFailed(const std::string& folder) const;

    /// Another removal is waited for.
    [[nodiscard]] bool isWaiting() const;
    /// The entry in hand, exact bytes; empty before the first one.
    [[nodiscard]] std::string inHand() const;

    // After the last notice.
    [[nodiscard]] bool hasRemoved() const;
    /// Something stayed that no rule keeps, or nothing could be begun.
    [[nodiscard]] bool hasFailed() const {
        return m_list->hasFailed() || (m_outcome.failed > 0 && m_outcome.stayed.empty());
    }
    /// Bytes that went by us, as the rows count them.
    [[nodiscard]] std::uint64_t goneBytes() const { return m_list->goneBytes(); }
    [[nodiscard]] const RemovalOutcome& outcome() const { return m_outcome; }
    /// The free space before the removal; its question may wait, and so is for another thread.
    [[nodiscard]] std::shared_ptr<const SpaceGain> gain() const { return m_gain; }

    const std::vector<std::string> folderPathArr;

private:
    /// One entry that stayed though no rule keeps it.
    struct Failed {
        std::string path;
        std::optional<std::uint64_t> size;
    };
    void takeNews();
    [[nodiscard]] bool takeNext();
    void take(const RemovalJob::Settled& settled, const std::string& path);
    void endFolder();
    [[nodiscard]] bool cleanDeletableFolder() const { return m_failed.empty(); }
    void cleanUndeletableFolder(const std::string& folder);
    [[nodiscard]] bool tellFailed();
    void end();
    [[nodiscard]] std::string folderAt(const std::string& path) const;

    const CleanTaskParts m_parts;
    const CleanPosts m_posts;
    const std::shared_ptr<SpaceGain> m_gain;
    const std::shared_ptr<CleanList> m_list;
    std::string m_folder;          // that the entries told last lie in; empty before the first
    std::vector<Failed> m_failed;  // of it
    std::vector<Failed> m_toTell;  // of the folder before, one by one
    std::size_t m_told = 0;        // of m_toTell
    RemovalJob::News m_news;
    std::size_t m_taken = 0;  // of m_news
    bool m_hasEnded = false;
    RemovalOutcome m_outcome;
    std::unique_ptr<RemovalJob> m_job;
};

}  // namespace orrinvale
