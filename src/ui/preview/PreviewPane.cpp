// Two looks, the words that compare them, and the folders; the two move together.
#include "ui/preview/PreviewPane.h"

#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QPlainTextEdit>
#include <QScrollBar>
#include <algorithm>

#include "platform/askProgram.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/look/accessibleRole.h"
#include "ui/preview/PreviewFolders.h"
#include "ui/preview/PreviewLook.h"

namespace orrinvale {
namespace {

constexpr int mostFoldersHeight = 170, mostFoldersWidth = 260;

}  // namespace

PreviewPane::PreviewPane(QWidget* parent)
    : Panel(Theme::Color::Surface, {}, parent),
      m_layout(new QBoxLayout(QBoxLayout::TopToBottom, this)),
      m_first(named(new PreviewLook(m_zoom), "previewFirst")),
      m_second(named(new PreviewLook(m_zoom), "previewSecond")),
      m_comparison(makeLabel("previewComparison", Theme::Text::Caption, QPalette::PlaceholderText)),
      m_folders(named(new PreviewFolders, "previewFolders")) {
    named(this, "previewPane", tr("Preview"));
    setAccessibleTraits(*this, {.role = QAccessible::Grouping});
    auto* const looks = new QHBoxLayout;
    looks->setSpacing(Theme::gap);
    looks->addWidget(m_first, 1);
    looks->addWidget(m_second, 1);
    auto* const compared = new QVBoxLayout;
    compared->setSpacing(Theme::gapSmall);
    compared->addLayout(looks, 1);
    compared->addWidget(m_comparison);
    m_comparison->setWordWrap(true);
    m_comparison->setMinimumWidth(1);
    m_layout->setContentsMargins(Theme::gap, Theme::gap, Theme::gap, Theme::gap);
    m_layout->setSpacing(Theme::gap);
    m_layout->addLayout(compared, 1);
    m_layout->addWidget(m_folders);
    setDirection(QBoxLayout::TopToBottom);
    for (PreviewLook* const look : {m_first, m_second}) {
        connect(look, &PreviewLook::sightChanged, this, &PreviewPane::compare);
        PreviewLook* const other = look == m_first ? m_second : m_first;
        connect(look->text().verticalScrollBar(), &QScrollBar::valueChanged, this,
                [this, other](int value) { scrollAlong(*other, value); });
    }
    connect(m_folders, &PreviewFolders::folderWanted, this, [this](const std::string& path) {
        if (m_reveal) m_reveal(path);
    });
    showSubject();
}

void PreviewPane::start(const FileSystem& files,
                        std::function<void(const std::string& path)> reveal) {
    const auto reader =
        std::make_shared<const PreviewReader>(files, companionProgram(PreviewReader::programName));
    m_first->setReader(reader);
    m_second->setReader(reader);
    m_reveal = std::move(reveal);
}

void PreviewPane::choose(const PreviewSubject& subject) {
    if (subject == m_subject) return;
    m_subject = subject;
    if (isVisible()) showSubject();
}

void PreviewPane::lookAgain() {
    if (!isVisible()) return;
    m_first->lookAgain();
    m_second->lookAgain();
}

void PreviewPane::showSubject() {
    if (m_first->path() != m_subject.chosen || m_second->path() != m_subject.beside) m_zoom.reset();
    m_first->setPath(m_subject.chosen);
    m_second->setPath(m_subject.beside);
    m_second->setVisible(!m_subject.beside.empty());
    m_folders->setVisible(!m_subject.paths.empty());
    m_folders->setPaths(m_subject.paths, m_subject.total, {m_subject.chosen, m_subject.beside});
    compare();
}

// Of two texts the first place where they differ: copies that a search found are the same, but a
// file may have changed since.
void PreviewPane::compare() {
    const bool areTexts = m_first->sight() != nullptr && m_second->sight() != nullptr &&
                          m_first->showsText() && m_second->showsText();
    m_comparison->setVisible(areTexts);
    if (!areTexts) {
        for (PreviewLook* const look : {m_first, m_second}) look->markLineOf(-1);
        return;
    }
    const PreviewAnswer& here = m_first->sight()->preview.answer;
    const PreviewAnswer& there = m_second->sight()->preview.answer;
    const QString one = QString::fromStdString(here.content);
    const QString other = QString::fromStdString(there.content);
    const auto differs = std::ranges::mismatch(one, other).in1 - one.begin();
    const bool isSame = one == other;
    for (PreviewLook* const look : {m_first, m_second}) look->markLineOf(isSame ? -1 : differs);
    // Unlike bytes may look alike: ends of lines, encodings, letters that a screen would obey.
    const bool areSameFiles =
        !here.isCut && !there.isCut && !here.digest.empty() && here.digest == there.digest;
    const int line = static_cast<int>(std::count(one.begin(), one.begin() + differs, u'\n')) + 1;
    m_comparison->setText(!isSame
                              ? tr("The texts differ from line %1 on").arg(QLocale().toString(line))
                          : areSameFiles ? tr("The texts are the same")
                                         : tr("What is shown of the texts is the same"));
}

// The shorter one ends before the longer, which must not be held back by it.
void PreviewPane::scrollAlong(PreviewLook& other, int value) {
    if (m_scrolls) return;
    m_scrolls = true;
    other.text().verticalScrollBar()->setValue(value);
    m_scrolls = false;
}

void PreviewPane::setDirection(QBoxLayout::Direction direction) {
    m_layout->setDirection(direction);
    const bool isBeside = direction == QBoxLayout::TopToBottom;
    m_folders->setMaximumHeight(isBeside ? mostFoldersHeight : QWIDGETSIZE_MAX);
    m_folders->setMaximumWidth(isBeside ? QWIDGETSIZE_MAX : mostFoldersWidth);
    m_layout->setStretch(1, isBeside ? 0 : 1);
    m_layout->setStretch(0, isBeside ? 1 : 2);
    update();
}

void PreviewPane::paintEvent(QPaintEvent* event) {
    Panel::paintEvent(event);
    QPainter painter(this);
    const QColor line = Theme::shared().color(Theme::Color::Line);
    if (m_layout->direction() == QBoxLayout::LeftToRight) painter.fillRect(0, 0, width(), 1, line);
    else painter.fillRect(isRightToLeft() ? width() - 1 : 0, 0, 1, height(), line);
}

void PreviewPane::showEvent(QShowEvent* event) {
    Panel::showEvent(event);
    showSubject();
}

void PreviewPane::hideEvent(QHideEvent* event) {
    Panel::hideEvent(event);
    if (event->spontaneous()) return;  // the window is only minimised
    m_first->setPath({});
    m_second->setPath({});
}

void PreviewPane::changeEvent(QEvent* event) {
    Panel::changeEvent(event);
    if (event->type() == QEvent::ActivationChange && isActiveWindow()) lookAgain();
}

}  // namespace orrinvale
