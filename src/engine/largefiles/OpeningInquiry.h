// OpeningInquiry: asks the disks of a tree whether they note when a file is opened.
#pragma once

#include <chrono>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace orrinvale {

class FileNodeTree;

/// What a disk says of it.
enum class OpeningNotes : std::uint8_t { Unanswered, Kept, NotKept };

/// Every disk is asked on a thread of its own, up to mostAtOnce at a time, so that one that hangs
/// keeps nothing from the others. Its thread is left to it, also when this object is gone.
class OpeningInquiry final {
public:
    static constexpr std::size_t mostAtOnce = 64;

    /// Nothing for an error.
    using Ask = std::function<std::optional<bool>(const std::string& place)>;

    /// A place on each disk. Begins at once. `ask` is called on any thread, and may never return.
    explicit OpeningInquiry(std::vector<std::string> places, Ask ask = {});
    /// Of the disks of the tree, by FileNode::deviceNumber().
    explicit OpeningInquiry(const FileNodeTree& tree);

    /// What has been answered once all of it is, or so much time has passed; a disk that answered
    /// with an error before is asked once more. By number of the place. Any thread.
    [[nodiscard]] std::vector<OpeningNotes> wait(std::chrono::milliseconds patience) const;

private:
    struct State;
    static void ask(const std::shared_ptr<State>& state, std::size_t places);
    const std::shared_ptr<State> m_state;
};

}  // namespace orrinvale
