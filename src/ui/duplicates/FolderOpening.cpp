// The order of the steps: a place in the model, its turn, a thread, and the rows.
#include "ui/duplicates/FolderOpening.h"

#include <QTimer>
#include <algorithm>
#include <chrono>
#include <cstddef>
#include <utility>

#include "engine/duplicates/tree/SimpleTreeNode.h"
#include "services/foundation/runAside.h"
#include "ui/duplicates/DuplicateResultModel.h"
#include "ui/page/PageServices.h"

namespace orrinvale {
namespace {

constexpr std::ptrdiff_t mostListings = 4;
constexpr std::size_t mostThreads = 32;  // with those that nobody waits for any more
// Of most folders the rows are there before that, and nothing flickers.
constexpr std::chrono::milliseconds beforeNotice{200};

}  // namespace

FolderOpening::FolderOpening(const PageServices& services, DuplicateResultModel& model)
    : m_services(services), m_model(model) {}

void FolderOpening::open(const QModelIndex& row) {
    const OpenedFolders::Stop opening = m_model.openFolder(row);
    if (opening == nullptr) return;
    QTimer::singleShot(beforeNotice, this, [this, opening] { m_model.showBeingRead(opening); });
    m_waiting.push_back(opening);
    listNext();
}

void FolderOpening::close(const QModelIndex& row) {
    m_model.closeFolder(row);
    listNext();
}

void FolderOpening::listNext() {
    const auto isAwaited = [](const OpenedFolders::Stop& each) { return !*each; };
    while (!m_waiting.empty() && m_running.size() < mostThreads &&
           std::ranges::count_if(m_running, isAwaited) < mostListings) {
        const OpenedFolders::Stop opening = std::move(m_waiting.front());
        m_waiting.pop_front();
        if (!*opening) list(opening);
    }
}

void FolderOpening::list(const OpenedFolders::Stop& opening) {
    const std::string path = m_model.pathOfOpening(opening);
    m_running.push_back(opening);
    const auto ended = [this, opening](FolderContents contents) {
        std::erase(m_running, opening);
        m_model.showContents(opening, std::move(contents));
        listNext();
    };
    const auto worker = runAside(
        this, "listFolder",
        [files = m_services.files, path, opening] { return contentsOf(*files, path, *opening); },
        ended);
    if (worker != nullptr) return;
    m_running.pop_back();
    m_model.showContents(opening, {.entries = {}, .fault = "Resource temporarily unavailable"});
}

}  // namespace orrinvale
