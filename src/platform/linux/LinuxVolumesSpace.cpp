// The threads are detached and share one block of state that the last of them frees, for a thread
// within a dead mount ends when the mount answers, which may be never.
#include "platform/linux/LinuxVolumesSpace.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/vfs.h>

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <csignal>
#include <deque>
#include <map>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "platform/descriptor.h"

namespace orrinvale {
namespace {

using Clock = std::chrono::steady_clock;

constexpr unsigned kMountIdMask = 0x1000;  // STATX_MNT_ID, Linux 5.8
constexpr std::chrono::milliseconds kStall{
    10};  // a mount that answers at all answers in microseconds
constexpr std::size_t kMostLateAnswers = 1000;  // of mounts that nobody asks for again
constexpr std::size_t kMostThreadsAtOnce = 8;   // that a stall adds
constexpr int kFolderOnly = O_PATH | O_DIRECTORY | O_CLOEXEC;

std::uint64_t bytesOf(std::uint64_t blocks, std::uint64_t size) {
    std::uint64_t bytes = 0;
    return __builtin_mul_overflow(blocks, size, &bytes) ? ~std::uint64_t{0} : bytes;
}

// Whether the descriptor lies on the mount that was meant; true where the kernel can not tell.
bool isOnMount(int folder, std::uint64_t mount) {
    struct statx attributes {};
    if (::statx(folder, "", AT_EMPTY_PATH | AT_STATX_DONT_SYNC, kMountIdMask, &attributes) != 0)
        return true;
    if ((attributes.stx_mask & kMountIdMask) == 0) return true;
    return attributes.stx_mnt_id == mount;
}

// A thread that takes no signals, as those are for the threads that the program knows of.
bool startThread(std::function<void()> run) {
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    ::pthread_sigmask(SIG_SETMASK, &all, &before);
    bool started = true;
    try {
        std::thread(std::move(run)).detach();
    } catch (const std::system_error&) {
        started = false;
    }
    ::pthread_sigmask(SIG_SETMASK, &before, nullptr);
    return started;
}

}  // namespace

SpaceAnswer askKernelForSpace(const SpaceQuestion& question) {
    SpaceAnswer answer;
    const Descriptor folder(::open(question.path.c_str(), kFolderOnly));
    if (!folder.isOpen()) {
        answer.error = errno;
        answer.gone = answer.error == ENOENT || answer.error == ENOTDIR;
        return answer;
    }
    struct statfs space {};
    if (!isOnMount(folder.get(), question.mount)) {
        answer.gone = true;
    } else if (::fstatfs(folder.get(), &space) != 0) {
        answer.error = errno;
    } else {
        const auto unit =
            static_cast<std::uint64_t>(space.f_frsize != 0 ? space.f_frsize : space.f_bsize);
        answer.total = bytesOf(space.f_blocks, unit);
        answer.free = std::min(bytesOf(space.f_bavail, unit), answer.total);
        const auto unused = std::min(bytesOf(space.f_bfree, unit), answer.total);
        answer.reserved = unused - std::min(answer.free, unused);
    }
    return answer;
}

struct LinuxVolumesSpace::Shared {
    struct Errand {
        SpaceQuestion question;
        Clock::time_point asked;
        Clock::time_point deadline;  // until when a caller waits
        SpaceAnswer answer;
        bool done = false;
    };
    using ErrandRef = std::shared_ptr<Errand>;

    Shared(std::chrono::milliseconds howLong, Ask how) : patience(howLong), ask(std::move(how)) {}

    const std::chrono::milliseconds patience;
    const Ask ask;
    std::mutex mutex;  // guards all that follows, the errands included
    std::condition_variable hasWork;
    std::condition_variable hasAnswer;
    std::map<SpaceQuestion, ErrandRef> open;  // waiting or under way, of all callers
    std::deque<ErrandRef> waiting;
    std::map<SpaceQuestion, SpaceAnswer> late;  // answers that came when nobody waited any more
    std::size_t threads = 0;
    std::size_t idle = 0;
    std::size_t answers = 0;  // ever given; a stall is when this stands still
    bool ending = false;

