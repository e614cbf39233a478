// LinuxFileSystem and FileView: looking at files in memory through a mapping, safe against files
// that shrink meanwhile.
//
// Large files that are in memory are hashed a third faster this way than by reading, which copies
// them. The price is SIGBUS: a mapped page behind the new end of a file that was cut raises it. The
// handler puts a page of zeros there and notes the fault; whoever looked then knows that what it
// saw is not the file.
#include <sys/mman.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <csignal>
#include <mutex>

#include "platform/fileView.h"
#include "platform/linux/LinuxFiles.h"
#include "platform/linux/Residency.h"

namespace orrinvale {
namespace {

// What this thread is looking at. Plain words, since the handler runs on the thread itself.
struct View {
    std::uintptr_t first;
    std::uintptr_t last;
    bool faulted;
};
thread_local View t_view{0, 0, false};

struct sigaction s_before {};
std::uintptr_t s_pageSize = 4096;  // since installHandler()

void onBusError(int number, siginfo_t* info, void* context) {
    const auto at = reinterpret_cast<std::uintptr_t>(info->si_addr);
    if (at >= t_view.first && at < t_view.last) {
        const std::uintptr_t page = at & ~(s_pageSize - 1);
        void* const zeros = ::mmap(reinterpret_cast<void*>(page), s_pageSize, PROT_READ,
                                   MAP_PRIVATE | MAP_ANONYMOUS | MAP_FIXED, -1, 0);
        t_view.faulted = true;
        if (zeros != MAP_FAILED) return;
    }
    // Not ours: as if this handler were not there.
    if ((s_before.sa_flags & SA_SIGINFO) != 0 && s_before.sa_sigaction != nullptr) {
        s_before.sa_sigaction(number, info, context);
        return;
    }
    struct sigaction plain {};
    plain.sa_handler = SIG_DFL;
    ::sigaction(number, &plain, nullptr);
}

void installHandler() {
    static std::once_flag once;
    std::call_once(once, [] {
        s_pageSize = static_cast<std::uintptr_t>(::sysconf(_SC_PAGESIZE));
        struct sigaction action {};
        action.sa_sigaction = &onBusError;
        action.sa_flags = SA_SIGINFO | SA_NODEFER;
        ::sigaction(SIGBUS, &action, &s_before);
    });
}

}  // namespace

SysResult<bool> LinuxFileSystem::visitResident(
    int file, std::uint64_t offset, std::uint64_t length,
    const std::function<void(std::span<const std::byte>)>& visit) const {
    static const bool usualPages = ::sysconf(_SC_PAGESIZE) == 4096;
    if (!usualPages || length == 0 || offset % 4096 != 0 || !isResident(file, offset, length))
        return false;
    installHandler();
    void* const map = ::mmap(nullptr, length, PROT_READ, MAP_SHARED | MAP_POPULATE, file,
                             static_cast<off_t>(offset));
    if (map == MAP_FAILED) return false;
    const auto first = reinterpret_cast<std::uintptr_t>(map);
    t_view = {first, first + length, false};
    std::atomic_signal_fence(std::memory_order_seq_cst);
    visit({static_cast<const std::byte*>(map), length});
    std::atomic_signal_fence(std::memory_order_seq_cst);
    const bool faulted = t_view.faulted;
    t_view = {0, 0, false};
    ::munmap(map, length);
    if (faulted) return tl::unexpected(EIO);
    return true;
}

SysResult<FileView> FileView::of(int file, std::size_t length) {
    installHandler();
    void* const map = ::mmap(nullptr, length, PROT_READ, MAP_SHARED, file, 0);
    if (map == MAP_FAILED) return tl::unexpected(errno);
    FileView view;
    view.m_bytes = {static_cast<const std::byte*>(map), length};
    return view;
}

FileView::~FileView() {
    if (!m_bytes.empty()) ::munmap(const_cast<std::byte*>(m_bytes.data()), m_bytes.size());
}

FileView::Look::Look(const FileView& view) {
    const auto first = reinterpret_cast<std::uintptr_t>(view.m_bytes.data());
    t_view = {first, first + view.m_bytes.size(), false};
    std::atomic_signal_fence(std::memory_order_seq_cst);
}

FileView::Look::~Look() {
    std::atomic_signal_fence(std::memory_order_seq_cst);
    t_view = {0, 0, false};
}

}  // namespace orrinvale
