// A Cell is one cell while it is drawn, from its start to its end.
#include "ui/kit/lists/RowDelegate.h"

#include <QApplication>
#include <QIcon>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <algorithm>

#include "ui/kit/lists/FlatHeader.h"
#include "ui/kit/lists/TickModel.h"
#include "ui/kit/look/Theme.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr int boxMargin = Theme::gapTiny;
constexpr int afterRowBox = boxMargin + tickBoxSize + Theme::gapSmall;
constexpr int rowBarHeight = 2;

CellLook lookOf(const QModelIndex& index) {
    return static_cast<CellLook>(index.data(TickModel::LookRole).toInt());
}

bool hasBox(const QModelIndex& index) { return index.data(TickModel::StateRole).isValid(); }

bool acceptsToggle(const QModelIndex& index) {
    return index.flags().testFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
}

bool toggle(QAbstractItemModel& model, const QModelIndex& index) {
    const TickState next = stateAfterClick(tickState(index.data(TickModel::StateRole)));
    model.setData(index, static_cast<int>(next), TickModel::StateRole);
    return true;
}

class Cell {
public:
    Cell(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index)
        : m_painter(painter),
          m_option(option),
          m_index(index),
          m_look(lookOf(index)),
          m_isGrey(index.data(TickModel::GreyRole).toBool() ||
                   !option.state.testFlag(QStyle::State_Enabled)),
          m_isStrong(index.data(TickModel::StrongRole).toBool()),
          m_rect(option.rect) {
        // A name stands close beside its chevron.
        const int start = hasBox(index)     ? afterRowBox
                          : isNamed(m_look) ? Theme::gapTiny
                                            : FlatHeader::textMargin;
        m_rect.adjust(start, 0, -FlatHeader::textMargin, 0);
        const bool isBold = m_isStrong && isNamed(m_look);
        m_painter.setFont(Theme::shared().font(isBold ? Theme::Text::BodyStrong  //
                                                      : Theme::Text::Body));
    }

    void draw() {
        if (isNamed(m_look)) drawIcon();
        if (m_look == CellLook::PathName) {
            drawSigns();
            drawPathName();
            return;
        }
        if (m_look == CellLook::TwoLines) {
            drawTwoLines();
            return;
        }
        drawShare();
        setColor(m_look == CellLook::Name || m_isStrong);
        drawText(shownText());
    }

private:
    [[nodiscard]] QRect visual(const QRect& logical) const {
        return QStyle::visualRect(m_option.direction, m_option.rect, logical);
    }
    // A square at the start of what is left of the cell.
    [[nodiscard]] QRect take(int side, int gapAfter) {
        const QRect square(m_rect.left(), m_rect.top() + (m_rect.height() - side) / 2, side, side);
        m_rect.setLeft(square.right() + 1 + gapAfter);
        return visual(square);
    }
    void setColor(bool isMain) {
        m_painter.setPen(Theme::shared().color(m_isGrey ? Theme::Color::TextDisabled
                                               : isMain ? Theme::Color::Text
                                                        : Theme::Color::TextSecondary));
    }
    void drawText(const QString& text) {
        const Qt::Alignment side = m_look == CellLook::Figure ? Qt::AlignRight : Qt::AlignLeft;
        const auto shown = QStyle::visualAlignment(m_option.direction, side | Qt::AlignVCenter);
        m_painter.drawText(visual(m_rect), int(shown) | Qt::TextSingleLine, text);
    }

