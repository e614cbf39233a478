// Every change is read into the scope at once, so that the button knows whether it can be searched.
#include "ui/duplicates/ScopePanel.h"

#include <QDragEnterEvent>
#include <QDropEvent>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QMimeData>
#include <QScrollArea>
#include <QVBoxLayout>
#include <algorithm>
#include <utility>

#include "engine/duplicates/results/ResultViews.h"
#include "engine/text/SizeText.h"
#include "platform/FileUrl.h"
#include "ui/duplicates/SameFileDeleteViews.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TCImageButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/dialogs/failureWords.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/accessibleRole.h"

namespace orrinvale {
namespace {

constexpr int scopeWidth = 600, foldersHeight = 84, sizeWidth = 110, fieldMargin = 6;

QLabel* fieldLabel(const QString& text, QWidget* field) {
    auto* const label = new QLabel(text);
    label->setBuddy(field);
    field->setAccessibleName(text);
    return label;
}

QString sizeShown(const std::optional<std::uint64_t>& size) {
    return size ? QString::number(*size) : QString();
}

}  // namespace

std::vector<std::string> localPathsOf(const QMimeData& dragged) {
    std::vector<std::string> paths;
    for (const QByteArray& line : dragged.data(QStringLiteral("text/uri-list")).split('\n'))
        if (const auto path = firstLocalPath({line.constData(), std::size_t(line.size())}))
            paths.push_back(*path);
    return paths;
}

ScopePanel::ScopePanel(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("scopePanel"));
    setAccessibleName(tr("Search several folders"));
    setAccessibleTraits(*this, {.role = QAccessible::Dialog, .isModal = true});
    setAcceptDrops(true);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(Theme::gapHuge, Theme::gapHuge, Theme::gapHuge, Theme::gapLarge);
    column->setSpacing(Theme::gap);
    addHead(*column);
    addFilters(*column);
    addButtons(*column);
    setScope({});
}

QSize ScopePanel::sizeHint() const { return {scopeWidth, layout()->sizeHint().height()}; }

void ScopePanel::addHead(QVBoxLayout& column) {
    auto* const title = makeLabel("scopeTitle", Theme::Text::Heading);
    title->setText(tr("Search several folders"));
    m_keptBtn = named(new HoverButton, "keptBtn");
    m_keptBtn->setText(tr("Saved Searches \u25BE"));
    connect(m_keptBtn, &QAbstractButton::clicked, this, &ScopePanel::showKeptMenu);
    auto* const head = new QHBoxLayout;
    head->addWidget(title);
    head->addStretch();
    head->addWidget(m_keptBtn);
    auto* const hint = makeLabel("scopeHint", Theme::Text::Caption, QPalette::PlaceholderText);
    hint->setText(
        tr("They are searched as one. What lies in a protected folder is compared, and "
           "never ticked or removed."));
    hint->setWordWrap(true);
    hint->setAlignment(Qt::AlignLeading);

    auto* const inside = new QWidget;
    m_rows = new QVBoxLayout(inside);
    m_rows->setContentsMargins({});
    m_rows->setSpacing(Theme::gapTiny);
    m_area = named(new QScrollArea, "scopeFolders", tr("Folders"));
    m_area->setFocusPolicy(Qt::NoFocus);
    m_area->setWidgetResizable(true);
    m_area->setFrameShape(QFrame::NoFrame);
    m_area->setFixedHeight(foldersHeight);
    m_area->setWidget(inside);
    addBtn = named(new TextImageButton(tr("Add Folder\u2026")), "addBtn");
    column.addLayout(head);
    column.addWidget(hint);
    column.addWidget(m_area);
    column.addWidget(addBtn, 0, Qt::AlignLeading);
}

void ScopePanel::addFilters(QVBoxLayout& column) {
    m_patterns = named(new QLineEdit, "patternField");
    m_patterns->setPlaceholderText(QStringLiteral("*.tmp; cache/; /home/me/old"));
    m_patterns->setToolTip(
        tr("Names or paths, separated by semicolons: * for any characters, ? "
           "for one, a slash at the end for folders"));
    m_smallest = named(new QLineEdit, "smallestField");
    m_largest = named(new QLineEdit, "largestField");
    for (QLineEdit* const field : {m_smallest, m_largest}) {
        field->setFixedWidth(sizeWidth);
        field->setPlaceholderText(QStringLiteral("10 MB"));
    }
    for (QLineEdit* const field : {m_patterns, m_smallest, m_largest})
        connect(field, &QLineEdit::textChanged, this, &ScopePanel::read);
    auto* const sizes = new QHBoxLayout;
    sizes->setSpacing(Theme::gapSmall);
    sizes->addWidget(m_smallest);
    sizes->addWidget(fieldLabel(tr("At most:"), m_largest));
    sizes->addWidget(m_largest);
    sizes->addStretch();
    auto* const kinds = new QGridLayout;
    kinds->setVerticalSpacing(Theme::gapSmall);
    constexpr int inLine = 3;
    for (std::size_t row = 1; row < resultRows.size(); ++row) {
        m_kinds.push_back(named(new TickBox(resultRowTitle(row)),
                                QByteArray("kind" + QByteArray::number(int(row))).constData()));
        connect(m_kinds.back(), &QAbstractButton::clicked, this, &ScopePanel::read);
        kinds->addWidget(m_kinds.back(), int(row - 1) / inLine, int(row - 1) % inLine);
    }
    m_files =
        named(new TickBox(tr("Heed files named %1").arg(QLatin1String(SearchFilter::fileName))),
              "exclusionFiles");
    m_files->setToolTip(tr("Such a file names in each line what is left out of its folder"));
    connect(m_files, &QAbstractButton::clicked, this, &ScopePanel::read);

    auto* const grid = new QGridLayout;
    grid->setVerticalSpacing(Theme::gapSmall);
    grid->addWidget(fieldLabel(tr("Leave out:"), m_patterns), 0, 0);
    grid->addWidget(m_patterns, 0, 1);
    grid->addWidget(m_files, 1, 1);
    grid->addWidget(fieldLabel(tr("At least:"), m_smallest), 2, 0);
    grid->addLayout(sizes, 2, 1);
    grid->addWidget(new QLabel(tr("Kinds:")), 3, 0, Qt::AlignTop);
    grid->addLayout(kinds, 3, 1);
    grid->setColumnStretch(1, 1);
    column.addLayout(grid);
}

