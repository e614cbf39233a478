// The list comes first, and then row by row how much of it is in the trash still, which takes a
// look at all that lies there.
#include "ui/duplicates/HistoryDesk.h"

#include <QAbstractButton>
#include <QTimer>
#include <algorithm>
#include <chrono>
#include <utility>

#include "engine/base/Date.h"
#include "engine/duplicates/plan/PlanHistory.h"
#include "services/foundation/runAside.h"
#include "ui/duplicates/HistoryPanel.h"
#include "ui/duplicates/trashWords.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/dialogs/LineList.h"
#include "ui/kit/dialogs/Sheet.h"
#include "ui/kit/dialogs/failureWords.h"
#include "ui/kit/lists/TickOutline.h"

namespace orrinvale {
namespace {

std::vector<HistoryRow> historyRows(const PlanHistory& history) {
    std::vector<HistoryRow> rows;
    for (const std::string& id : history.ids()) {
        HistoryRow row;
        row.id = id;
        constexpr std::int64_t perMillisecond = 1'000'000;
        if (const auto when = PlanHistory::timeOf(id))
            row.when =
                QDateTime::fromMSecsSinceEpoch(when->nanoseconds / perMillisecond).toLocalTime();
        const auto sums = history.summaryOf(id);
        if (sums) {
            row.entries = sums->entries;
            row.bytes = sums->bytes;
        } else {
            row.fault = sums.error();
        }
        rows.push_back(std::move(row));
    }
    std::ranges::reverse(rows);
    return rows;
}

}  // namespace

HistoryDesk::HistoryDesk(const PageServices& services, QObject* parent)
    : QObject(parent), m_services(services), m_undoing(services) {}

HistoryDesk::~HistoryDesk() {
    if (m_stopCounting) *m_stopCounting = true;
}

void HistoryDesk::open(QWidget* window) {
    if (window == nullptr || m_sheet != nullptr || isRunning()) return;
    m_window = window;
    auto* const panel = new HistoryPanel;
    m_panel = panel;
    m_sheet = new Sheet(*window, panel);  // ends itself
    connect(panel->restoreButton, &QAbstractButton::clicked, this, &HistoryDesk::restore);
    connect(panel->list, &QTreeView::activated, this, &HistoryDesk::restore);
    connect(panel->clearButton, &QAbstractButton::clicked, this, &HistoryDesk::clear);
    connect(panel->closeButton, &QAbstractButton::clicked, this, &HistoryDesk::close);
    connect(panel->stopButton, &QAbstractButton::clicked, this, [this] {
        if (m_panel == nullptr) return;
        m_panel->stopButton->setEnabled(false);
        stop();
    });
    connect(panel->failedLink, &QAbstractButton::clicked, this, [this] {
        if (m_panel != nullptr) showLineList(m_window, m_panel->failedLink->text(), m_failedLines);
    });
    connect(m_sheet, &Sheet::cancelled, this, [this] {
        if (isRunning()) stop();
        else close();
    });
    m_sheet->open(panel->list);
    read();
}

void HistoryDesk::close() {
    if (m_sheet == nullptr) return;
    if (m_stopCounting) *m_stopCounting = true;
    m_sheet->close({});
    m_sheet = nullptr;
    m_panel = nullptr;
}

void HistoryDesk::read() {
    const auto worker = runAside(
        this, "history",
        [history = PlanHistory(m_services.stateFolder)] { return historyRows(history); },
        [this](std::vector<HistoryRow> rows) {
            if (m_panel == nullptr) return;
            m_uncounted.clear();
            for (const HistoryRow& each : rows)
                if (each.fault.empty()) m_uncounted.push_back(each.id);
            std::ranges::reverse(m_uncounted);
            m_panel->setRows(std::move(rows));
            if (m_stopCounting) *m_stopCounting = true;
            m_stopCounting = std::make_shared<std::atomic<bool>>(false);
            countNext();
        });
    if (worker == nullptr)
        m_panel->showEnd(inWords(std::string("Resource temporarily unavailable")), {});
}

// One after another, so that the newest are told at once.
void HistoryDesk::countNext() {
    if (m_panel == nullptr || m_uncounted.empty()) return;
    const std::string id = std::move(m_uncounted.back());
    m_uncounted.pop_back();
    const auto worker = runAside(
        this, "historyCount",
        [files = m_services.files, history = PlanHistory(m_services.stateFolder), id,
         stop = m_stopCounting]() -> tl::expected<std::size_t, std::string> {
            const auto noted = history.load(id);
            if (!noted) return tl::unexpected(noted.error());
            return countInTrash(*files, FolderVariables::ofThisProcess(), noted->plan,
                                noted->folders, *stop);
        },
        [this, id, stop = m_stopCounting](const tl::expected<std::size_t, std::string>& count) {
            if (m_panel == nullptr || *stop) return;
            m_panel->setInTrash(id, count);
            countNext();
        });
    if (worker != nullptr) return;
    constexpr std::chrono::seconds pause(1);  // until there is a thread
    QTimer::singleShot(pause, this, [this, id, stop = m_stopCounting] {
        if (*stop) return;
        m_uncounted.push_back(id);
        countNext();
    });
}

void HistoryDesk::restore() {
    if (m_panel == nullptr || isRunning() || m_panel->chosen().empty()) return;
    const std::string id = m_panel->chosen();
    m_panel->showRunning();
    m_undoing.begin(id, [this](const UndoErrand::Result& result) { ended(result); });
    Q_EMIT runningChanged();
}

void HistoryDesk::ended(const UndoErrand::Result& result) {
    m_failedLines = result ? leftLines(*result) : QStringList{inWords(result.error())};
    Q_EMIT runningChanged();
    if (m_panel == nullptr) return;
    read();
    m_panel->showEnd(result ? backText(*result) : tr("It could not be brought back"),
                     result ? leftText(*result) : tr("Why?"));
}

void HistoryDesk::clear() {
    if (m_panel == nullptr) return;
    Alert question;
    question.title = tr("Forget these removals?");
    question.text =
        tr("What is in the trash stays there, and can be restored by the file manager.");
    question.buttons = QStringList{tr("Clear"), tr("Cancel")};
    question.cancelButton = 1;
    m_services.dialogs->alert(m_window, question, [self = QPointer(this)](int button) {
        if (self == nullptr || button != 0 || self->m_panel == nullptr) return;
        const auto tell = [self] {
            self->m_panel->showEnd(HistoryDesk::tr("Some could not be forgotten"), {});
        };
        const auto worker = runAside(
            self.data(), "historyClear",
            [history = PlanHistory(self->m_services.stateFolder)] { return history.clear(); },
            [self, tell](bool isClear) {
                if (self->m_panel == nullptr) return;
                self->read();
                if (!isClear) tell();
            });
        if (worker == nullptr) tell();
    });
}

}  // namespace orrinvale
