// A library that is loaded into the program while it is soaked (LD_PRELOAD): how long its main
// thread is away from the wait for events, where it was when that was long, and how many bytes are
// allocated. It answers on a socket, one line a question:
//
//   now     "allocated BYTES turns COUNT longest MICROSECONDS"; the longest turn since it was asked
//           last begins anew
//
// A turn of the main thread is the time from one wait to the next, less what the thread stood ready
// while others had the processors. ORRINVALE_SOAK_SOCKET names the socket, ORRINVALE_SOAK_TURNS the
// file that takes the turns over the bar, each with the calls that the main thread was in.
#include <dlfcn.h>
#include <execinfo.h>
#include <fcntl.h>
#include <malloc.h>
#include <pthread.h>
#include <signal.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;

constexpr std::int64_t bar = 50'000;        // microseconds
constexpr std::int64_t lookAfter = 40'000;  // what lasts so long has its calls written down

// As glib declares them; the toolkit's loop of the main thread waits by them.
struct PollEntry;
using Wait = int (*)(PollEntry*, unsigned, int);

Wait realWait = nullptr;
int waited =
    -1;  // the kernel's account of how long the main thread was kept waiting for a processor
int turnsFile = -1;
pthread_t mainThread;
std::atomic<std::int64_t> turnStart{0}, longest{0}, turns{0};
std::int64_t waitedAtStart = 0;
std::array<void*, 64> calls;
std::atomic<int> callCount{0};

std::int64_t now() {
    return std::chrono::duration_cast<std::chrono::microseconds>(Clock::now().time_since_epoch())
        .count();
}

// Microseconds that this thread stood ready without a processor, since it began.
std::int64_t keptWaiting() {
    std::array<char, 96> text{};
    const ssize_t size = ::pread(waited, text.data(), text.size(), 0);
    if (size <= 0) return 0;
    const char* const end = text.data() + size;
    const char* at = std::find(static_cast<const char*>(text.data()), end, ' ');
    std::int64_t nanoseconds = 0;
    if (at != end) std::from_chars(at + 1, end, nanoseconds);
    return nanoseconds / 1000;
}

void tell(std::int64_t turn) {
    std::array<char, 64> line{};
    const int size =
        std::snprintf(line.data(), line.size(), "turn of %lld us\n", static_cast<long long>(turn));
    (void)!::write(turnsFile, line.data(), static_cast<std::size_t>(size));
    if (const int count = callCount.exchange(0); count > 0)
        ::backtrace_symbols_fd(calls.data(), count, turnsFile);
}

int waitForEvents(PollEntry* entries, unsigned count, int timeout) {
    if (const std::int64_t start = turnStart.exchange(0); start != 0) {
        std::int64_t turn = now() - start;
        if (turn > bar / 2) turn -= keptWaiting() - waitedAtStart;
        ++turns;
        if (turn > longest) longest = turn;
        if (turn > bar && turnsFile != -1) tell(turn);
    }
    const int answer = realWait(entries, count, timeout);
    callCount = 0;
    waitedAtStart = keptWaiting();
    turnStart = now();
    return answer;
}

void writeDownCalls(int) { callCount = ::backtrace(calls.data(), static_cast<int>(calls.size())); }

// A fault of the program, with the calls that led to it; then it ends as it would have.
void tellFault(int number) {
    std::array<void*, 64> last{};
    const std::string_view head = "ended by a signal\n";
    (void)!::write(turnsFile, head.data(), head.size());
    ::backtrace_symbols_fd(last.data(), ::backtrace(last.data(), static_cast<int>(last.size())),
                           turnsFile);
    ::signal(number, SIG_DFL);
    ::raise(number);
}

void watchTurns() {
    std::int64_t seen = 0;
    while (true) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
        const std::int64_t start = turnStart;
        if (start == 0 || start == seen || now() - start < lookAfter) continue;
        seen = start;
        ::pthread_kill(mainThread, SIGURG);
    }
}

std::string told() {
    const struct mallinfo2 info = ::mallinfo2();
    return "allocated " + std::to_string(info.uordblks + info.hblkhd) + " turns " +
           std::to_string(turns.load()) + " longest " + std::to_string(longest.exchange(0)) + '\n';
}

void answer(int listener) {
    while (true) {
        const int one = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (one < 0) return;
        const std::string text = told();
        (void)!::send(one, text.data(), text.size(), MSG_NOSIGNAL);
        ::close(one);
    }
}

int listenAt(const char* path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    std::strncpy(address.sun_path, path, sizeof address.sun_path - 1);
    const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(listener, 4) != 0)
        return -1;
    return listener;
}

// The toolkit's loop waits by this library, which is made ready here where it is not yet.
template <class Function> Function found(const char* name) {
    void* const library = ::dlopen("libglib-2.0.so.0", RTLD_NOW);
    return library == nullptr ? nullptr : reinterpret_cast<Function>(::dlsym(library, name));
}

__attribute__((constructor)) void begin() {
    const char* const path = std::getenv("ORRINVALE_SOAK_SOCKET");
    const auto defaultContext = found<void* (*)()>("g_main_context_default");
    const auto waitOf = found<Wait (*)(void*)>("g_main_context_get_poll_func");
    const auto setWait = found<void (*)(void*, Wait)>("g_main_context_set_poll_func");
    ::unsetenv("LD_PRELOAD");  // what the program starts is not looked at
    if (path == nullptr || defaultContext == nullptr) return;
    realWait = waitOf(defaultContext());
    setWait(defaultContext(), waitForEvents);
    mainThread = ::pthread_self();
    waited = ::open("/proc/thread-self/schedstat", O_RDONLY | O_CLOEXEC);
    if (const char* const file = std::getenv("ORRINVALE_SOAK_TURNS"))
        turnsFile = ::open(file, O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600);
    (void)::backtrace(calls.data(), 1);  // loads what it needs, which a signal's handler must not
    struct sigaction action {};
    action.sa_handler = writeDownCalls;
    action.sa_flags = SA_RESTART;
    ::sigaction(SIGURG, &action, nullptr);
    for (const int fault : {SIGSEGV, SIGBUS, SIGABRT, SIGFPE, SIGILL}) ::signal(fault, tellFault);
    if (const int listener = listenAt(path); listener != -1) std::thread(answer, listener).detach();
    std::thread(watchTurns).detach();
}

}  // namespace
