// FreeSpaceLook: what is free behind folders, asked aside, since a disk that hangs never answers.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <set>
#include <string>

namespace orrinvale {

/// Bytes that are free on the file systems of the folders, once these have written what waits; each
/// file system counts once. Nothing where one does not tell. May wait for slow disks.
[[nodiscard]] std::optional<std::int64_t> freeSpaceBehind(const std::set<std::string>& folders);

/// One question on a thread of its own, which ends by itself when nobody waits any more.
class FreeSpaceLook final {
public:
    /// freeSpaceBehind(), or a stand-in for it; called on that thread.
    using Ask = std::function<std::optional<std::int64_t>(const std::set<std::string>&)>;

    FreeSpaceLook(std::shared_ptr<const std::set<std::string>> folders, Ask ask);

    /// The answer, if it comes within this time and before nobody wants it any more. Any thread.
    [[nodiscard]] std::optional<std::int64_t> wait(std::chrono::milliseconds patience,
                                                   const std::function<bool()>& isUnwanted) const;

private:
    struct Answer;
    std::shared_ptr<Answer> m_answer;
};

}  // namespace orrinvale
