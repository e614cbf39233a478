// The size is the scan's, and there at once; the rest is asked for.
#include "ui/diskusage/ItemFacts.h"

#include <QDateTime>
#include <QLabel>
#include <QLocale>
#include <QPainter>
#include <QVBoxLayout>
#include <array>
#include <chrono>
#include <memory>

#include "services/foundation/runAside.h"
#include "ui/kit/controls/pathText.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/page/previewContent.h"

namespace orrinvale {
namespace {

constexpr std::chrono::milliseconds restTime{120};
constexpr int pictureSide = 200, iconSide = 64;
constexpr qsizetype mostLines = 9, mostLetters = 42;
constexpr int mostWaiting = 8;

QLabel* makeLines(const char* name, Theme::Text text, QPalette::ColorRole role) {
    QLabel* const label = makeLabel(name, text, role);
    label->setWordWrap(true);
    label->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    label->setMinimumWidth(1);
    return label;
}

// The beginning of a text, as a page looks from afar.
QString beginning(const QString& text) {
    QStringList lines = text.left(mostLines * 400).split(QLatin1Char('\n')).mid(0, mostLines);
    for (QString& line : lines) line = onOneLine(line.trimmed()).left(mostLetters);
    return lines.join(QLatin1Char('\n'));
}

}  // namespace

ItemFacts::ItemFacts(const FileSystem& files, QWidget* parent)
    : QWidget(parent),
      m_files(files),
      m_picture(named(new QLabel, "factsPicture")),
      m_text(makeLines("factsText", Theme::Text::Caption, QPalette::PlaceholderText)),
      m_name(makeLines("factsName", Theme::Text::BodyStrong, QPalette::WindowText)),
      m_facts(makeLines("factsLines", Theme::Text::Body, QPalette::PlaceholderText)) {
    m_picture->setAlignment(Qt::AlignCenter);
    m_text->setAlignment(Qt::AlignLeading | Qt::AlignTop);
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins(Theme::gapLarge, Theme::gapHuge, Theme::gapLarge, Theme::gapLarge);
    column->setSpacing(Theme::gap);
    for (QLabel* const each : {m_picture, m_text, m_name, m_facts}) column->addWidget(each);
    column->addStretch();
    m_timer.setSingleShot(true);
    m_timer.setInterval(restTime);
    connect(&m_timer, &QTimer::timeout, this, &ItemFacts::ask);
}

ItemFacts::~ItemFacts() {
    if (m_counting) m_counting->stop = true;
    m_stop.request_stop();
}

void ItemFacts::clear() { m_path.clear(); }

void ItemFacts::setLines() {
    QStringList lines{m_size, m_kind, m_gain};
    lines.removeAll(QString());
    m_facts->setText(lines.join(QLatin1Char('\n')));
}

void ItemFacts::showFile(const FSNode& node, const QIcon& icon) {
    const std::string path = node.path();
    const QString size = sizeWords(node, false);
    const QString onDisk = bytesWords(node.onDisk());
    m_size = onDisk == size ? size : tr("%1, %2 on disk").arg(size, onDisk);
    if (path == m_path) {
        setLines();
        return;
    }
    m_path = path;
    m_kind.clear();
    m_gain.clear();
    m_text->hide();
    m_picture->setPixmap(icon.pixmap(QSize(iconSide, iconSide), devicePixelRatioF()));
    m_picture->show();
    m_name->setText(onOneLine(QString::fromStdString(node.displayName())));
    setLines();
    const std::array<FSNode*, 1> one{const_cast<FSNode*>(&node)};
    m_asked = tickedEntries(one);
    m_timer.start();
}

void ItemFacts::ask() {
    if (m_path.empty() || m_waiting >= mostWaiting) return;
    m_stop.request_stop();
    m_stop = {};
    const std::stop_token token = m_stop.get_token();
    const auto preview = runAside(
        this, "readPreview",
        [path = m_path, token] {
            return std::make_shared<PreviewContent>(readPreview(path, token));
        },
        [this, token, path = m_path](const std::shared_ptr<PreviewContent>& content) {
            --m_waiting;
            if (path == m_path && !token.stop_requested()) showContent(*content);
        });
    if (m_counting) m_counting->stop = true;
    m_counting = std::make_shared<UsageCounts>();
    const auto counting = runAside(
        this, "countTicked",
        [files = &m_files, entries = std::move(m_asked), progress = m_counting]() mutable {
            return std::make_shared<TickedCount>(
                countTicked(*files, {}, std::move(entries), *progress));
        },
        [this, path = m_path](const std::shared_ptr<TickedCount>& counted) {
            --m_waiting;
            if (path == m_path) showGain(*counted);
        });
    m_waiting += (preview != nullptr ? 1 : 0) + (counting != nullptr ? 1 : 0);
}

void ItemFacts::showContent(const PreviewContent& content) {
    constexpr std::int64_t perMillisecond = 1'000'000;
    QStringList lines;
    if (content.kind == PreviewContent::Kind::Missing) lines = QStringList{tr("It is gone.")};
    if (!content.type.isEmpty()) lines.push_back(content.type);
    if (content.pictureSize.isValid())
        lines.push_back(
            QStringLiteral("%1 × %2").arg(QString::number(content.pictureSize.width()),
                                          QString::number(content.pictureSize.height())));
    lines += content.media;
    if (content.modified != 0)
        lines.push_back(
            QLocale().toString(QDateTime::fromMSecsSinceEpoch(content.modified / perMillisecond),
                               QLocale::ShortFormat));
    m_kind = lines.join(QLatin1Char('\n'));
    if (content.kind == PreviewContent::Kind::Picture && !content.picture.isNull()) {
        const qreal scale = devicePixelRatioF();
        QPixmap shown = QPixmap::fromImage(
            content.picture.scaled(QSize(pictureSide, pictureSide) * scale, Qt::KeepAspectRatio,
                                   Qt::SmoothTransformation));
        shown.setDevicePixelRatio(scale);
        m_picture->setPixmap(shown);
    }
    if (content.kind == PreviewContent::Kind::Text && !content.text.trimmed().isEmpty()) {
        m_text->setText(beginning(content.text));
        m_text->show();
    }
    setLines();
}

void ItemFacts::showGain(const TickedCount& counted) {
    const QString gain = bytesWords(counted.onDisk);
    if (counted.stopped || !counted.staying.empty()) return;
    m_gain = !counted.isUpTo && gain == bytesWords(counted.size) ? QString()
             : counted.isUpTo ? tr("Its removal gives back up to %1").arg(gain)
                              : tr("Its removal gives back %1").arg(gain);
    setLines();
}

void ItemFacts::showLeftOut(const FSNode& folder, std::uint64_t limit) {
    const LeftOut leftOut = folder.leftOut();
    m_path.clear();
    m_picture->hide();
    m_text->hide();
    m_name->setText(leftOutWords(leftOut.entries, limit));
    m_kind.clear();
    m_gain.clear();
    m_size = tr("Together %1. They are too small to be listed one by one.")
                 .arg(bytesWords(leftOut.size));
    setLines();
}

void ItemFacts::paintEvent(QPaintEvent* /*event*/) {
    QPainter(this).fillRect(rect(), Theme::shared().color(Theme::Color::Surface));
}

}  // namespace orrinvale
