// RemovalRun: what the removing thread and the main thread share of one removal.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <mutex>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "engine/base/Mailbox.h"
#include "engine/duplicates/results/RemovalPlan.h"

namespace orrinvale {

struct RemovalRun {
    struct Failure {
        std::string path;
        std::string reason;
    };

    explicit RemovalRun(std::vector<TreeNode::Pointer> what) : ticked(std::move(what)) {}

    /// What has gone since the last call.
    [[nodiscard]] std::vector<TreeNode::Pointer> takeRemoved() {
        const std::lock_guard guard(m_mutex);
        return std::exchange(m_removed, {});
    }
    void addRemoved(TreeNode::Pointer leaf) {
        const std::lock_guard guard(m_mutex);
        m_removed.push_back(std::move(leaf));
    }

    const std::vector<TreeNode::Pointer> ticked;  ///< when the person confirmed
    std::optional<RemovalPlan> plan;  ///< made of these by the removing thread at its start, and its own until its end
    std::atomic<std::size_t> planned{
        ticked.size()};                          ///< entries of the plan; before it is there, the ticks with doubles
    std::vector<Failure> failures;               ///< likewise
    std::vector<TreeNode::Pointer> delNodesArr;  ///< what has left the tree; main thread
    std::atomic<bool> stop{false};               ///< bStopDelTask: asked between two entries
    std::atomic<std::size_t> done{0};            ///< entries dealt with
    Mailbox<std::string> current;                ///< the path in hand

private:
    std::mutex m_mutex;
    std::vector<TreeNode::Pointer> m_removed;  // guarded by m_mutex
};

}  // namespace orrinvale
