// engine/files/DurableFile.h does the writing. Beside the file it needs NAME.new, which has to be
// free as well: people choose where a plan goes.
#include "engine/duplicates/plan/PlanFile.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>

#include "engine/files/DurableFile.h"
#include "platform/error.h"

namespace orrinvale {
namespace {

constexpr std::string_view noPlanThere = "there is a file that is no plan, which stays as it is";

std::string planReason(int error) { return systemError("open", {}, error).reason(); }

// A writer that was killed leaves an empty file, or the beginning of a plan.
std::optional<std::string> objectionToReplacing(const std::string& path, bool mayBeEmpty) {
    const Descriptor file(
        ::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOFOLLOW | O_NOCTTY | O_CLOEXEC));
    if (!file.isOpen()) {
        if (errno == ENOENT) return std::nullopt;
        return errno == ELOOP ? std::string("there is a link, which stays as it is")
                              : planReason(errno);
    }
    std::array<char, 64> beginning;
    const ssize_t count = ::read(file.get(), beginning.data(), beginning.size());
    if (count == 0 && mayBeEmpty) return std::nullopt;
    if (count > 0 && beginsAsPlan({beginning.data(), static_cast<std::size_t>(count)}))
        return std::nullopt;
    return std::string(noPlanThere);
}

}  // namespace

std::optional<std::string> objectionToPlanAt(const std::string& path) {
    if (auto objection = objectionToReplacing(path, false)) return objection;
    const std::string beside = path + ".new";
    if (auto objection = objectionToReplacing(beside, true))
        return fmt::format("{}: {}", beside, *objection);
    return std::nullopt;
}

std::optional<std::string> savePlan(const std::string& path, const DuplicatePlan& plan) {
    if (auto fault = faultOf(plan)) return fault;
    const std::string text = writePlan(plan);
    if (text.size() > mostPlanBytes) return "it would be too long a plan; search fewer folders";
    if (auto objection = objectionToPlanAt(path)) return objection;
    auto file = DurableFile::begin(path);
    if (!file) return file.error().reason();
    if (auto objection = objectionToReplacing(path, false)) return objection;
    const auto saved = file->commit(text);
    return saved ? std::nullopt : std::optional(saved.error().reason());
}

tl::expected<DuplicatePlan, std::string> loadPlan(const std::string& path) {
    struct stat seen {};
    if (::lstat(path.c_str(), &seen) != 0) return tl::unexpected(planReason(errno));
    if (S_ISREG(seen.st_mode) && static_cast<std::uint64_t>(seen.st_size) > mostPlanBytes)
        return tl::unexpected(std::string("it is too long for a plan"));
    const auto text = DurableFile::read(path, mostPlanBytes);
    if (!text)
        return tl::unexpected(text.error().number == EPERM ? std::string("it is another user's")
                                                           : text.error().reason());
    if ((seen.st_mode & (S_IWGRP | S_IWOTH)) != 0)
        return tl::unexpected(std::string("other users may write to it"));
    auto plan = parsePlan(*text);
    if (plan && plan->owner != ::geteuid())
        return tl::unexpected(std::string("it was made by another user"));
    return plan;
}

}  // namespace orrinvale