    void drawIcon() {
        const auto icon = m_index.data(TickModel::IconRole).value<QIcon>();
        const int side = m_look == CellLook::TwoLines ? RowDelegate::largeIconSide  //
                                                      : RowDelegate::iconSide;
        icon.paint(&m_painter, take(side, Theme::gapSmall), Qt::AlignCenter,
                   m_isGrey ? QIcon::Disabled : QIcon::Normal);
    }
    void drawSigns() {
        for (const QString& sign : m_index.data(TickModel::SignsRole).toStringList())
            picture(sign).paint(&m_painter, take(RowDelegate::signSide, Theme::gapTiny));
    }
    [[nodiscard]] PathParts shownPath() const {
        const QString path = onOneLine(m_index.data(Qt::DisplayRole).toString());
        return shortenedPath(path, m_index.data(TickModel::FolderRole).toString(),
                             m_painter.fontMetrics(), m_rect.width());
    }
    void drawPathName() {
        const PathParts shown = shownPath();
        setColor(false);
        drawText(shown.folder);
        setColor(true);
        m_rect.setLeft(m_rect.left() + m_painter.fontMetrics().horizontalAdvance(shown.folder));
        drawText(shown.name);
    }
    // A name without a second line stands in the middle.
    void drawTwoLines() {
        const QString second = onOneLine(m_index.data(TickModel::SecondRole).toString());
        const QRect whole = m_rect;
        const QFont small = Theme::shared().font(Theme::Text::Caption);
        const int smallHeight = QFontMetrics(small).height();
        const int spare = whole.height() - m_painter.fontMetrics().height() - smallHeight;
        if (!second.isEmpty()) m_rect.adjust(0, spare / 2, 0, -smallHeight - spare / 2);
        setColor(true);
        drawText(shownText());
        if (second.isEmpty()) return;
        m_rect = whole.adjusted(0, whole.height() - smallHeight - spare / 2, 0, -spare / 2);
        m_painter.setFont(small);
        setColor(false);
        drawText(m_painter.fontMetrics().elidedText(second, Qt::ElideRight, m_rect.width()));
    }
    [[nodiscard]] QString shownText() const {
        if (m_look == CellLook::Path) {
            const PathParts shown = shownPath();
            return shown.folder + shown.name;
        }
        // Of a name both ends count.
        const auto cut = m_look == CellLook::Name ? Qt::ElideMiddle : Qt::ElideRight;
        return m_painter.fontMetrics().elidedText(
            onOneLine(m_index.data(Qt::DisplayRole).toString()), cut, m_rect.width());
    }
    // A thin bar under the figure.
    void drawShare() {
        const QVariant share = m_index.data(TickModel::ShareRole);
        if (!share.isValid()) return;
        QRect bar(m_rect.left(), m_rect.bottom() - 2 * rowBarHeight, m_rect.width(), rowBarHeight);
        m_painter.fillRect(visual(bar), Theme::shared().color(Theme::Color::Line));
        bar.setWidth(qRound(bar.width() * std::clamp(share.toDouble(), 0.0, 1.0)));
        m_painter.fillRect(visual(bar), Theme::shared().color(m_isGrey ? Theme::Color::TextDisabled
                                                                       : Theme::Color::Accent));
    }

    QPainter& m_painter;
    const QStyleOptionViewItem& m_option;
    const QModelIndex& m_index;
    const CellLook m_look;
    const bool m_isGrey, m_isStrong;
    QRect m_rect;  // what is left of the cell, from left to right whatever the language
};

// The style says of the whole row that the pointer is over it; which picture it is on shows the
// pointer's place.
void drawButton(QPainter& painter, const QStyleOptionViewItem& option, const QModelIndex& index) {
    const auto icon = index.data(TickModel::IconRole).value<QIcon>();
    if (icon.isNull()) return;
    QRect place(QPoint(), QSize(RowDelegate::buttonSide, RowDelegate::buttonSide));
    place.moveCenter(option.rect.center());
    const bool isHovered = lookOf(index) == CellLook::Button &&
                           option.state.testFlag(QStyle::State_MouseOver) &&
                           option.widget != nullptr &&
                           option.rect.contains(option.widget->mapFromGlobal(QCursor::pos()));
    if (isHovered) {
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(Theme::shared().color(Theme::Color::Pressed));
        painter.drawRoundedRect(
            place.adjusted(-Theme::gapTiny, -Theme::gapTiny, Theme::gapTiny, Theme::gapTiny),
            Theme::radiusSmall, Theme::radiusSmall);
    }
    icon.paint(&painter, place);
}

}  // namespace