void ScopePanel::addButtons(QVBoxLayout& column) {
    m_faultLabel = makeLabel("scopeFault", Theme::Text::Caption, QPalette::PlaceholderText);
    m_faultLabel->setAlignment(Qt::AlignLeading);
    m_faultLabel->setWordWrap(true);
    m_name = named(new QLineEdit, "nameField", tr("Name to save it under"));
    m_name->setPlaceholderText(tr("Name"));
    m_name->setFixedWidth(sizeWidth + Theme::gapHuge);
    m_save = named(new TextImageButton(tr("Save")), "saveBtn");
    connect(m_name, &QLineEdit::textChanged, this, &ScopePanel::read);
    for (QLineEdit* const field : {m_patterns, m_smallest, m_largest, m_name}) {
        field->setAcceptDrops(false);  // folders are for the list, wherever they fall
        field->setTextMargins(fieldMargin, 0, fieldMargin, 0);
    }
    connect(m_save, &QAbstractButton::clicked, this, [this] { Q_EMIT saveWanted(m_scope); });
    cancelButton = named(new TextImageButton(tr("Cancel")), "cancelButton");
    searchYes =
        named(new TextImageButton(tr("Search"), TextImageButton::Role::Primary), "searchYes");
    auto* const row = new QHBoxLayout;
    row->setSpacing(Theme::gapSmall);
    row->addWidget(m_name);
    row->addWidget(m_save);
    row->addStretch();
    row->addWidget(cancelButton);
    row->addWidget(searchYes);
    column.addWidget(m_faultLabel);
    column.addLayout(row);
}

void ScopePanel::setScope(SearchScope scope) {
    m_isFilling = true;
    m_scope = std::move(scope);
    QStringList patterns;
    for (const std::string& each : m_scope.patterns)
        patterns.push_back(QString::fromStdString(each));
    m_patterns->setText(patterns.join(QStringLiteral("; ")));
    m_smallest->setText(sizeShown(m_scope.smallest));
    m_largest->setText(sizeShown(m_scope.largest));
    for (std::size_t row = 1; row < resultRows.size(); ++row) {
        const bool isIn =
            m_scope.kinds.empty() ||
            std::ranges::find(m_scope.kinds, *resultRows[row].kind) != m_scope.kinds.end();
        m_kinds[row - 1]->setState(isIn ? TickState::All : TickState::Nothing);
    }
    m_files->setState(m_scope.readsFiles ? TickState::All : TickState::Nothing);
    m_name->setText(QString::fromStdString(m_scope.name));
    m_isFilling = false;
    showFolders();
    read();
}

void ScopePanel::addFolder(const std::string& path) {
    if (std::ranges::find(m_scope.roots, path) != m_scope.roots.end()) return;
    m_scope.roots.push_back(path);
    addRow(path);
    read();
}

void ScopePanel::showFolders() {
    while (QLayoutItem* const item = m_rows->takeAt(0)) {
        if (QWidget* const row = item->widget()) {
            row->hide();
            row->deleteLater();  // it may be its own button that was pressed
        }
        delete item;
    }
    for (const std::string& each : m_scope.roots) addRow(each);
}

