// The thread aside sees what never changes of a record; what it finds crosses in batches.
#include "ui/uninstall/ApplicationSizes.h"

#include <algorithm>
#include <chrono>
#include <mutex>
#include <utility>
#include <vector>

#include "engine/text/UtilityFunction.h"
#include "services/foundation/runAside.h"

namespace orrinvale {
namespace {

constexpr std::chrono::milliseconds takingPause{150};

// What asks nothing but a list of packages or a small service is told before what lies on the disk
// has to be counted.
bool isQuick(const AppItems& item) {
    return item.record->type == ApplicationType::Deb || item.record->type == ApplicationType::Snap;
}

}  // namespace

struct ApplicationSizes::Work {
    struct Measured {
        std::shared_ptr<AppItems> item;
        ApplicationDetails details;
    };
    // The records in their order; their items are for the main thread.
    std::vector<std::pair<std::shared_ptr<AppItems>, std::shared_ptr<const ApplicationRecord>>>
        wanted;
    std::atomic<bool> stop{false};
    std::mutex mutex;
    std::vector<Measured> done;
};

ApplicationSizes::ApplicationSizes(Measure measure, QObject* parent)
    : QObject(parent), m_measure(std::move(measure)) {
    m_taking.setInterval(takingPause);
    connect(&m_taking, &QTimer::timeout, this, &ApplicationSizes::take);
}

ApplicationSizes::~ApplicationSizes() { stop(); }

void ApplicationSizes::stop() {
    if (m_work) m_work->stop = true;
    m_work.reset();
    m_taking.stop();
}

void ApplicationSizes::fillIn(const AppItemsArray& items) {
    stop();
    const auto work = std::make_shared<Work>();
    for (const auto& each : items)
        if (each->fileSize.empty()) work->wanted.emplace_back(each, each->record);
    std::stable_partition(work->wanted.begin(), work->wanted.end(),
                          [](const auto& each) { return isQuick(*each.first); });
    if (work->wanted.empty() || !m_measure) return;
    m_work = work;
    m_taking.start();
    runAside(
        this, "sizes of applications",
        [work, measure = m_measure] {
            for (const auto& [item, record] : work->wanted) {
                ApplicationDetails details = measure(*record, work->stop);
                if (work->stop) return;
                const std::lock_guard guard(work->mutex);
                work->done.push_back({item, std::move(details)});
            }
        },
        [this, work] {
            if (work != m_work) return;
            take();
            stop();
        });
}

void ApplicationSizes::take() {
    std::vector<Work::Measured> done;
    {
        const std::lock_guard guard(m_work->mutex);
        done.swap(m_work->done);
    }
    for (const auto& [item, details] : done) {
        item->isUpTo = details.isUpTo;
        item->fileSizeNum = details.bytes.value_or(0);
        item->fileSize =
            details.bytes ? UtilityFunction::convertVolSpace(*details.bytes) : std::string();
        if (details.lastUse) item->lastUse = Date{*details.lastUse};
    }
    if (!done.empty()) Q_EMIT changed();
}

}  // namespace orrinvale