QRect RowDelegate::boxRect(const QStyleOptionViewItem& option) {
    const int top = option.rect.top() + (option.rect.height() - tickBoxSize) / 2;
    return QStyle::visualRect(option.direction, option.rect,
                              QRect(option.rect.left() + boxMargin, top, tickBoxSize, tickBoxSize));
}

QRect RowDelegate::hitRect(const QStyleOptionViewItem& option) {
    return boxRect(option).adjusted(-tickBoxHalo, -tickBoxHalo, tickBoxHalo, tickBoxHalo);
}

void RowDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                        const QModelIndex& index) const {
    QStyleOptionViewItem cell = option;
    cell.index = index;
    QStyle* const style = option.widget != nullptr ? option.widget->style() : QApplication::style();
    style->drawPrimitive(QStyle::PE_PanelItemViewItem, &cell, painter, option.widget);

    painter->save();
    const CellLook look = lookOf(index);
    if (hasBox(index)) drawBox(*painter, option, index);
    if (look == CellLook::Button || look == CellLook::Sign) drawButton(*painter, option, index);
    else if (look != CellLook::Box) Cell(*painter, option, index).draw();
    painter->restore();
}

void RowDelegate::drawBox(QPainter& painter, const QStyleOptionViewItem& option,
                          const QModelIndex& index) const {
    TickLook look;
    look.isEnabled = acceptsToggle(index) && option.state.testFlag(QStyle::State_Enabled);
    look.isHovered = option.state.testFlag(QStyle::State_MouseOver);
    look.isPressed =
        look.isHovered && m_pressed == index && QGuiApplication::mouseButtons() != Qt::NoButton;
    look.isFocused = option.state.testFlag(QStyle::State_HasFocus);
    look.isOnAccent =
        option.state.testFlag(QStyle::State_Selected) &&
        option.palette.color(QPalette::Highlight) == Theme::shared().color(Theme::Color::Accent);
    paintTickBox(painter, boxRect(option), tickState(index.data(TickModel::StateRole)), look);
}

QSize RowDelegate::sizeHint(const QStyleOptionViewItem& option, const QModelIndex& index) const {
    const QFontMetrics metrics(Theme::shared().font(Theme::Text::Body));
    int width = metrics.horizontalAdvance(index.data(Qt::DisplayRole).toString()) + Theme::gapLarge;
    if (hasBox(index)) width += afterRowBox;
    if (isNamed(lookOf(index))) width += iconSide + Theme::gapSmall;
    return {width, std::max(rowHeight, option.fontMetrics.height() + Theme::gapSmall)};
}

bool RowDelegate::editorEvent(QEvent* event, QAbstractItemModel* model,
                              const QStyleOptionViewItem& option, const QModelIndex& index) {
    if (!hasBox(index) || !acceptsToggle(index)) return false;
    switch (event->type()) {
        case QEvent::MouseButtonPress:
        case QEvent::MouseButtonDblClick:
        case QEvent::MouseButtonRelease: {
            const auto& mouse = static_cast<const QMouseEvent&>(*event);
            if (mouse.button() != Qt::LeftButton) return false;
            return mouseEvent(mouse, mouse.position().toPoint(), *model, option, index);
        }
        case QEvent::KeyPress: {
            const auto& key = static_cast<const QKeyEvent&>(*event);
            if (key.key() != Qt::Key_Space || key.modifiers() != Qt::NoModifier) return false;
            return key.isAutoRepeat() || toggle(*model, index);  // a key held down must not flicker
        }
        default: return false;
    }
}

bool RowDelegate::mouseEvent(const QEvent& event, QPoint position, QAbstractItemModel& model,
                             const QStyleOptionViewItem& option, const QModelIndex& index) {
    const bool isInside = hitRect(option).contains(position);
    if (event.type() != QEvent::MouseButtonRelease) {
        // The second press of a quick pair counts like the first; taken here, it does not open the
        // row.
        m_pressed = isInside ? QPersistentModelIndex(index) : QPersistentModelIndex();
        return isInside;
    }
    const bool isClick = isInside && m_pressed == index;
    m_pressed = QPersistentModelIndex();
    return isClick && toggle(model, index);
}

}  // namespace orrinvale
