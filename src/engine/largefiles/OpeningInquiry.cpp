#include "engine/largefiles/OpeningInquiry.h"

#include <algorithm>
#include <condition_variable>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

#include "engine/largefiles/FileNodeTree.h"
#include "platform/accessTimes.h"

namespace orrinvale {
namespace {

std::vector<std::string> placesOf(const FileNodeTree& tree) {
    std::vector<std::string> places;
    for (const FileNode* const first : tree.firstOfDevices()) places.push_back(first->path());
    return places;
}

}  // namespace

struct OpeningInquiry::State {
    State(std::vector<std::string> asked, Ask how)
        : places(std::move(asked)), ask(std::move(how)), answers(places.size()) {
        for (std::size_t number = places.size(); number-- > 0;) next.push_back(number);
    }

    // The thread that asks may stay in there for good.
    void run() {
        std::unique_lock lock(mutex);
        while (!next.empty()) {
            const std::size_t number = next.back();
            next.pop_back();
            lock.unlock();
            const auto keeps = ask ? ask(places[number]) : keepsAccessTimes(places[number]);
            lock.lock();
            if (!keeps) {
                failed.push_back(number);
                continue;
            }
            answers[number] = *keeps ? OpeningNotes::Kept : OpeningNotes::NotKept;
            if (++answered == places.size()) isComplete.notify_all();
        }
    }

    const std::vector<std::string> places;
    const Ask ask;
    std::mutex mutex;
    std::condition_variable isComplete;
    std::vector<OpeningNotes> answers;
    std::vector<std::size_t> next, failed;  // the last is asked first
    std::size_t answered = 0;
};

void OpeningInquiry::ask(const std::shared_ptr<State>& state, std::size_t places) {
    try {
        for (std::size_t i = 0; i < std::min(places, mostAtOnce); ++i)
            std::thread([state] { state->run(); }).detach();
    } catch (const std::system_error&) {
        // Those that could be had ask; without any nothing is known, as of disks that hang.
    }
}

OpeningInquiry::OpeningInquiry(std::vector<std::string> places, Ask ask)
    : m_state(std::make_shared<State>(std::move(places), std::move(ask))) {
    OpeningInquiry::ask(m_state, m_state->places.size());
}

OpeningInquiry::OpeningInquiry(const FileNodeTree& tree) : OpeningInquiry(placesOf(tree)) {}

std::vector<OpeningNotes> OpeningInquiry::wait(std::chrono::milliseconds patience) const {
    std::unique_lock lock(m_state->mutex);
    if (const std::size_t failed = m_state->failed.size(); failed != 0) {
        m_state->next.insert(m_state->next.end(), m_state->failed.begin(), m_state->failed.end());
        m_state->failed.clear();
        ask(m_state, failed);
    }
    m_state->isComplete.wait_for(lock, patience,
                                 [this] { return m_state->answered == m_state->places.size(); });
    return m_state->answers;
}

}  // namespace orrinvale
