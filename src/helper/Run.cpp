// Run: see Run.h. The tool works by a name relative to a folder that is held, so that no path is resolved a second time.
#include "helper/Run.h"

#include <fcntl.h>
#include <fmt/format.h>
#include <poll.h>
#include <sys/mount.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <optional>
#include <utility>

#include "engine/files/EntryIdentity.h"
#include "engine/files/ProtectedPlaces.h"
#include "helper/Accounts.h"
#include "helper/Checks.h"
#include "platform/error.h"
#include "platform/linux/LinuxFiles.h"
#include "platform/paths.h"

namespace orrinvale::helper {
namespace {

using Outcome = HelperReply::Outcome;

std::string reasonOf(int error) { return systemError("rm", {}, error).reason(); }

/// Where the tool works.
struct WorkFolder {
    Descriptor folder;
    bool hidesMounts = false;  // what is mounted below it can not be seen from it
};

/// A copy of the parent's mount without those below it; the parent itself where the system makes no copies (Linux before 5.2,
/// and containers).
WorkFolder workFolderOf(Descriptor parent) {
    Descriptor copy(static_cast<int>(
        ::syscall(SYS_open_tree, parent.get(), "", OPEN_TREE_CLONE | OPEN_TREE_CLOEXEC | AT_EMPTY_PATH)));
    if (copy.isOpen()) return {std::move(copy), true};
    return {std::move(parent), false};
}

/// One stream of the tool: its first bytes are kept, the rest is read and dropped, so that the tool never waits.
struct Stream {
    Descriptor ours;
    Descriptor theirs;
    std::size_t most;
    std::string text;

