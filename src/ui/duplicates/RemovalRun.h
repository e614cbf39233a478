// RemovalRun: what the removing thread and the main thread share of one removal.
#pragma once

#include <atomic>
#include <chrono>
#include <cstddef>
#include <mutex>
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

    explicit RemovalRun(RemovalPlan what) : plan(std::move(what)) {}

    /// The indexes of what has gone since the last call.
    [[nodiscard]] std::vector<std::size_t> takeRemoved() {
        const std::lock_guard guard(m_mutex);
        return std::exchange(m_removed, {});
    }
    void addRemoved(std::size_t index) {
        const std::lock_guard guard(m_mutex);
        m_removed.push_back(index);
    }

    RemovalPlan plan;                   ///< the removing thread's until its end
    std::vector<Failure> failures;      ///< likewise
    std::vector<TreeNode::Pointer> delNodesArr;  ///< what has left the tree; main thread
    std::atomic<bool> stop{false};      ///< bStopDelTask: asked between two entries
    std::atomic<std::size_t> done{0};   ///< entries dealt with
    Mailbox<std::string> current;       ///< the path in hand

private:
    std::mutex m_mutex;
    std::vector<std::size_t> m_removed;  // guarded by m_mutex
};

}  // namespace orrinvale
