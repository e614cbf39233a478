// The reserve is address space alone; it costs memory only when something else takes its place.
#include "cli/MemoryReserve.h"

#include <sys/mman.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdlib>
#include <exception>
#include <new>
#include <string_view>
#include <system_error>
#include <thread>

namespace orrinvale::cli {
namespace {

constexpr std::size_t kReserve = std::size_t{64} << 20U;
constexpr std::chrono::milliseconds kPause{20};
constexpr int kMostPauses = 25;

std::size_t s_size = 0;  // of the reserve, set before other threads start
std::atomic<void*> s_reserve{nullptr};
std::atomic<bool> s_hasRunShort{false};
std::atomic<int> s_pauses{0};
std::atomic<void (*)()> s_handler{nullptr};

[[noreturn]] void giveUp() {
    constexpr std::string_view sentence = "orrinvale-cli: there is not enough memory for this\n";
    static_cast<void>(!::write(STDERR_FILENO, sentence.data(), sentence.size()));
    ::_exit(1);
}

void onShortage() {
    if (void* const reserve = s_reserve.exchange(nullptr)) {
        ::munmap(reserve, s_size);
        s_hasRunShort = true;
        if (auto* const handler = s_handler.load()) handler();
        return;
    }
    if (s_pauses.fetch_add(1) >= kMostPauses) giveUp();
    std::this_thread::sleep_for(kPause);
}

bool isShortage(const std::system_error& error) {
    return error.code() == std::errc::resource_unavailable_try_again ||
           error.code() == std::errc::not_enough_memory;
}

[[noreturn]] void onTerminate() {
    try {
        if (const auto thrown = std::current_exception()) std::rethrow_exception(thrown);
    } catch (const std::bad_alloc&) {
        giveUp();
    } catch (const std::system_error& error) {
        if (isShortage(error)) giveUp();
    } catch (...) {  // a fault of ours: the core file tells of it
    }
    std::abort();
}

}  // namespace

// A quarter of what is allowed, so that a tight limit leaves something to work with.
void keepMemoryReserve() {
    rlimit limit{};
    s_size = kReserve;
    if (::getrlimit(RLIMIT_AS, &limit) == 0 && limit.rlim_cur != RLIM_INFINITY)
        s_size = std::min<std::size_t>(s_size, limit.rlim_cur / 4);
    void* const reserve =
        ::mmap(nullptr, s_size, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (reserve != MAP_FAILED) s_reserve = reserve;
    std::set_new_handler(&onShortage);
    std::set_terminate(&onTerminate);
}

bool hasMemoryRunShort() { return s_hasRunShort; }

void setShortageHandler(void (*handler)()) { s_handler = handler; }

}  // namespace orrinvale::cli
