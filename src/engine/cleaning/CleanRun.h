// CleanRun: what is ticked in several lists, and a scan or a clean of them as one: whose end is
// still to come, and what it came to. ScanViewController.h is one list.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "engine/cleaning/ScanViewController.h"

namespace orrinvale {

/// What of a list, or of several, is ticked.
struct CleanSums {
    std::size_t rows = 0;
    std::size_t ticked = 0;
    std::uint64_t bytes = 0;  ///< of the ticked rows

    void add(const CleanFileInfo& row);
    /// 0 none, 1 all, 2 some; an empty list has none.
    [[nodiscard]] std::int32_t state() const { return ticked == 0 ? 0 : ticked == rows ? 1 : 2; }
    CleanSums& operator+=(const CleanSums& other);
    friend bool operator==(const CleanSums&, const CleanSums&) = default;
};

[[nodiscard]] CleanSums sumsOf(const ScanViewController& list);

/// The ticked rows that a person is asked about, and that go if the answer is yes: by category.
struct CleanChoice {
    std::array<ScanViewController::Rows, 6> rows;
    CleanSums sums;
    friend bool operator==(const CleanChoice&, const CleanChoice&) = default;
};

/// One run. Its ends may come in any order. Main thread only; the lists outlive it.
class CleanRun final {
public:
    CleanRun() = default;
    /// All lists take part whose bit stands in `categories`, 1 for the first.
    CleanRun(std::vector<ScanViewController*> lists, unsigned categories);

    [[nodiscard]] bool takesPart(std::size_t category) const {
        return (m_categories >> category & 1U) != 0;
    }
    /// The list of a category has ended. True for the last of them; one that has no end to come
    /// changes nothing.
    [[nodiscard]] bool end(std::size_t category);
    /// How many are still to come.
    [[nodiscard]] std::size_t left() const;
    /// Those that take part, by category.
    [[nodiscard]] std::vector<ScanViewController*> lists() const;

    // A clean.
    /// What the disk is to give back for these rows, and the folders that they lie in.
    void promise(const CleanChoice& choice, const SpaceGain::FreeSpace& freeSpace);
    /// Null before promise().
    [[nodiscard]] const std::shared_ptr<SpaceGain>& gain() const { return m_gain; }
    [[nodiscard]] std::uint64_t promised() const { return m_promised; }
    /// All its lists together, in the order of the categories.
    [[nodiscard]] RemovalOutcome outcome() const;
    [[nodiscard]] std::uint64_t cleanedBytes() const;
    /// The entry in hand; nothing while none is.
    [[nodiscard]] std::string current() const;
    /// Every list that still runs waits for its turn.
    [[nodiscard]] bool isWaiting() const;

private:
    std::vector<ScanViewController*> m_all;
    unsigned m_categories = 0, m_running = 0;
    std::shared_ptr<SpaceGain> m_gain;
    std::uint64_t m_promised = 0;
};

}  // namespace orrinvale