    explicit Stream(std::size_t mostKept) : most(mostKept) {
        int ends[2] = {-1, -1};
        if (::pipe2(ends, O_CLOEXEC) != 0) return;
        ours = Descriptor(ends[0]);
        theirs = Descriptor(ends[1]);
    }
    void read() {
        std::array<char, 4096> piece;
        const ssize_t count = ::read(ours.get(), piece.data(), piece.size());
        if (count == 0 || (count < 0 && errno != EINTR)) ours.reset();
        if (count > 0) text.append(piece.data(), std::min(static_cast<std::size_t>(count), most - text.size()));
    }
};

[[noreturn]] void becomeTool(const std::string& name, const WorkFolder& work, const Stream& output,
                             const Stream& errors, pid_t parent) {
    constexpr int cannotRun = 125;
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);  // whoever kills the helper ends the tool
    std::string path = "./" + name;
    std::string tool = "rm";
    std::string how = "-rf";
    std::string within = "--one-file-system";
    std::array<char*, 5> arguments{tool.data(), how.data(), path.data(), nullptr, nullptr};
    if (!work.hidesMounts) arguments = {tool.data(), how.data(), within.data(), path.data(), nullptr};
    char* const noEnvironment[] = {nullptr};
    const int nothing = ::open("/dev/null", O_RDONLY | O_CLOEXEC);
    const bool isReady = ::getppid() == parent && ::fchdir(work.folder.get()) == 0 && ::dup2(nothing, 0) == 0 &&
                         ::dup2(output.theirs.get(), 1) == 1 && ::dup2(errors.theirs.get(), 2) == 2 &&
                         ::syscall(SYS_close_range, 3U, ~0U, 0U) == 0;
    ::signal(SIGTERM, SIG_DFL);
    if (isReady) ::execve("/bin/rm", arguments.data(), noEnvironment);
    ::_exit(cannotRun);
}

void readBoth(Stream& output, Stream& errors) {
    while (output.ours.isOpen() || errors.ours.isOpen()) {
        std::array<pollfd, 2> sources{{{output.ours.get(), POLLIN, 0}, {errors.ours.get(), POLLIN, 0}}};
        if (::poll(sources.data(), sources.size(), -1) < 0 && errno != EINTR) return;
        if (sources[0].revents != 0) output.read();
        if (sources[1].revents != 0) errors.read();
    }
}

/// Runs the tool to its end. What it printed stands in the streams; the text is why it did not run.
std::optional<std::string> runTool(const std::string& name, const WorkFolder& work, Stream& output, Stream& errors) {
    if (!output.ours.isOpen() || !errors.ours.isOpen()) return reasonOf(errno);
    const pid_t self = ::getpid();
    const pid_t tool = ::fork();
    if (tool < 0) return reasonOf(errno);
    if (tool == 0) becomeTool(name, work, output, errors, self);
    output.theirs.reset();
    errors.theirs.reset();
    readBoth(output, errors);
    while (::waitpid(tool, nullptr, 0) < 0 && errno == EINTR) {}
    return std::nullopt;
}

HelperReply outcomeOf(const FileSystem& files, const WorkFolder& work, const std::string& name, const Stream& output,
                      const Stream& errors) {
    if (!output.text.empty()) return {0, Outcome::Printed, output.text};
    const auto left = files.attributes(work.folder.get(), name.c_str(), Links::Keep);
    if (!left && left.error() == ENOENT) return {0, Outcome::Removed, {}};
    const std::string reason = errors.text.substr(0, errors.text.find('\n'));
    if (!reason.empty()) return {0, Outcome::StillThere, reason};
    return {0, Outcome::StillThere, left ? "still there" : reasonOf(left.error())};
}

bool isStill(const SeenEntry& then, const FileAttributes& now) {
    if (!then.state) return now.device == then.device && now.inode == then.inode && now.type == then.type;
    return EntryIdentity{.device = then.device,
                         .inode = then.inode,
                         .type = then.type,
                         .size = then.state->size,
                         .modified = then.state->modified,
                         .changed = then.state->changed,
                         .born = then.state->born}
        .isStill(now);
}

/// Whether the copy that stays is where it was seen, and no part of what goes. Asked past what is remembered, since it may be a second
/// view of the entry.
bool stands(const FileSystem& files, const SeenEntry& stays, const SeenEntry& goes) {
    if (isWithin(stays.path, goes.path)) return false;
    const auto parent = files.holdFolder(FileSystem::noParent, folderOf(stays.path).c_str(), Links::Keep);
    if (!parent) return false;
    const std::string name(lastPathComponent(stays.path));
    const auto now = files.freshAttributes(parent->get(), name.c_str(), Links::Keep);
    return now && isStill(stays, *now);
}

HelperReply refused(std::string reason) { return {0, Outcome::Refused, std::move(reason)}; }

}  // namespace

HelperReply removeEntry(const HelperRequest& request, uid_t caller, const std::vector<std::string>& ownFiles) {
    const LinuxFileSystem files;
    auto parent = openVerifiedParent(request.entry.path, caller);
    if (!parent) return refused(std::move(parent.error()));
    const std::string name = parent->name;
    // From the folder as it is seen now: in the copy a mount point looks like the folder below it.
    const auto seen = files.attributes(parent->folder.get(), name.c_str(), Links::Keep);
    if (!seen) return refused(reasonOf(seen.error()));
    auto places = ProtectedPlaces::ofThisMachine(files, ownFiles);
    if (const auto home = homeOf(caller)) places.addHome(files, *home, caller);
    if (auto reason = places.refusal(request.entry.path, *seen)) return refused(std::move(*reason));

    const WorkFolder work = workFolderOf(std::move(parent->folder));
    const auto entry = files.attributes(work.folder.get(), name.c_str(), Links::Keep);
    if (!entry || !isStill(request.entry, *entry) || !isStill(request.entry, *seen))
        return refused("changed since it was looked at");
    if (request.stays && !stands(files, *request.stays, request.entry)) return refused("no other copy is left");
    Stream output(HelperReply::mostOutput);
    Stream errors(HelperReply::mostText);
    if (auto reason = runTool(name, work, output, errors)) return {0, Outcome::Failed, std::move(*reason)};
    return outcomeOf(files, work, name, output, errors);
}

}  // namespace orrinvale::helper