    // Runs on each thread. One thread stays when there is nothing to do.
    static void serve(const std::shared_ptr<Shared>& shared) {
        std::unique_lock lock(shared->mutex);
        for (;;) {
            while (!shared->waiting.empty() && !shared->ending) shared->serveOne(lock);
            if (shared->ending || shared->idle > 0) break;
            ++shared->idle;
            shared->hasWork.wait(lock, [&] { return shared->ending || !shared->waiting.empty(); });
            --shared->idle;
        }
        --shared->threads;
    }

    void serveOne(std::unique_lock<std::mutex>& lock) {
        const ErrandRef errand = waiting.front();
        waiting.pop_front();
        const SpaceQuestion question = errand->question;
        lock.unlock();
        const SpaceAnswer answer = ask(question);
        lock.lock();
        errand->answer = answer;
        errand->done = true;
        open.erase(question);
        if (Clock::now() >= errand->asked + patience && late.size() < kMostLateAnswers)
            late[question] = answer;
        ++answers;
        hasAnswer.notify_all();
    }

    // Threads for what waits. Without any, what waits is given up: asking on the caller's thread
    // could hold it for ever.
    static void addThreads(const std::shared_ptr<Shared>& shared, std::size_t count) {
        for (; count > 0; --count) {
            if (!startThread([shared] { serve(shared); })) break;
            ++shared->threads;
        }
        if (shared->threads == 0) shared->giveUp();
    }

    void giveUp() {
        for (const ErrandRef& errand : waiting) {
            errand->answer.error = EAGAIN;
            errand->done = true;
            open.erase(errand->question);
        }
        waiting.clear();
        hasAnswer.notify_all();
    }

    ErrandRef add(const SpaceQuestion& question, Clock::time_point now,
                  std::chrono::milliseconds wait) {
        auto errand = std::make_shared<Errand>(Errand{question, now, now + wait, {}, false});
        waiting.push_back(errand);
        return open[question] = std::move(errand);
    }

    // A mount that answered too late last time gives that answer now, and is asked again for the
    // next time meanwhile: a slow server is then a walk behind, rather than a second of waiting in
    // each and missing from all of them.
    ErrandRef enter(const SpaceQuestion& question, Clock::time_point now) {
        if (const auto known = open.find(question); known != open.end()) return known->second;
        const auto answered = late.extract(question);
        if (answered.empty()) return add(question, now, patience);
        add(question, now, std::chrono::milliseconds(0));
        return std::make_shared<Errand>(Errand{question, now, now, answered.mapped(), true});
    }
};

LinuxVolumesSpace::LinuxVolumesSpace(std::chrono::milliseconds patience, Ask ask)
    : m_shared(std::make_shared<Shared>(patience, std::move(ask))) {}

LinuxVolumesSpace::~LinuxVolumesSpace() {
    const std::lock_guard lock(m_shared->mutex);
    m_shared->ending = true;
    m_shared->hasWork.notify_all();
}

std::vector<SpaceAnswer> LinuxVolumesSpace::ask(const std::vector<SpaceQuestion>& questions) {
    Shared& shared = *m_shared;
    std::unique_lock lock(shared.mutex);
    std::vector<Shared::ErrandRef> errands;
    errands.reserve(questions.size());
    for (const SpaceQuestion& question : questions)
        errands.push_back(shared.enter(question, Clock::now()));
    if (!shared.waiting.empty() && shared.idle == 0) Shared::addThreads(m_shared, 1);
    shared.hasWork.notify_one();
    for (std::size_t before = shared.answers;; before = shared.answers) {
        Clock::time_point latest = Clock::time_point::min();
        for (const auto& errand : errands)
            if (!errand->done) latest = std::max(latest, errand->deadline);
        const Clock::time_point now = Clock::now();
        if (latest <= now) break;
        const bool timedOut = shared.hasAnswer.wait_until(lock, std::min(latest, now + kStall)) ==
                              std::cv_status::timeout;
        if (timedOut && shared.answers == before && !shared.waiting.empty())
            Shared::addThreads(m_shared, std::min(shared.waiting.size(), kMostThreadsAtOnce));
    }
    std::vector<SpaceAnswer> answers;
    answers.reserve(errands.size());
    for (const auto& errand : errands) {
        answers.push_back(errand->answer);
        if (errand->done)
            shared.late.erase(errand->question);  // it came while somebody waited after all
        else answers.back().error = ETIMEDOUT;
    }
    return answers;
}

}  // namespace orrinvale
