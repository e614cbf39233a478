// Fathers come before their children in the list, so that each draws over the ground that its
// father has laid.
#include "ui/diskusage/TreemapPicture.h"

#include <QCoreApplication>
#include <QFontMetricsF>
#include <QLocale>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <string_view>
#include <utility>

#include "engine/duplicates/FileKind.h"
#include "ui/diskusage/ChangesColumn.h"
#include "ui/kit/controls/pathText.h"

namespace orrinvale {
namespace {

constexpr TreemapSpacing spacing{.inset = 2, .header = 17, .least = 14};
constexpr qreal textMargin = 4, leastText = 34, changeSignSide = 8;

struct Brush {
    QPainter& painter;
    const TreemapOrder& order;
    const QFontMetricsF metrics;

    [[nodiscard]] QColor color(Theme::Color role) const { return Theme::color(role, order.scheme); }
};

NodeChange changeOfEntry(const Brush& brush, const TreemapEntry& entry) {
    if (brush.order.compared == nullptr || entry.isLeftOut()) return {};
    return changeOfNode(*brush.order.compared, *entry.node, entry.size);
}

QString behindName(const NodeChange& change) {
    const QString mark = markText(change);
    return mark.isEmpty() ? mark : QStringLiteral("  ") + mark;
}

// By its shape, so that nobody has to tell it by a colour.
void drawChangeSign(const Brush& brush, const QRectF& place, NodeChange::Kind kind) {
    if (kind == NodeChange::Kind::None || place.width() < changeSignSide + textMargin ||
        place.height() < changeSignSide + textMargin)
        return;
    // On whole points, so that its edges are sharp.
    const QRectF box(std::round(place.right() - textMargin - changeSignSide),
                     std::round(place.top() + textMargin), changeSignSide, changeSignSide);
    QPainter& painter = brush.painter;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(brush.color(Theme::Color::Text));
    const QPointF middle = box.center();
    if (kind == NodeChange::Kind::Grew) {
        painter.drawPolygon(
            QPolygonF({box.bottomLeft(), {middle.x(), box.top()}, box.bottomRight()}));
    } else if (kind == NodeChange::Kind::Shrank) {
        painter.drawPolygon(QPolygonF({box.topLeft(), {middle.x(), box.bottom()}, box.topRight()}));
    } else {
        constexpr qreal half = 1;
        painter.drawRect(QRectF(box.left(), middle.y() - half, changeSignSide, 2 * half));
        painter.drawRect(QRectF(middle.x() - half, box.top(), 2 * half, changeSignSide));
    }
    painter.restore();
}

// What did not change steps back behind what did.
QColor fadedGround(const Brush& brush, const QColor& color) {
    constexpr float kept = 0.35F;
    const QColor ground = brush.color(Theme::Color::Window);
    const auto mix = [](float one, float other) { return one * kept + other * (1 - kept); };
    return QColor::fromRgbF(mix(color.redF(), ground.redF()), mix(color.greenF(), ground.greenF()),
                            mix(color.blueF(), ground.blueF()));
}

void drawName(const Brush& brush, std::size_t index, const QRectF& place, bool isHeader,
              const NodeChange& change) {
    const qreal height = brush.metrics.height();
    if (place.width() < leastText || place.height() < height + 2) return;
    const TreemapEntry& entry = brush.order.entries[index];
    QString name = entry.isLeftOut()
                       ? restWords(entry, brush.order.scan->limit)
                       : onOneLine(QString::fromStdString(std::string(entry.node->name())));
    const qreal forSign =
        !isHeader && change.kind != NodeChange::Kind::None ? changeSignSide + textMargin : 0;
    const QRectF inside =
        (isHeader ? QRectF(place.topLeft(), QSizeF(place.width(), height + 2)) : place)
            .adjusted(textMargin, 1, -textMargin, -1);
    if (isHeader) name += behindName(change);
    const Qt::Alignment side = Qt::AlignLeft | (isHeader ? Qt::AlignVCenter : Qt::AlignTop);
    brush.painter.setPen(brush.color(Theme::Color::Text));
    brush.painter.drawText(
        inside, int(side) | Qt::TextSingleLine,
        brush.metrics.elidedText(name, Qt::ElideMiddle, inside.width() - forSign));
    const QString size = bytesWords(entry.size) + behindName(change);
    if (!isHeader && place.height() >= 2 * height + 4 &&
        brush.metrics.horizontalAdvance(size) <= inside.width())
        brush.painter.drawText(inside.translated(0, height), int(side) | Qt::TextSingleLine, size);
}

void drawEntry(const Brush& brush, std::size_t index, const TreemapRectangle& place,
               bool hasChildren) {
    const TreemapEntry& entry = brush.order.entries[index];
    const bool isTicked = brush.order.ticks[index] == FSNode::Selected;
    const QRectF whole(place.left, place.top, place.width(), place.height());
    // The gap between neighbours is the ground that shines through.
    const qreal gap = hasChildren ? 0 : std::min({1.0, whole.width() / 4, whole.height() / 4});
    const QRectF inside = whole.adjusted(0, 0, -gap, -gap);
    const NodeChange change = changeOfEntry(brush, entry);
    const QColor ground = brush.color(!hasChildren       ? treemapColor(entry)
                                      : entry.depth == 0 ? Theme::Color::Window
                                                         : Theme::Color::Surface);
    const bool stepsBack =
        brush.order.compared != nullptr && !hasChildren && change.kind == NodeChange::Kind::None;
    brush.painter.fillRect(inside, stepsBack ? fadedGround(brush, ground) : ground);
    // Slanted lines, so that nobody has to tell it by the colour.
    if (isTicked) {
        QColor lines = brush.color(Theme::Color::Accent);
        lines.setAlphaF(0.4F);
        brush.painter.fillRect(inside, QBrush(lines, Qt::BDiagPattern));
    }
    if (!hasChildren) drawChangeSign(brush, inside, change.kind);
    if (entry.depth != 0) drawName(brush, index, inside, hasChildren, change);
}

// Around what was ticked itself, over all that is in it.
void drawTickFrames(const Brush& brush, const std::vector<TreemapRectangle>& places) {
    brush.painter.setPen(QPen(brush.color(Theme::Color::Accent), 2));
    brush.painter.setBrush(Qt::NoBrush);
    for (std::size_t index = 1; index < places.size(); ++index) {
        const TreemapRectangle& place = places[index];
        const auto& ticks = brush.order.ticks;
        const bool isFirst = ticks[index] == FSNode::Selected &&
                             ticks[brush.order.entries[index].parent] != FSNode::Selected;
        constexpr double leastFrame = 4;
        if (isFirst && place.width() > leastFrame && place.height() > leastFrame)
            brush.painter.drawRect(QRectF(place.left, place.top, place.width(), place.height())
                                       .adjusted(1, 1, -1, -1));
    }
}

}  // namespace

QString restWords(const TreemapEntry& entry, std::uint64_t limit) {
    if (!entry.hasLarge) return leftOutWords(entry.leftOut, limit);
    return QCoreApplication::translate("TreemapPicture", "Smaller items: %1")
        .arg(QLocale().toString(entry.leftOut));
}

Theme::Color treemapColor(const TreemapEntry& entry) {
    if (entry.isLeftOut()) return Theme::Color::KindLeftOut;
    if (entry.node->isDirectory()) return Theme::Color::KindOthers;
    const std::string_view name = entry.node->name();
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0) return Theme::Color::KindOthers;
    switch (kindOfExtension(name.substr(dot + 1))) {
        case FileKind::Documents: return Theme::Color::KindDocuments;
        case FileKind::Music: return Theme::Color::KindMusic;
        case FileKind::Videos: return Theme::Color::KindVideos;
        case FileKind::Archives: return Theme::Color::KindArchives;
        case FileKind::Pictures: return Theme::Color::KindPictures;
        case FileKind::Others: break;
    }
    return Theme::Color::KindOthers;
}

