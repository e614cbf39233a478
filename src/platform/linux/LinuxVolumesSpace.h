// How full mounts are, asked so that a dead server holds nobody up.
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <tuple>
#include <vector>

namespace orrinvale {

/// One mount to be asked. A mount is the same as long as all of this is.
struct SpaceQuestion {
    std::uint64_t mount = 0;  ///< its id
    std::uint64_t device = 0;
    std::string path;
    friend auto operator<=>(const SpaceQuestion&, const SpaceQuestion&) = default;
};

struct SpaceAnswer {
    int error = 0;      ///< errno; ETIMEDOUT when there was no answer in time
    bool gone = false;  ///< another mount, a file or nothing is at the path now; the other fields
                        ///< mean nothing then
    std::uint64_t total = 0;
    std::uint64_t free = 0;      ///< what an ordinary user can fill
    std::uint64_t reserved = 0;  ///< what only the administrator can fill
};

/// Asks the kernel now, on the calling thread, for as long as that takes.
[[nodiscard]] SpaceAnswer askKernelForSpace(const SpaceQuestion& question);

/// Asks on threads of its own. One thread is enough as long as all answer; each mount that does not
/// takes one with it until it answers, and is not asked again before. Nobody ever waits for such a
/// thread, the destructor included. Any thread.
class LinuxVolumesSpace final {
public:
    using Ask = std::function<SpaceAnswer(const SpaceQuestion&)>;

    /// `patience` is how long a mount may take. `ask` is called on the threads, and may be called
    /// until long after this object's end, so it holds what it uses.
    LinuxVolumesSpace(std::chrono::milliseconds patience, Ask ask);
    ~LinuxVolumesSpace();
    LinuxVolumesSpace(const LinuxVolumesSpace&) = delete;
    LinuxVolumesSpace& operator=(const LinuxVolumesSpace&) = delete;

    /// The answers in the order of the questions, after at most the patience however many do not
    /// answer, and without waiting for those that already ran out of it in an earlier call. What
    /// such a mount answered since is its answer at the next call, at once.
    [[nodiscard]] std::vector<SpaceAnswer> ask(const std::vector<SpaceQuestion>& questions);

private:
    struct Shared;
    const std::shared_ptr<Shared> m_shared;
};

}  // namespace orrinvale
