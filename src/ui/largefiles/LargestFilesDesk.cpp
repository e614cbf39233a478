// One timer does the work: it gathers what is to be listed, then counts what is ticked in it.
#include "ui/largefiles/LargestFilesDesk.h"

#include <QDateTime>
#include <QHeaderView>
#include <QLocale>
#include <QMenu>
#include <algorithm>
#include <array>
#include <limits>
#include <string>
#include <utility>

#include "engine/base/saturating.h"
#include "engine/largefiles/FileAge.h"
#include "engine/largefiles/NodeSelection.h"
#include "services/foundation/runAside.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/largefiles/LargestFilesView.h"

namespace orrinvale {
namespace {

// Of the main thread's time in one turn, and nodes between two looks at the clock.
constexpr qint64 listTurnMilliseconds = 8;
constexpr std::size_t nodesAtOnce = 4096;
// Rows that went leave the view so often at most.
constexpr std::chrono::milliseconds betweenRests{200};
// Disks that do not hang answer at once.
constexpr std::chrono::milliseconds forFirstAnswers{300};
constexpr std::chrono::seconds forLateAnswers{5};

constexpr std::array listedKinds{FileKind::Documents, FileKind::Music,    FileKind::Videos,
                                 FileKind::Archives,  FileKind::Pictures, FileKind::Others};

struct ListedAge {
    QString title;
    std::uint64_t days = 0;
    bool isOfOpening = false;
};

std::vector<ListedAge> listedAges() {
    constexpr std::uint64_t halfYear = 182;
    return {{LargestFilesDesk::tr("Any age")},
            {LargestFilesDesk::tr("Not changed for a month"), daysOfMonth},
            {LargestFilesDesk::tr("Not changed for half a year"), halfYear},
            {LargestFilesDesk::tr("Not changed for a year"), daysOfYear},
            {LargestFilesDesk::tr("Not opened for a month"), daysOfMonth, true},
            {LargestFilesDesk::tr("Not opened for half a year"), halfYear, true},
            {LargestFilesDesk::tr("Not opened for a year"), daysOfYear, true}};
}

QString withArrow(const QString& title) { return title + QStringLiteral(" \u25BE"); }

}  // namespace

LargestFilesDesk::LargestFilesDesk(LargestFilesView& view, LargestFilesModel::IconSource icons,
                                   QObject* parent)
    : QObject(parent),
      m_view(view),
      m_model(std::move(icons), [this](FileNode& node) { Q_EMIT boxClicked(&node); }) {
    LargestFilesOutline& list = *view.filesList;
    list.setModel(&m_model);
    list.header()->setSortIndicator(m_sortColumn, Qt::DescendingOrder);
    connect(list.header(), &QHeaderView::sectionClicked, this, &LargestFilesDesk::sortBy);
    connect(list.headerBox(), &QAbstractButton::clicked, this, [this] {
        showHeaderBox();  // the click has changed it already
        Q_EMIT headerClicked(m_list == nullptr || m_ticked < m_list->count());
    });
    connect(view.kindBtn, &QAbstractButton::clicked, this, &LargestFilesDesk::showKindMenu);
    connect(view.ageBtn, &QAbstractButton::clicked, this, &LargestFilesDesk::showAgeMenu);
    m_timer.setInterval(0);
    connect(&m_timer, &QTimer::timeout, this, &LargestFilesDesk::takeTurn);
    m_pause.setSingleShot(true);
    connect(&m_pause, &QTimer::timeout, this, &LargestFilesDesk::refresh);
    showFilters();
}

void LargestFilesDesk::setTree(std::shared_ptr<FileNodeTree> tree) {
    m_building.reset();
    m_list.reset();
    m_model.setList(nullptr, nullptr, true);
    m_tree = std::move(tree);
    m_inquiry.reset();
    m_wish.openings.clear();
    m_ticked = m_tickedBytes = 0;
    m_isAnew = true;
    m_pause.stop();
    showHeaderBox();
    showNote();
    if (m_tree == nullptr) return m_timer.stop();
    if (m_isShown) start(true);
    m_inquiry = std::make_shared<const OpeningInquiry>(*m_tree);
    askOfOpenings(forFirstAnswers);
}

// What hangs is asked for again as long as the tree is there: it may come back.
void LargestFilesDesk::askOfOpenings(std::chrono::milliseconds patience) {
    runAside(
        this, "notes of opening",
        [inquiry = m_inquiry, patience] { return inquiry->wait(patience); },
        [this, asked = std::weak_ptr(m_inquiry)](std::vector<OpeningNotes> openings) {
            if (m_inquiry == nullptr || asked.lock() != m_inquiry) return;
            if (openings != m_wish.openings) {
                m_wish.openings = std::move(openings);
                m_isOutdated = true;
                refresh();
            }
            if (std::ranges::count(m_wish.openings, OpeningNotes::Unanswered) > 0)
                askOfOpenings(forLateAnswers);
        });
}

void LargestFilesDesk::setShown(bool isShown) {
    m_isShown = isShown;
    refresh();
}

void LargestFilesDesk::refresh() {
    if (!m_isShown || m_tree == nullptr) return;
    if (m_isOutdated) return start(m_isAnew);
    const bool isBuilt = m_list != nullptr && m_list->isCurrent();
    if (!isBuilt) {
        const bool isUnderWay = m_building != nullptr &&
                                (m_isRest ? m_building->isOnlyLess() : m_building->isCurrent());
        if (isUnderWay) return;
        const bool isOtherWanted = m_isAnew || (m_building != nullptr && !m_isRest);
        if (!isOtherWanted && m_list != nullptr && m_list->isOnlyLess()) startRest();
        else start(m_isAnew);
        return;
    }
    m_model.refresh();
    countAnew();
    m_timer.start();
}

void LargestFilesDesk::start(bool isAnew) {
    m_isAnew = isAnew;
    m_isOutdated = false;
    m_isRest = false;
    m_building = std::make_unique<LargestFiles>(*m_tree, m_wish);
    m_timer.start();
}

void LargestFilesDesk::startRest() {
    if (m_pause.isActive()) return;
    m_isRest = true;
    m_building = std::make_unique<LargestFiles>(m_list);
    m_timer.start();
}

void LargestFilesDesk::settle() {
    const bool isLeftOut =
        m_list != nullptr && m_list->unknownCount() + m_list->unansweredCount() > 0;
    if (isLeftOut && m_isShown && m_tree != nullptr) start(m_isAnew);
    else refresh();
}

void LargestFilesDesk::takeTurn() {
    QElapsedTimer clock;
    clock.start();
    if (m_building != nullptr) {
        if (m_isRest ? !m_building->isOnlyLess() : !m_building->isCurrent()) start(m_isAnew);
        while (clock.elapsed() < listTurnMilliseconds)
            if (m_building->step(nodesAtOnce)) return showList();
        return;
    }
    if (mayCount() && !countTicked(clock, listTurnMilliseconds)) return;
    m_timer.stop();
}

void LargestFilesDesk::showList() {
    QElapsedTimer clock;
    clock.start();
    m_list = std::move(m_building);
    m_model.setList(m_tree, m_list, m_isAnew);
    if (m_isAnew) {
        m_view.filesList->setCurrentIndex(m_model.index(0, LargestFilesModel::Name));
        m_view.filesList->scrollToTop();
    }
    m_isAnew = false;
    countAnew();
    showNote();
    Q_EMIT changed();
    // The rows that are laid out may be a million, and somebody may be scrolling through them.
    if (m_isRest)
        m_pause.start(std::max(betweenRests, 10 * std::chrono::milliseconds(clock.elapsed())));
}

// True at the end. Rows that come into order meanwhile change their places.
bool LargestFilesDesk::countTicked(const QElapsedTimer& clock, qint64 milliseconds) {
    if (m_counted == 0 || m_ordered != m_list->orderedCount()) {
        m_counted = 0;
        m_countedTicked = m_countedBytes = 0;
        m_ordered = m_list->orderedCount();
    }
    const auto rows = m_list->rows();
    while (m_counted < rows.size()) {
        if (clock.elapsed() >= milliseconds) return false;
        for (std::size_t left = nodesAtOnce; left > 0 && m_counted < rows.size(); --left) {
            const FileNode& node = *rows[m_counted++].node;
            if (standingState(node) != FileNode::Selected) continue;
            ++m_countedTicked;
            addSaturating(m_countedBytes, node.size());
        }
    }
    m_ticked = m_countedTicked;
    m_tickedBytes = m_countedBytes;
    m_isCounted = true;
    showHeaderBox();
    Q_EMIT changed();
    return true;
}

void LargestFilesDesk::countAnew() {
    m_counted = 0;
    m_isCounted = false;
}

bool LargestFilesDesk::mayCount() const {
    return m_list != nullptr && m_building == nullptr && m_list->isCurrent();
}

std::optional<std::uint64_t> LargestFilesDesk::tickedBytes() const {
    return m_isCounted && mayCount() ? std::optional(m_tickedBytes) : std::nullopt;
}

void LargestFilesDesk::finishCounting() {
    if (m_isCounted || !mayCount()) return;
    QElapsedTimer clock;
    clock.start();
    static_cast<void>(countTicked(clock, std::numeric_limits<qint64>::max()));
}

void LargestFilesDesk::showHeaderBox() {
    m_view.filesList->headerBox()->setState(m_ticked == 0                 ? TickState::Nothing
                                            : m_ticked == m_list->count() ? TickState::All
                                                                          : TickState::Some);
}

void LargestFilesDesk::showNote() {
    QString note;
    if (m_tree == nullptr) note = tr("The files are listed once everything has been read");
    else if (m_list != nullptr && m_list->unansweredCount() > 0) {
        // Before the first answers nobody knows what belongs in the list.
        if (!m_wish.openings.empty())
            note = tr("%1 left out: their disk does not answer whether openings are noted there")
                       .arg(QLocale().toString(qulonglong(m_list->unansweredCount())));
    } else if (m_list != nullptr && m_list->unknownCount() > 0)
        note = tr("%1 left out: it is not noted there when a file is opened")
                   .arg(QLocale().toString(qulonglong(m_list->unknownCount())));
    else if (m_list != nullptr && m_list->count() == 0) note = tr("No such files");
    m_view.listNote->setText(note);
}

void LargestFilesDesk::sortBy(int column) {
    const auto key = m_model.sortKey(column);
    QHeaderView& header = *m_view.filesList->header();
    // The toolkit has moved its chevron already.
    const bool isReversed = key && column == m_sortColumn && !m_wish.isReversed;
    if (key) m_sortColumn = column;
    const auto order = static_cast<FileWish::Order>(key.value_or(int(m_wish.order)));
    const bool isSize = order == FileWish::Order::Size;
    const bool isDown = isSize != (key ? isReversed : m_wish.isReversed);
    header.setSortIndicator(m_sortColumn, isDown ? Qt::DescendingOrder : Qt::AscendingOrder);
    if (!key) return;
    FileWish wish = m_wish;
    wish.order = order;
    wish.isReversed = isReversed;
    choose(std::move(wish));
}

void LargestFilesDesk::choose(FileWish wish) {
    m_wish = std::move(wish);
    showFilters();
    if (m_tree != nullptr && m_isShown) start(true);
    else m_isAnew = true;
}

QMenu* LargestFilesDesk::makeMenu(const char* name) {
    auto* const menu = new QMenu(&m_view);
    menu->setObjectName(QLatin1String(name));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    return menu;
}

void LargestFilesDesk::showKindMenu() {
    QMenu* const menu = makeMenu("kindMenu");
    const auto add = [&](const QString& title, const std::vector<FileKind>& kinds) {
        QAction* const action = menu->addAction(title, this, [this, kinds] {
            FileWish wish = m_wish;
            wish.kinds = kinds;
            choose(std::move(wish));
        });
        action->setCheckable(true);
        action->setChecked(kinds == m_wish.kinds);
    };
    add(tr("All kinds"), {});
    menu->addSeparator();
    for (const FileKind kind : listedKinds) add(fileKindTitle(kind), {kind});
    menu->popup(m_view.kindBtn->mapToGlobal(QPoint(0, m_view.kindBtn->height())));
    menu->setActiveAction(menu->actions().front());
}

// Where no disk of the tree notes openings, a person sees that here.
void LargestFilesDesk::showAgeMenu() {
    QMenu* const menu = makeMenu("ageMenu");
    const std::vector<ListedAge> ages = listedAges();
    const bool isOpeningKept = std::ranges::any_of(
        m_wish.openings, [](OpeningNotes each) { return each != OpeningNotes::NotKept; });
    for (std::size_t i = 0; i < ages.size(); ++i) {
        const ListedAge& age = ages[i];
        if (i == 1 || (age.isOfOpening && !ages[i - 1].isOfOpening)) menu->addSeparator();
        QAction* const action = menu->addAction(age.title, this, [this, age, i] {
            FileWish wish = m_wish;
            wish.writtenBy = wish.openedBy = std::nullopt;
            const auto last =
                lastSecondOf(age.days * secondsOfDay, QDateTime::currentSecsSinceEpoch());
            if (age.days != 0) (age.isOfOpening ? wish.openedBy : wish.writtenBy) = last;
            m_age = int(i);
            choose(std::move(wish));
        });
        action->setCheckable(true);
        action->setChecked(int(i) == m_age);
        action->setEnabled(!age.isOfOpening || isOpeningKept || m_tree == nullptr);
    }
    if (!isOpeningKept && m_tree != nullptr)
        menu->addAction(tr("It is not noted here when files are opened"))->setEnabled(false);
    menu->popup(m_view.ageBtn->mapToGlobal(QPoint(0, m_view.ageBtn->height())));
    menu->setActiveAction(menu->actions().front());
}

void LargestFilesDesk::showFilters() {
    m_view.kindBtn->setText(
        withArrow(m_wish.kinds.empty() ? tr("All kinds") : fileKindTitle(m_wish.kinds.front())));
    m_view.ageBtn->setText(withArrow(listedAges()[std::size_t(m_age)].title));
}

}  // namespace orrinvale
