// Built once for all that is ticked; each application has its part, which the forecast fills.
#include "ui/uninstall/UninstallQuestion.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>
#include <algorithm>

#include "engine/text/UtilityFunction.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/dialogs/failureWords.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/kit/look/accessibleRole.h"
#include "ui/uninstall/UninstallAppsModel.h"

namespace orrinvale {
namespace {

constexpr int questionWidth = 560, leastHeight = 250, signSide = 40;
constexpr int boxTextWidth = 440, boxIndent = 30;

// So many are made at a time, and so many pages of the list ahead of what is seen.
constexpr std::size_t blockSize = 20;
constexpr int pagesAhead = 2;

QString lineOf(const std::string& bytes) { return onOneLine(QString::fromStdString(bytes)); }

// All of them, however many: what is not shown must not go.
QString listed(const std::vector<std::string>& names) {
    QStringList words;
    for (const std::string& each : names) words.push_back(lineOf(each));
    return words.join(QStringLiteral(", "));
}

// A path has no blanks to be broken at, and none may run out of the sheet.
QString brokenAtFolders(const std::string& path) {
    return lineOf(path).replace(QLatin1Char('/'), QStringLiteral("/\u200B"));
}

// A package may have a name that says nothing of its applications', of which there may be several.
QString titleOf(const AppItems& item) {
    QStringList words{kindWord(item.record->type)};
    const std::string& id = item.record->package.empty() ? item.record->id : item.record->package;
    const bool isById = item.record->type == ApplicationType::Deb ||
                        item.record->type == ApplicationType::Snap ||
                        item.record->type == ApplicationType::Flatpak;
    if (isById && !id.empty() && id != item.name) words.push_back(lineOf(id));
    if (!item.fileSize.empty()) words.push_back(applicationSizeText(item));
    return QStringLiteral("%1 (%2)").arg(lineOf(item.name), words.join(QStringLiteral(", ")));
}

QLabel* addLine(QVBoxLayout& lines, const QString& said, bool isQuiet = true) {
    auto* const line = makeLabel("lineLabel", Theme::Text::Body,
                                 isQuiet ? QPalette::PlaceholderText : QPalette::WindowText);
    line->setText(said);
    line->setWordWrap(true);
    line->setAlignment(Qt::AlignLeading);
    lines.addWidget(line);
    return line;
}

// What stands below its box: the path where the box has no room for it, and what is in it.
QString leftoverText(const Leftover& leftover, bool isCut) {
    const QString size = shownSize(UtilityFunction::convertVolSpace(leftover.bytes));
    QStringList words;
    if (isCut) words.push_back(brokenAtFolders(leftover.path));
    words.push_back(size);
    if (leftover.preciousCount == 1)
        words.push_back(UninstallQuestion::tr("with a document or database"));
    else if (leftover.preciousCount > 1)
        words.push_back(UninstallQuestion::tr("with %1 documents and databases")
                            .arg(QLocale().toString(qulonglong(leftover.preciousCount))));
    QString said = words.join(QStringLiteral(", "));
    if (leftover.precious.empty()) return said;
    const bool areMore = leftover.preciousCount > leftover.precious.size();
    return said + QStringLiteral(": ") + listed(leftover.precious) +
           (areMore ? QStringLiteral(", ...") : QString());
}

QString leftoverTip(const Leftover& leftover) {
    QStringList lines{lineOf(leftover.path), inWords(leftover.reason)};
    for (const std::string& each : leftover.precious) lines.push_back(lineOf(each));
    return lines.join(QLatin1Char('\n'));
}

}  // namespace

UninstallQuestion::UninstallQuestion(const AppItemsArray& items, const QString& informativeText) {
    setObjectName(QStringLiteral("uninstallAlert"));
    setAccessibleTraits(*this, {.role = QAccessible::AlertMessage, .isModal = true});
    setAccessibleName(tr("Uninstall Applications"));
    setAccessibleDescription(informativeText);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(Theme::gapHuge, Theme::gapHuge, Theme::gapHuge, Theme::gapLarge);
    column->setSpacing(Theme::gapLarge);
    addHead(*column, informativeText);
    addParts(*column, items);
    addButtons(*column);
    addBlock();
    showMore();
    m_nextTurn.setSingleShot(true);
    connect(&m_nextTurn, &QTimer::timeout, this, &UninstallQuestion::goOn);
    const auto look = qOverload<>(&QTimer::start);
    connect(m_area->verticalScrollBar(), &QScrollBar::valueChanged, &m_nextTurn, look);
    connect(m_area->verticalScrollBar(), &QScrollBar::rangeChanged, &m_nextTurn, look);
}

QSize UninstallQuestion::sizeHint() const { return {questionWidth, layout()->sizeHint().height()}; }

void UninstallQuestion::addHead(QVBoxLayout& column, const QString& informativeText) {
    auto* const title = makeLabel("titleLabel", Theme::Text::Heading);
    title->setText(tr("Uninstall Applications"));
    title->setAlignment(Qt::AlignLeading);
    auto* const said = makeLabel("textLabel", Theme::Text::Body, QPalette::PlaceholderText);
    said->setText(informativeText);
    said->setWordWrap(true);
    said->setAlignment(Qt::AlignLeading);
    auto* const words = new QVBoxLayout;
    words->setSpacing(Theme::gapTiny);
    words->addWidget(title);
    words->addWidget(said);
    auto* const row = new QHBoxLayout;
    row->setSpacing(Theme::gapLarge);
    row->addWidget(new PictureView(QStringLiteral("warning"), {signSide, signSide}), 0,
                   Qt::AlignTop);
    row->addLayout(words, 1);
    column.addLayout(row);
}

void UninstallQuestion::addParts(QVBoxLayout& column, const AppItemsArray& items) {
    auto* const inside = new QWidget;
    m_list = new QVBoxLayout(inside);
    m_list->setContentsMargins({});
    m_list->setSpacing(Theme::gap);
    for (const auto& item : items) {
        Part part;
        part.item = *item;
        m_parts.push_back(std::move(part));
    }
    m_more = makeLabel("moreLabel", Theme::Text::Body, QPalette::PlaceholderText);
    m_more->setAlignment(Qt::AlignLeading);
    m_list->addWidget(m_more);
    m_list->addStretch();
    m_area = new QScrollArea;
    m_area->setObjectName(QStringLiteral("partsArea"));
    m_area->setFrameShape(QFrame::NoFrame);
    m_area->setWidgetResizable(true);
    m_area->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_area->setWidget(inside);
    m_area->setMinimumHeight(leastHeight);
    m_area->setFocusPolicy(Qt::TabFocus);
    m_area->viewport()->setAutoFillBackground(false);
    inside->setAutoFillBackground(false);
    m_waiting = makeLabel("waitingLabel", Theme::Text::Body, QPalette::PlaceholderText);
    m_waiting->setText(tr("Finding out what goes along ..."));
    m_waiting->setWordWrap(true);
    m_waiting->setAlignment(Qt::AlignLeading);
    m_summary = new QVBoxLayout;
    m_summary->setSpacing(Theme::gapTiny);
    column.addLayout(m_summary);
    column.addWidget(m_area, 1);
    column.addWidget(m_waiting);
}

// One block a turn; the list that grows by it asks for the next.
void UninstallQuestion::goOn() {
    const QScrollBar& bar = *m_area->verticalScrollBar();
    if (bar.value() + pagesAhead * bar.pageStep() < bar.maximum()) return;
    if (m_shown < m_parts.size()) addBlock();
    else addNotes();
    showMore();
}

void UninstallQuestion::addBlock() {
    const std::size_t end = std::min(m_shown + blockSize, m_parts.size());
    for (; m_shown < end; ++m_shown) {
        Part& part = m_parts[m_shown];
        part.lines = new QVBoxLayout;
        part.lines->setSpacing(Theme::gapTiny);
        m_list->insertLayout(int(m_shown), part.lines);
        auto* const name = new ElidedLabel;
        name->setFont(Theme::shared().font(Theme::Text::BodyStrong));
        name->setText(titleOf(part.item));
        part.lines->addWidget(name);
        if (m_outlook) fillPart(part, m_shown);
    }
}

// What stands far down, or is never scrolled to, is agreed to as well.
void UninstallQuestion::addSummary() {
    std::size_t along = 0;
    std::size_t staying = 0;
    for (const UninstallForecast& each : m_outlook->apps) {
        if (each.refusal.empty()) along += each.goesAlong.size();
        else ++staying;
    }
    QStringList words;
    const auto number = [](std::size_t count) { return QLocale().toString(qulonglong(count)); };
    if (along == 1) words.push_back(tr("1 more goes along"));
    else if (along != 0) words.push_back(tr("%1 more go along").arg(number(along)));
    if (staying == 1) words.push_back(tr("1 stays"));
    else if (staying != 0) words.push_back(tr("%1 stay").arg(number(staying)));
    if (!words.empty() && m_parts.size() > 1)
        addLine(*m_summary, words.join(QStringLiteral(", ")), false);
    for (const std::string& each : m_outlook->warnings) addLine(*m_summary, inWords(each));
}

// Each sentence names its own application.
void UninstallQuestion::addNotes() {
    if (!m_outlook) return;
    const std::size_t end = std::min(m_noted + blockSize, m_outlook->notes.size());
    if (m_noted == end) return;
    auto* const lines = new QVBoxLayout;
    lines->setSpacing(Theme::gapTiny);
    m_list->insertLayout(m_list->indexOf(m_more), lines);
    for (; m_noted < end; ++m_noted) addLine(*lines, inWords(m_outlook->notes[m_noted]));
}

void UninstallQuestion::showMore() {
    const std::size_t left = m_parts.size() - m_shown;
    m_more->setVisible(left != 0);
    if (left != 0)
        m_more->setText(left == 1 ? tr("1 more follows")
                                  : tr("%1 more follow").arg(QLocale().toString(qulonglong(left))));
}

void UninstallQuestion::addButtons(QVBoxLayout& column) {
    uninstallYes =
        named(new TextImageButton(tr("Uninstall"), TextImageButton::Role::Danger), "uninstallYes");
    uninstallYes->setEnabled(false);
    uninstallYes->setToolTip(tr("Nobody knows yet what would go along"));
    cancelButton = named(new TextImageButton(tr("Cancel")), "cancelButton");
    auto* const row = new QHBoxLayout;
    row->setSpacing(Theme::gapTiny);
    row->addStretch();
    row->addWidget(cancelButton);
    row->addWidget(uninstallYes);
    column.addLayout(row);
}

void UninstallQuestion::showForecast(const UninstallOutlook& outlook) {
    m_waiting->hide();
    m_outlook = std::make_shared<const UninstallOutlook>(outlook);
    bool mayAny = false;
    for (std::size_t number = 0; number < m_parts.size(); ++number) {
        m_parts[number].forecast = outlook.apps.at(number);
        if (number < m_shown) fillPart(m_parts[number], number);
        mayAny = mayAny || m_parts[number].forecast.refusal.empty();
    }
    addSummary();
    m_nextTurn.start();
    uninstallYes->setEnabled(mayAny);
    uninstallYes->setToolTip(mayAny ? QString() : tr("None of them can be removed"));
}

void UninstallQuestion::showSilence(const QString& reason) {
    m_waiting->setText(reason);
    m_waiting->show();
}

void UninstallQuestion::fillPart(Part& part, std::size_t number) {
    const UninstallForecast& forecast = part.forecast;
    if (!forecast.refusal.empty()) {
        addLine(*part.lines, tr("Stays: %1").arg(inWords(forecast.refusal)), false);
        return;
    }
    if (forecast.running == RunState::Yes) addRunning(part, number);
    if (forecast.running == RunState::Unknown)
        addLine(*part.lines, tr("Nobody can tell whether it runs."));
    addPaths(part);
    if (!forecast.goesAlong.empty())
        addLine(*part.lines, tr("Goes along: %1").arg(listed(forecast.goesAlong)), false);
    if (!forecast.stays.empty()) addLine(*part.lines, tr("Stays: %1").arg(listed(forecast.stays)));
    addLeftovers(part, LeftoverGrade::Certain,
                 tr("Left by it and by nothing else; tick what is to go to the trash:"));
    addLeftovers(part, LeftoverGrade::Likely,
                 tr("Probably left by it; settings and documents may be in there:"));
    if (!forecast.noTrash.empty())
        addLine(*part.lines, tr("More that it left stays: %1").arg(inWords(forecast.noTrash)));
}

void UninstallQuestion::addPaths(Part& part) {
    if (part.forecast.paths.empty()) return;
    QStringList lines{part.item.record->type == ApplicationType::App ? tr("Removed for good:")
                                                                     : tr("Goes to the trash:")};
    for (const std::string& each : part.forecast.paths) lines.push_back(brokenAtFolders(each));
    addLine(*part.lines, lines.join(QLatin1Char('\n')), false);
}

void UninstallQuestion::addRunning(Part& part, std::size_t number) {
    part.running = new QWidget;
    auto* const row = new QHBoxLayout(part.running);
    row->setContentsMargins({});
    row->setSpacing(Theme::gapSmall);
    part.runningLabel = makeLabel("runningLabel", Theme::Text::Body);
    part.runningLabel->setText(tr("It is running."));
    part.quitButton = named(new TextImageButton(tr("Close It")), "quitButton");
    connect(part.quitButton, &QAbstractButton::clicked, this, [this, number] {
        m_parts[number].quitButton->setEnabled(false);
        Q_EMIT quitWanted(number);
    });
    row->addWidget(part.runningLabel);
    row->addWidget(part.quitButton);
    row->addStretch();
    part.lines->addWidget(part.running);
}

void UninstallQuestion::showRunning(std::size_t number, RunState state) {
    const Part& part = m_parts.at(number);
    if (part.running == nullptr) return;
    part.running->setVisible(state != RunState::No);
    part.quitButton->setEnabled(true);
}

bool UninstallQuestion::beginsToLook(std::size_t number) {
    return !std::exchange(m_parts.at(number).isLookedAt, true);
}

void UninstallQuestion::showCannotQuit(std::size_t number) {
    const Part& part = m_parts.at(number);
    if (part.running == nullptr) return;
    part.runningLabel->setText(
        tr("It is running and can not be closed from here. Close its windows, and save what is "
           "open."));
    part.quitButton->hide();
}

void UninstallQuestion::addLeftovers(Part& part, LeftoverGrade grade, const QString& title) {
    bool isFirst = true;
    for (const Leftover& each : part.forecast.leftovers) {
        if (each.grade != grade) continue;
        if (std::exchange(isFirst, false)) addLine(*part.lines, title);
        const QString path = lineOf(each.path);
        const QString shown = fontMetrics().elidedText(path, Qt::ElideMiddle, boxTextWidth);
        auto* const box = named(new TickBox(shown), "leftoverBox", path);
        box->setToolTip(asToolTip(leftoverTip(each)));
        part.lines->addWidget(box);
        QLabel* const said = addLine(*part.lines, leftoverText(each, shown != path));
        said->setIndent(boxIndent);
        part.leftovers.emplace_back(box, each);
    }
}

std::vector<UninstallRequest> UninstallQuestion::requests() const {
    std::vector<UninstallRequest> out;
    for (const Part& part : m_parts) {
        if (!part.forecast.refusal.empty()) continue;
        UninstallRequest request{part.item, {}};
        for (const auto& [box, leftover] : part.leftovers)
            if (box->state() == TickState::All) request.leftovers.push_back(leftover);
        out.push_back(std::move(request));
    }
    return out;
}

}  // namespace orrinvale
