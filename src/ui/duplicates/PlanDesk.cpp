// Plans are read, written and looked through aside: one may have 200,000 entries.
#include "ui/duplicates/PlanDesk.h"

#include <QAbstractButton>
#include <QDate>
#include <QDir>
#include <QFile>
#include <QLineEdit>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "engine/base/endAside.h"
#include "engine/duplicates/plan/PlanFile.h"
#include "engine/duplicates/plan/PlanRemoval.h"
#include "engine/duplicates/plan/UndoableRemoval.h"
#include "engine/duplicates/plan/entriesOutside.h"
#include "engine/duplicates/plan/planOfTicks.h"
#include "engine/settings/SettingsKeys.h"
#include "engine/settings/UserDefaults.h"
#include "engine/text/UtilityFunction.h"
#include "platform/files.h"
#include "platform/paths.h"
#include "services/foundation/runAside.h"
#include "ui/duplicates/PlanPanel.h"
#include "ui/duplicates/SavePlanPanel.h"
#include "ui/duplicates/entryWords.h"
#include "ui/duplicates/removalWays.h"
#include "ui/duplicates/trashWords.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/dialogs/Dialogs.h"
#include "ui/kit/dialogs/LineList.h"
#include "ui/kit/dialogs/Sheet.h"
#include "ui/kit/dialogs/failureWords.h"
#include "ui/kit/dialogs/removalWords.h"
#include "ui/kit/lists/TickOutline.h"

