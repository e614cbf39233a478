// Two samples of what the threads wait for are compared; platform/blockedCalls.h takes them.
#include "cli/HangLook.h"

#include <algorithm>
#include <utility>

namespace orrinvale::cli {
namespace {

constexpr std::chrono::seconds kPatience{5};
constexpr std::chrono::seconds kFirstSample{1};
constexpr std::chrono::seconds kApart = kPatience - kFirstSample;
constexpr std::chrono::seconds kBetweenLooks{1};

}  // namespace

std::optional<HangLook::Hang> HangLook::look(const std::string& progress, Clock::time_point now) {
    if (progress != m_progress) {
        m_progress = progress;
        m_since = now;
        m_next = now + kFirstSample;
        m_sampled = {};
        m_stuck.clear();
    }
    if (now >= m_next) {
        m_next = now + kBetweenLooks;
        m_stuck = stuckPath(now);
    }
    if (m_stuck.empty() || now - m_since < kPatience) return std::nullopt;
    return Hang{m_stuck, std::chrono::duration_cast<std::chrono::seconds>(now - m_since)};
}

// Empty where no thread has waited since the older sample.
std::string HangLook::stuckPath(Clock::time_point now) {
    const bool isFirst = m_sampled == Clock::time_point();
    if (!isFirst && now - m_sampled < kApart) return {};
    std::vector<BlockedCall> sample = blockedCalls();
    const auto stuck = std::ranges::find_if(sample, [&](const BlockedCall& call) {
        return std::ranges::find(m_sample, call) != m_sample.end();
    });
    if (!isFirst && stuck != sample.end()) return stuck->path;
    m_sample = std::move(sample);
    m_sampled = now;
    return {};
}

}  // namespace orrinvale::cli