TreemapOrder treemapOrder(std::shared_ptr<const ShownScan> scan, const FSNode& folder, QSize size,
                          qreal scale) {
    TreemapOrder order{.scan = std::move(scan),
                       .folder = &folder,
                       .entries = treemapEntries(folder),
                       .ticks = {},
                       .size = size,
                       .scale = scale,
                       .scheme = Theme::shared().scheme(),
                       .font = Theme::shared().font(Theme::Text::Caption),
                       .compared = {}};
    order.compared = order.scan->compared;
    order.ticks.reserve(order.entries.size());
    for (std::size_t index = 0; index < order.entries.size(); ++index) {
        const TreemapEntry& entry = order.entries[index];
        const std::uint8_t above =
            index == 0 ? std::uint8_t{FSNode::NotSelected} : order.ticks[entry.parent];
        order.ticks.push_back(above == FSNode::Selected ? above
                              : entry.isLeftOut()       ? std::uint8_t{FSNode::NotSelected}
                                                  : std::uint8_t{entry.node->isButtonState()});
    }
    return order;
}

TreemapPicture drawTreemap(TreemapOrder order) {
    TreemapPicture made{
        .scan = order.scan,
        .folder = order.folder,
        .entries = {},
        .places = {},
        .image = QImage(order.size * order.scale, QImage::Format_ARGB32_Premultiplied)};
    // The folder's own edge and name would only repeat what stands above the map.
    made.places =
        layOutTreemap(order.entries,
                      {-spacing.inset, -spacing.inset - spacing.header,
                       order.size.width() + spacing.inset, order.size.height() + spacing.inset},
                      spacing);
    made.image.setDevicePixelRatio(order.scale);
    made.image.fill(Theme::color(Theme::Color::Window, order.scheme));
    QPainter painter(&made.image);
    painter.setFont(order.font);
    const Brush brush{painter, order, QFontMetricsF(order.font, &made.image)};
    for (std::size_t index = 0; index < order.entries.size(); ++index) {
        const TreemapRectangle& place = made.places[index];
        if (place.width() <= 0 || place.height() <= 0) continue;
        const TreemapEntry& entry = order.entries[index];
        const bool hasChildren = entry.childCount != 0 &&
                                 made.places[entry.firstChild].width() > 0 &&
                                 made.places[entry.firstChild].height() > 0;
        drawEntry(brush, index, place, hasChildren);
    }
    drawTickFrames(brush, made.places);
    painter.end();
    made.entries = std::move(order.entries);
    return made;
}

const TreemapEntry* TreemapPicture::entryAt(QPointF place) const {
    const std::size_t found = treemapEntryAt(entries, places, place.x(), place.y());
    return found < entries.size() ? &entries[found] : nullptr;
}

const TreemapRectangle* TreemapPicture::placeOf(const FSNode& node) const {
    for (std::size_t index = 0; index < entries.size(); ++index)
        if (entries[index].node == &node && !entries[index].isLeftOut()) return &places[index];
    return nullptr;
}

}  // namespace orrinvale
