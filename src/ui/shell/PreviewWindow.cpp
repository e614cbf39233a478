// A file shows its icon at first. What is read comes later, and is dropped when another is shown by
// then.
#include "ui/shell/PreviewWindow.h"

#include <QCoreApplication>
#include <QDateTime>
#include <QKeyEvent>
#include <QLabel>
#include <QLocale>
#include <QPlainTextEdit>
#include <QShortcut>
#include <QStackedWidget>
#include <QVBoxLayout>
#include <chrono>

#include "engine/text/UtilityFunction.h"
#include "platform/paths.h"
#include "services/foundation/runAside.h"
#include "ui/kit/controls/numberText.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/accessibleRole.h"
#include "ui/page/previewContent.h"
#include "ui/preview/previewCount.h"
#include "ui/shell/FileIcons.h"

namespace orrinvale {
namespace {

constexpr QSize usualPreviewSize{560, 460};
constexpr int previewIconSide = 128;
// A held key makes the next step before the first of these is over.
constexpr std::chrono::milliseconds previewWindowRest{35}, previewWindowPlaceTime{250};

QLabel* centred(Theme::Text text, QPalette::ColorRole role) {
    auto* const label = new QLabel;
    label->setTextFormat(Qt::PlainText);
    label->setAlignment(Qt::AlignCenter);
    label->setWordWrap(true);
    label->setFont(Theme::shared().font(text));
    label->setForegroundRole(role);
    return label;
}

QString factsOf(const PreviewContent& content) {
    if (content.kind == PreviewContent::Kind::Missing)
        return QCoreApplication::translate("PreviewWindow", "This file is missing.");
    QStringList facts;
    if (!content.type.isEmpty()) facts.push_back(content.type);
    if (content.kind == PreviewContent::Kind::Folder)
        facts.push_back(content.entries == 1
                            ? QCoreApplication::translate("PreviewWindow", "Folder with 1 entry")
                            : QCoreApplication::translate("PreviewWindow",
                                                          "Folder with %Ln entries", nullptr,
                                                          static_cast<int>(content.entries)));
    else facts.push_back(shownSize(UtilityFunction::convertVolSpace(content.size)));
    if (content.pictureSize.isValid())
        facts.push_back(
            QStringLiteral("%1 × %2").arg(QString::number(content.pictureSize.width()),
                                          QString::number(content.pictureSize.height())));
    facts += content.media;
    if (!content.linkTarget.isEmpty())
        facts.push_back(QCoreApplication::translate("PreviewWindow", "Link to %1")
                            .arg(onOneLine(content.linkTarget)));
    constexpr std::int64_t perMillisecond = 1'000'000;
    facts.push_back(QLocale().toString(
        QDateTime::fromMSecsSinceEpoch(content.modified / perMillisecond), QLocale::ShortFormat));
    if (content.isCut)
        facts.push_back(QCoreApplication::translate("PreviewWindow", "beginning only"));
    return facts.join(QStringLiteral("  ·  "));
}

}  // namespace

PreviewWindow::PreviewWindow(FileIcons& icons, QWidget* parent)
    : QWidget(parent, Qt::Tool),
      m_icons(icons),
      m_name(centred(Theme::Text::Heading, QPalette::WindowText)),
      m_facts(centred(Theme::Text::Caption, QPalette::PlaceholderText)),
      m_pages(new QStackedWidget),
      m_picture(new QLabel),
      m_text(new QPlainTextEdit),
      m_icon(new QLabel) {
    setObjectName(QStringLiteral("previewPanel"));
    setAccessibleTraits(*this, {.role = QAccessible::Window});
    m_picture->setAlignment(Qt::AlignCenter);
    m_icon->setAlignment(Qt::AlignCenter);
    m_text->setReadOnly(true);
    m_text->setFrameShape(QFrame::NoFrame);
    for (QWidget* const page : {static_cast<QWidget*>(m_icon), static_cast<QWidget*>(m_picture),
                                static_cast<QWidget*>(m_text)})
        m_pages->addWidget(page);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(Theme::gapLarge, Theme::gapLarge, Theme::gapLarge, Theme::gapLarge);
    column->setSpacing(Theme::gapSmall);
    column->addWidget(m_pages, 1);
    column->addWidget(m_name);
    column->addWidget(m_facts);
    m_rest.setSingleShot(true);
    connect(&m_rest, &QTimer::timeout, this, &PreviewWindow::ask);
    // Shortcuts, since the text would take the space bar for a page down.
    for (const QKeySequence& keys : {QKeySequence(Qt::Key_Escape), QKeySequence(Qt::Key_Space),
                                     QKeySequence(Qt::CTRL | Qt::Key_Space)})
        connect(new QShortcut(keys, this), &QShortcut::activated, this, &QWidget::close);
    for (const auto& [key, step] : {std::pair(Qt::Key_Up, -1), std::pair(Qt::Key_Down, 1)})
        connect(new QShortcut(QKeySequence(key), this), &QShortcut::activated, this,
                [this, step = step] { Q_EMIT otherWanted(step); });
    resize(usualPreviewSize);
}

PreviewWindow::~PreviewWindow() { m_stop.request_stop(); }

// The keys of the window behind work here too, and its key that closes would take both away. A
// shortcut of our own beside it would make the key ambiguous.
bool PreviewWindow::event(QEvent* event) {
    if (event->type() == QEvent::ShortcutOverride &&
        static_cast<QKeyEvent&>(*event).matches(QKeySequence::Close)) {
        event->accept();
        return true;
    }
    return QWidget::event(event);
}

void PreviewWindow::keyPressEvent(QKeyEvent* event) {
    if (event->matches(QKeySequence::Close)) close();
    else QWidget::keyPressEvent(event);
}

void PreviewWindow::stop() {
    m_rest.stop();
    m_stop.request_stop();
}

void PreviewWindow::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (!event->spontaneous()) stop();
}