namespace orrinvale {
namespace {

QString shownPlanPath(const std::string& path) { return onOneLine(QString::fromStdString(path)); }

struct LoadedPlan {
    std::shared_ptr<const DuplicatePlan> plan;
    PlanFacts facts;
    std::string fault;
};

LoadedPlan loadedPlan(const FileSystem& files, const std::string& path) {
    auto plan = loadPlan(path);
    LoadedPlan loaded;
    if (!plan) {
        loaded.fault = plan.error();
        return loaded;
    }
    loaded.facts.sums = sumsOf(*plan);
    loaded.facts.outside = entriesOutside(files, *plan);
    loaded.plan = std::make_shared<const DuplicatePlan>(*std::move(plan));
    return loaded;
}

constexpr std::string_view noThreadForPlan = "Resource temporarily unavailable";

}  // namespace

/// A plan that may be kept, and what had to stay out of it.
struct PlanDesk::Draft {
    std::shared_ptr<const DuplicatePlan> plan;
    LeftOutOfPlan left;
    PlanSums sums;
};

/// One removal by a plan.
struct PlanDesk::Run {
    bool isToTrash = false;
    bool isStopped = false;  // before it had begun
    std::shared_ptr<PlanRemoval> list;
    std::shared_ptr<UndoableRemoval> undoable;
    std::unique_ptr<RemovalJob> job;
    std::vector<Settled> settled;
    std::unordered_set<std::string> folders;  // of the plan, that go
};

PlanDesk::PlanDesk(const PageServices& services, QObject* parent)
    : QObject(parent), m_services(services), m_undoing(services) {
    constexpr int often = 100;  // milliseconds
    m_timer.setInterval(often);
    connect(&m_timer, &QTimer::timeout, this, [this] {
        if (m_panel != nullptr && m_run && m_run->job)
            m_panel->showProgress(m_run->job->progress(), m_run->isToTrash);
    });
}

PlanDesk::~PlanDesk() { stop(); }

void PlanDesk::stop() {
    m_undoing.stop();
    if (!m_run) return;
    m_run->isStopped = true;
    if (m_run->job) m_run->job->stop();
}

void PlanDesk::closeSheet() {
    if (m_sheet == nullptr) return;
    m_sheet->close({});
    m_sheet = nullptr;
    m_panel = nullptr;
    m_savePanel = nullptr;
    if (m_plan) endAside(std::exchange(m_plan, nullptr));
}

void PlanDesk::save(QWidget* window, DuplicatePlan plan,
                    std::shared_ptr<const DuplicateFilesOpt> search) {
    if (window == nullptr || m_sheet != nullptr || m_isDrafting) return;
    m_isDrafting = true;
    const auto whole = std::make_shared<DuplicatePlan>(std::move(plan));
    const auto draft = [whole, search = std::move(search), files = m_services.files] {
        Draft made;
        const std::size_t folders = search ? addListings(*whole, *files, *search) : 0;
        made.left = takeOutUnplannable(*whole);
        made.left.folders = folders;
        if (search) addContents(*whole, *search);
        made.sums = sumsOf(*whole);
        made.plan = whole;
        return made;
    };
    const auto ask = [this, window = QPointer(window)](const Draft& made) {
        m_isDrafting = false;
        if (window != nullptr && m_sheet == nullptr && !isRunning()) askWhere(window, made);
    };
    if (runAside(this, "draftPlan", draft, ask) == nullptr) ask(draft());
}

void PlanDesk::askWhere(QWidget* window, const Draft& draft) {
    m_plan = draft.plan;
    const std::string folder =
        m_folder.empty() ? QFile::encodeName(QDir::homePath()).toStdString() : m_folder;
    const QString name =
        tr("Duplicates %1").arg(QDate::currentDate().toString(Qt::ISODate)) + u".json";
    auto* const panel = new SavePlanPanel(
        draft.sums, draft.left, QFile::decodeName(QByteArray::fromStdString(folder)) + u'/' + name);
    m_savePanel = panel;
    m_sheet = new Sheet(*window, panel);  // ends itself
    connect(panel->cancelButton, &QAbstractButton::clicked, this, &PlanDesk::closeSheet);
    connect(m_sheet, &Sheet::cancelled, this, &PlanDesk::closeSheet);
    connect(panel->chooseButton, &QAbstractButton::clicked, this, [this, window] {
        PathChoice choice;
        choice.title = tr("Folder for the plan");
        m_services.dialogs->choosePaths(window, choice, [guarded = m_savePanel](const auto& paths) {
            if (guarded != nullptr && !paths.empty()) guarded->setFolder(paths.front());
        });
    });
    connect(panel->saveButton, &QAbstractButton::clicked, this, [this] {
        if (m_savePanel != nullptr) savePlanAt(m_savePanel->path());
    });
    m_sheet->open(panel->pathField);
}

void PlanDesk::savePlanAt(const std::string& path) {
    m_savePanel->saveButton->setEnabled(false);
    const auto ended = [this, path](const std::optional<std::string>& fault) {
        if (m_savePanel == nullptr) return;
        if (fault) {
            m_savePanel->saveButton->setEnabled(true);
            m_savePanel->showFault(tr("Could not be saved: %1").arg(inWords(*fault)));
            return;
        }
        m_folder = folderOf(path);
        closeSheet();
    };
    const auto worker = runAside(
        this, "savePlan", [path, plan = m_plan] { return savePlan(path, *plan); }, ended);
    if (worker == nullptr) ended(std::string(noThreadForPlan));
}

void PlanDesk::open(QWidget* window) {
    if (window == nullptr || m_sheet != nullptr || isRunning()) return;
    m_window = window;
    PathChoice choice;
    choice.title = tr("Choose a plan");
    choice.prompt = tr("Open");
    choice.directory = m_folder;
    choice.withFiles = true;
    m_services.dialogs->choosePaths(window, choice, [self = QPointer(this)](const auto& paths) {
        if (self != nullptr && !paths.empty()) self->load(paths.front());
    });
}

void PlanDesk::load(const std::string& path) {
    const auto worker = runAside(
        this, "openPlan", [files = m_services.files, path] { return loadedPlan(*files, path); },
        [this, path](LoadedPlan loaded) {
            if (m_window == nullptr || m_sheet != nullptr || isRunning()) return;
            if (loaded.plan) {
                m_folder = folderOf(path);
                loaded.facts.name = shownPlanPath(std::string(lastPathComponent(path)));
                loaded.facts.isTrashFirst = m_services.defaults->boolForKey(trashFirstKey);
                show(std::move(loaded.plan), loaded.facts);
                return;
            }
            tellUnusable(path, loaded.fault);
        });
    if (worker == nullptr) tellUnusable(path, std::string(noThreadForPlan));
}

void PlanDesk::tellUnusable(const std::string& path, const std::string& fault) {
    Alert alert;
    alert.title = tr("This plan can not be used");
    alert.text = shownPlanPath(path) + u'\n' + inWords(fault);
    alert.severity = Alert::Severity::Warning;
    m_services.dialogs->alert(m_window, alert, [](int /*button*/) {});
}

// A sheet that slides away still takes keys and clicks, when its panel is this desk's no more.
void PlanDesk::show(std::shared_ptr<const DuplicatePlan> plan, const PlanFacts& facts) {
    m_plan = std::move(plan);
    m_sums = facts.sums;
    auto* const panel = new PlanPanel(m_plan, facts);
    m_panel = panel;
    m_sheet = new Sheet(*m_window, panel);  // ends itself
    connect(panel->trashButton, &QAbstractButton::clicked, this, [this] { begin(true); });
    connect(panel->removeButton, &QAbstractButton::clicked, this, &PlanDesk::confirmRemoval);
    connect(panel->cancelButton, &QAbstractButton::clicked, this, &PlanDesk::closeSheet);
    connect(panel->stopButton, &QAbstractButton::clicked, this, [this] {
        if (m_panel == nullptr) return;
        m_panel->stopButton->setEnabled(false);
        stop();
    });
    connect(panel->undoButton, &QAbstractButton::clicked, this, &PlanDesk::undo);
    connect(panel->failedLink, &QAbstractButton::clicked, this, [this] {
        if (m_panel != nullptr) showLineList(m_window, m_panel->failedLink->text(), m_failedLines);
    });
    connect(m_sheet, &Sheet::cancelled, this, [this] {
        if (isRunning()) stop();
        else closeSheet();
    });
    m_sheet->open(panel->list);
}

void PlanDesk::confirmRemoval() {
    if (m_panel == nullptr) return;
    Alert question = removalQuestion();
    question.text = goForGoodText({m_sums.files, m_sums.bundles}, m_sums.bytes);
    m_services.dialogs->alert(m_window, question, [self = QPointer(this)](int button) {
        if (self != nullptr && self->m_panel != nullptr && button == 0) self->begin(false);
    });
}

void PlanDesk::begin(bool isToTrash) {
    if (isRunning() || m_panel == nullptr) return;
    m_run = std::make_unique<Run>();
    m_run->isToTrash = isToTrash;
    for (const PlanGroup& group : m_plan->groups)
        for (const PlanMember& member : group.members)
            if (member.goes && member.identity.type == FileType::Folder)
                m_run->folders.insert(member.path);
    m_panel->showRunning();
    Q_EMIT runningChanged();
    const auto worker = runAside(
        this, "planRemoval",
        [files = m_services.files, plan = m_plan] {
            return std::make_shared<PlanRemoval>(*files, *plan);
        },
        [this](std::shared_ptr<PlanRemoval> list) { go(std::move(list)); });
    if (worker == nullptr) ended({});
}

void PlanDesk::go(std::shared_ptr<PlanRemoval> list) {
    if (m_run->isStopped) {
        ended({});
        return;
    }
    m_run->list = list;
    std::shared_ptr<RemovalList> all = std::move(list);
    if (m_run->isToTrash)
        all = m_run->undoable = std::make_shared<UndoableRemoval>(
            *m_services.files, m_services.stateFolder, std::move(all),
            [plan = m_plan](const std::atomic<bool>& /*stop*/) { return *plan; });
    m_run->job = std::make_unique<RemovalJob>(
        RemovalJob::Parts{m_services.files, m_services.mainQueue,
                          doorOf(*m_services.files, m_run->isToTrash), m_services.stateFolder},
        std::move(all), [this] { news(); });
    m_timer.start();
}

PlanDesk::Settled PlanDesk::settledOf(const RemovalJob::Settled& each, std::string path) const {
    const bool isFolder = m_run->folders.contains(path);
    return {std::move(path), each.gone, each.changed, 0, isFolder};
}

void PlanDesk::news() {
    if (!m_run || !m_run->job) return;
    RemovalJob::News news = m_run->job->takeNews();
    for (const RemovalJob::Settled& each : news.settled)
        if (each.gone || each.changed)
            m_run->settled.push_back(settledOf(each, m_run->list->path(each.index)));
    if (!news.ending) return;
    // It is the job's own call that is running, so that the job goes in a later turn.
    m_services.mainQueue->async([job = std::shared_ptr<RemovalJob>(std::move(m_run->job))] {});
    ended(*news.ending);
}

void PlanDesk::ended(const RemovalOutcome& outcome) {
    m_timer.stop();
    std::unique_ptr<Run> run = std::move(m_run);
    m_undoId = run->undoable ? run->undoable->undoId() : std::string();
    m_failedLines = linesByReason(outcome.stayed);
    if (m_panel != nullptr) {
        const QString text = run->isToTrash ? movedText(outcome) : removedText(outcome);
        m_panel->showEnd(text.isEmpty() ? tr("Nothing went") : text,
                         run->isToTrash ? unmovedText(outcome) : stayedText(outcome),
                         !m_undoId.empty());
    }
    Q_EMIT runningChanged();
    if (!run->settled.empty()) Q_EMIT settled(run->settled);
    forgetAside(*this, std::move(run->undoable));
    endAside(std::move(run->list));
}

void PlanDesk::undo() {
    if (isRunning() || m_panel == nullptr) return;
    m_panel->showRunning();
    m_undoing.begin(m_undoId, [this](const UndoErrand::Result& result) { undone(result); });
    Q_EMIT runningChanged();
}

void PlanDesk::undone(const UndoErrand::Result& result) {
    m_failedLines = result ? leftLines(*result) : QStringList{inWords(result.error())};
    if (m_panel != nullptr)
        m_panel->showEnd(result ? backText(*result) : tr("It could not be brought back"),
                         result ? leftText(*result) : tr("Why?"), !result || result->stopped);
    Q_EMIT runningChanged();
}

}  // namespace orrinvale