void ScopePanel::addRow(const std::string& path) {
    const QString shown = onOneLine(QString::fromStdString(path));
    auto* const name = new ElidedLabel(Qt::ElideMiddle);
    name->setText(shown);
    name->setToolTip(shown);
    auto* const guard = named(new TickBox(tr("Protected")), "protectedBox");
    guard->setAccessibleDescription(shown);
    guard->setState(std::ranges::find(m_scope.protectedFolders, path) !=
                            m_scope.protectedFolders.end()
                        ? TickState::All
                        : TickState::Nothing);
    auto* const forget =
        makeImageButton("forgetBtn", QStringLiteral("close"), tr("Take this folder out"));
    forget->setAccessibleDescription(shown);
    connect(guard, &QAbstractButton::clicked, this, [this, path, guard] {
        std::erase(m_scope.protectedFolders, path);
        if (guard->state() == TickState::All) m_scope.protectedFolders.push_back(path);
        read();
    });
    connect(forget, &QAbstractButton::clicked, this, [this, path] {
        std::erase(m_scope.roots, path);
        std::erase(m_scope.protectedFolders, path);
        showFolders();
        read();
        addBtn->setFocus();
    });
    for (QWidget* const each : {static_cast<QWidget*>(guard), static_cast<QWidget*>(forget)})
        each->installEventFilter(this);
    auto* const row = new QWidget;
    auto* const line = new QHBoxLayout(row);
    line->setContentsMargins({});
    line->addWidget(name, 1);
    line->addWidget(guard);
    line->addWidget(forget);
    if (m_rows->count() == 0) m_rows->addStretch();
    m_rows->insertWidget(m_rows->count() - 1, row);
}

// The keyboard comes to rows that are out of sight.
bool ScopePanel::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::FocusIn)
        m_area->ensureWidgetVisible(static_cast<QWidget*>(watched), 0, 0);
    return false;
}

void ScopePanel::readSize(const QLineEdit& field, std::optional<std::uint64_t>& size) {
    const QString text = field.text().trimmed();
    size = text.isEmpty() ? std::nullopt : parseSize(text.toStdString());
    if (!text.isEmpty() && !size)
        m_fault =
            tr("\u201C%1\u201D is no size: write 10 MB, 4 KiB or a number of bytes").arg(text);
}

void ScopePanel::read() {
    if (m_isFilling) return;
    m_fault.clear();
    m_scope.patterns.clear();
    for (const QString& each : m_patterns->text().split(QLatin1Char(';'), Qt::SkipEmptyParts))
        if (!each.trimmed().isEmpty()) m_scope.patterns.push_back(each.trimmed().toStdString());
    readSize(*m_smallest, m_scope.smallest);
    readSize(*m_largest, m_scope.largest);
    m_scope.kinds.clear();
    for (std::size_t row = 1; row < resultRows.size(); ++row)
        if (m_kinds[row - 1]->state() == TickState::All)
            m_scope.kinds.push_back(*resultRows[row].kind);
    if (m_scope.kinds.empty()) m_fault = tr("Choose a kind");
    if (m_scope.kinds.size() == m_kinds.size()) m_scope.kinds.clear();
    if (m_scope.smallest && m_scope.largest && *m_scope.smallest > *m_scope.largest)
        m_fault = tr("The smallest size is larger than the largest");
    m_scope.readsFiles = m_files->state() == TickState::All;
    m_scope.name = m_name->text().trimmed().toStdString();
    if (const auto request = m_scope.request(); !request) {
        const SearchScope::BadPattern& bad = request.error();
        m_fault = tr("\u201C%1\u201D, character %2: %3")
                      .arg(QString::fromStdString(bad.text), QString::number(bad.fault.place),
                           inWords(std::string(bad.fault.reason)));
    }
    m_faultLabel->setText(m_fault);
    const bool isAllProtected = m_scope.protectedFolders.size() == m_scope.roots.size();
    searchYes->setEnabled(m_fault.isEmpty() && !m_scope.roots.empty() && !isAllProtected);
    searchYes->setToolTip(m_scope.roots.empty() ? tr("Add a folder first")
                          : isAllProtected      ? tr("All folders are protected")
                                                : QString());
    m_save->setEnabled(m_fault.isEmpty() && !m_scope.name.empty());
}

void ScopePanel::showFault(const QString& fault) { m_faultLabel->setText(fault); }

void ScopePanel::setKept(std::vector<SearchScope> kept) {
    m_kept = std::move(kept);
    m_keptBtn->setEnabled(!m_kept.empty());
}

void ScopePanel::showKeptMenu() {
    auto* const menu = new QMenu(this);
    menu->setObjectName(QStringLiteral("keptMenu"));
    menu->setAttribute(Qt::WA_DeleteOnClose);
    for (const SearchScope& each : m_kept)
        menu->addAction(onOneLine(QString::fromStdString(each.name))
                            .replace(QLatin1Char('&'), QLatin1String("&&")),
                        this, [this, each] { setScope(each); });
    menu->addSeparator();
    menu->addAction(tr("Clear"), this, [this] { Q_EMIT clearWanted(); });
    menu->popup(m_keptBtn->mapToGlobal(QPoint(0, m_keptBtn->height())));
    menu->setActiveAction(menu->actions().front());
}

void ScopePanel::dragEnterEvent(QDragEnterEvent* event) {
    if (!localPathsOf(*event->mimeData()).empty() &&
        event->possibleActions().testFlag(Qt::CopyAction)) {
        event->setDropAction(Qt::CopyAction);
        event->accept();
    }
}

void ScopePanel::dropEvent(QDropEvent* event) {
    event->setDropAction(Qt::CopyAction);
    event->accept();
    Q_EMIT dropped(localPathsOf(*event->mimeData()));
}

}  // namespace orrinvale