void PreviewWindow::showPath(const std::string& path) {
    stop();
    m_path = path;
    const QString name = onOneLine(QString::fromStdString(std::string(lastPathComponent(path))));
    setWindowTitle(name);
    m_name->setText(name);
    m_facts->clear();
    m_icon->setPixmap(m_icons.icon({IconRequest::Path, path})
                          .pixmap(QSize(previewIconSide, previewIconSide), devicePixelRatioF()));
    m_pages->setCurrentWidget(m_icon);
    m_rest.start(previewWindowRest);
}

void PreviewWindow::ask() {
    auto place = PreviewCount::takePlace();
    if (!place) return m_rest.start(previewWindowPlaceTime);
    m_stop = {};
    const std::stop_token token = m_stop.get_token();
    const auto errand = runAside(
        this, "readPreview:",
        [path = m_path, token, place = std::move(place)] { return readPreview(path, token); },
        [this, token](const PreviewContent& content) {
            if (!token.stop_requested()) showContent(content);
        });
    if (errand == nullptr) m_rest.start(previewWindowPlaceTime);
}

void PreviewWindow::showContent(const PreviewContent& content) {
    m_facts->setText(factsOf(content));
    if (content.kind == PreviewContent::Kind::Picture) {
        QPixmap pixmap = QPixmap::fromImage(content.picture);
        const QSize room = m_pages->size() * devicePixelRatioF();
        if (pixmap.width() > room.width() || pixmap.height() > room.height())
            pixmap = pixmap.scaled(room, Qt::KeepAspectRatio, Qt::SmoothTransformation);
        pixmap.setDevicePixelRatio(devicePixelRatioF());
        m_picture->setPixmap(pixmap);
        m_pages->setCurrentWidget(m_picture);
    } else if (content.kind == PreviewContent::Kind::Text) {
        m_text->setPlainText(content.text);
        m_pages->setCurrentWidget(m_text);
    }
}

}  // namespace orrinvale
