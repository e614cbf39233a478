// The thread holds a Work and never the operation, which may be gone before a slow disk answers.
#include "engine/cleaning/BrowseFolderOperation.h"

#include <fmt/format.h>

#include <atomic>
#include <chrono>
#include <iterator>
#include <system_error>
#include <thread>
#include <utility>

#include "engine/base/Log.h"
#include "engine/base/saturating.h"
#include "engine/cleaning/ScanErrand.h"

namespace orrinvale {
namespace {

// How soon a stop is seen.
constexpr std::chrono::milliseconds lookInterval{20};
// How long a stopped scan may take to end; one on a disk that hangs never does.
constexpr std::chrono::milliseconds endPatience{200};

void append(CategoryListing& all, CategoryListing more) {
    const auto move = [](auto& from, auto& to) {
        to.insert(to.end(), std::make_move_iterator(from.begin()),
                  std::make_move_iterator(from.end()));
    };
    move(more.rows, all.rows);
    move(more.kept, all.kept);
    move(more.closed, all.closed);
    move(more.skipped, all.skipped);
    addSaturating(all.bytes, more.bytes);
    addSaturating(all.onDisk, more.onDisk);
}

std::uint64_t itemsOf(const CategoryListing& listing) {
    std::uint64_t count = 0;
    for (const CleanRow& row : listing.rows) addSaturating(count, orrinvale::itemsOf(row));
    return count;
}

}  // namespace

std::uint64_t itemsOf(const CleanRow& row) {
    if (!row.goesWhole) return row.files;  // its folders stay
    return 1 + (row.seen != nullptr ? row.seen->count() : 0);
}

class BrowseFolderOperation::Work final : public std::enable_shared_from_this<Work> {
public:
    Work(BrowseFolderOperation& owner, const CleanParts& parts)
        : m_owner(&owner), m_parts(parts), m_posts(owner.m_posts), m_folders(owner.folderPathArr) {}

    void start() {
        try {
            std::thread([self = shared_from_this()] { self->run(); }).detach();
        } catch (const std::system_error& error) {  // no thread left for this user
            Log::line(fmt::format("Nothing is measured: {}", error.what()));
            CategoryListing none;
            none.closed.push_back({{}, error.what()});
            tellEnd(std::move(none), 0);
        }
    }
    void cancel() { m_isCancelled = true; }
    void letGo() {
        m_isCancelled = true;
        m_owner = nullptr;
    }
    [[nodiscard]] std::uint64_t entries() const { return m_entries; }

    // On any thread. Nothing of a folder that was cancelled.
    [[nodiscard]] CategoryListing measure(const std::string& folder) {
        Log::line(fmt::format("It will get size of directory: {}", folder));
        ScanErrand errand(m_parts, [folder] { return std::vector{folder}; });
        const std::uint64_t before = m_entries;
        auto state = ScanErrand::State::Running;
        while (state == ScanErrand::State::Running && !m_isCancelled) {
            state = errand.wait(lookInterval);
            m_entries = before + errand.entries();
        }
        if (m_isCancelled) {
            errand.stop();
            state = errand.wait(endPatience);
        }
        if (state == ScanErrand::State::Ended) return errand.take();
        CategoryListing none;
        if (state == ScanErrand::State::Silent)
            none.closed.push_back({folder, "no answer for 5 seconds"});
        return none;
    }

private:
    void run() {
        CategoryListing all;
        for (const std::string& folder : m_folders) {
            if (m_isCancelled) break;
            tell([folder](const BrowseFolderOperation& owner) {
                ZvScanSingleFolder.post(*owner.m_posts.center, {folder});
            });
            append(all, measure(folder));
        }
        const std::uint64_t count = itemsOf(all);
        tellEnd(std::move(all), count);
    }

    // A stop holds until the main thread has heard the end.
    void tellEnd(CategoryListing all, std::uint64_t count) {
        tell([this, listing = std::make_shared<CategoryListing>(std::move(all)),
              count](BrowseFolderOperation& owner) {
            m_owner = nullptr;
            const CleanPosts posts = owner.m_posts;
            owner.m_listing = std::move(*listing);
            if (m_isCancelled) ZvCleanCanceled.post(*posts.center);
            else ZvScanOperationFinish.post(*posts.center, {owner.m_listing.bytes, count});
        });
    }

    void tell(std::function<void(BrowseFolderOperation& owner)> news) {
        m_posts.mainQueue->async([self = shared_from_this(), news = std::move(news)] {
            if (self->m_owner != nullptr) news(*self->m_owner);
        });
    }

    BrowseFolderOperation* m_owner;  // main thread
    const CleanParts m_parts;
    const CleanPosts m_posts;
    const std::vector<std::string> m_folders;
    std::atomic<bool> m_isCancelled{false};
    std::atomic<std::uint64_t> m_entries{0};
};

BrowseFolderOperation::BrowseFolderOperation(std::vector<std::string> folders,
                                             const CleanParts& parts, CleanPosts posts)
    : folderPathArr(std::move(folders)),
      m_posts(posts),
      m_work(std::make_shared<Work>(*this, parts)) {}

BrowseFolderOperation::~BrowseFolderOperation() { m_work->letGo(); }

void BrowseFolderOperation::main() {
    if (isCancelled()) ZvCleanCanceled.post(*m_posts.center);
    else m_work->start();
}

void BrowseFolderOperation::cancel() {
    CleanOperation::cancel();
    m_work->cancel();
}

std::uint64_t BrowseFolderOperation::entriesSeen() const { return m_work->entries(); }

std::uint64_t BrowseFolderOperation::sizeOfItemAtPath(const std::string& path,
                                                      std::uint64_t* filesNum) {
    const CategoryListing listing = m_work->measure(path);
    if (filesNum != nullptr) addSaturating(*filesNum, itemsOf(listing));
    return listing.bytes;
}

}  // namespace orrinvale
