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
        : places(std::move(asked)), ask(std::move(how)), answers(places.size()) {}

    // The thread that asks may stay in there for good.
    void run() {
        std::unique_lock lock(mutex);
        while (next < places.size()) {
            const std::size_t number = next++;
            lock.unlock();
            const bool keeps = ask ? ask(places[number]) : keepsAccessTimes(places[number]);
            lock.lock();
            answers[number] = keeps ? OpeningNotes::Kept : OpeningNotes::NotKept;
            if (++answered == places.size()) isComplete.notify_all();
        }
    }

    const std::vector<std::string> places;
    const Ask ask;
    std::mutex mutex;
    std::condition_variable isComplete;
    std::vector<OpeningNotes> answers;
    std::size_t next = 0, answered = 0;
};

OpeningInquiry::OpeningInquiry(std::vector<std::string> places, Ask ask)
    : m_state(std::make_shared<State>(std::move(places), std::move(ask))) {
    const std::size_t threads = std::min(m_state->places.size(), mostAtOnce);
    try {
        for (std::size_t i = 0; i < threads; ++i)
            std::thread([state = m_state] { state->run(); }).detach();
    } catch (const std::system_error&) {
        // Those that could be had ask; without any nothing is known, as of disks that hang.
    }
}

OpeningInquiry::OpeningInquiry(const FileNodeTree& tree) : OpeningInquiry(placesOf(tree)) {}

std::vector<OpeningNotes> OpeningInquiry::wait(std::chrono::milliseconds patience) const {
    std::unique_lock lock(m_state->mutex);
    m_state->isComplete.wait_for(lock, patience,
                                 [this] { return m_state->answered == m_state->places.size(); });
    return m_state->answers;
}

}  // namespace orrinvale
