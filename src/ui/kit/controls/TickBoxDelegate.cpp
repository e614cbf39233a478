// TickBoxDelegate: see TickBoxDelegate.h.
#include "ui/kit/controls/TickBoxDelegate.h"

#include <QAbstractItemView>
#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

constexpr int boxMargin = Theme::gapTiny;
constexpr int labelStart = boxMargin + tickBoxSize + Theme::gapSmall;
constexpr int iconSize = 16;

QStyle& styleOf(const QStyleOptionViewItem& option) {
    return option.widget != nullptr ? *option.widget->style() : *QApplication::style();
}

QRect visual(const QStyleOptionViewItem& option, const QRect& logical) {
    return QStyle::visualRect(option.direction, option.rect, logical);
}

QPalette::ColorGroup colorGroup(const QStyleOptionViewItem& option) {
    if (!option.state.testFlag(QStyle::State_Enabled)) return QPalette::Disabled;
    return option.state.testFlag(QStyle::State_Active) ? QPalette::Active : QPalette::Inactive;
}

bool acceptsToggle(const QModelIndex& index) {
    return index.flags().testFlags(Qt::ItemIsEnabled | Qt::ItemIsUserCheckable);
}

}  // namespace

TickBoxDelegate::TickBoxDelegate(int stateRole, QObject* parent)
    : QStyledItemDelegate(parent), m_stateRole(stateRole) {}

QRect TickBoxDelegate::boxRect(const QStyleOptionViewItem& option) {
    const int top = option.rect.top() + (option.rect.height() - tickBoxSize) / 2;
    return visual(option, QRect(option.rect.left() + boxMargin, top, tickBoxSize, tickBoxSize));
}

QRect TickBoxDelegate::hitRect(const QStyleOptionViewItem& option) {
    return boxRect(option).adjusted(-tickBoxHalo, -tickBoxHalo, tickBoxHalo, tickBoxHalo);
}

void TickBoxDelegate::paint(QPainter* painter, const QStyleOptionViewItem& option,
                            const QModelIndex& index) const {
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    styleOf(cell).drawPrimitive(QStyle::PE_PanelItemViewItem, &cell, painter, cell.widget);
    const bool isBoxed = hasBox(index);
    if (isBoxed) {
        TickLook look;
        look.isEnabled = acceptsToggle(index) && cell.state.testFlag(QStyle::State_Enabled);
        look.isHovered = cell.state.testFlag(QStyle::State_MouseOver);
        look.isPressed =
            look.isHovered && m_pressed == index && QGuiApplication::mouseButtons() != Qt::NoButton;
        look.isFocused = cell.state.testFlag(QStyle::State_HasFocus);
        look.isOnAccent = cell.state.testFlag(QStyle::State_Selected) &&
                          cell.palette.color(colorGroup(cell), QPalette::Highlight) ==
                              Theme::shared().color(Theme::Color::Accent);
        paintTickBox(*painter, boxRect(cell), tickState(index.data(m_stateRole)), look);
    }
    paintLabel(*painter, cell, isBoxed);
}

void TickBoxDelegate::paintLabel(QPainter& painter, const QStyleOptionViewItem& option,
                                 bool isBoxed) const {
    painter.save();
    const auto group = colorGroup(option);
    QRect rest = option.rect.adjusted(isBoxed ? labelStart : boxMargin, 0, -boxMargin, 0);
    if (!option.icon.isNull()) {
        const QRect icon(rest.left(), rest.top() + (rest.height() - iconSize) / 2, iconSize,
                         iconSize);
        option.icon.paint(&painter, visual(option, icon), Qt::AlignCenter,
                          group == QPalette::Disabled ? QIcon::Disabled : QIcon::Normal);
        rest.setLeft(rest.left() + iconSize + Theme::gapSmall);
    }
    const bool isSelected = option.state.testFlag(QStyle::State_Selected);
    painter.setPen(
        option.palette.color(group, isSelected ? QPalette::HighlightedText : QPalette::Text));
    painter.setFont(option.font);
    const auto side = QStyle::visualAlignment(option.direction, Qt::AlignLeft | Qt::AlignVCenter);
    const QString text =
        option.fontMetrics.elidedText(option.text, option.textElideMode, rest.width());
    painter.drawText(visual(option, rest), static_cast<int>(side) | Qt::TextSingleLine, text);
    painter.restore();
}

QSize TickBoxDelegate::sizeHint(const QStyleOptionViewItem& option,
                                const QModelIndex& index) const {
    QStyleOptionViewItem cell = option;
    initStyleOption(&cell, index);
    int width = (hasBox(index) ? labelStart : boxMargin) +
                cell.fontMetrics.horizontalAdvance(cell.text) + boxMargin;
    if (!cell.icon.isNull()) width += iconSize + Theme::gapSmall;
    return {width, std::max(Theme::rowHeight, cell.fontMetrics.height() + Theme::gapTiny)};
}

bool TickBoxDelegate::editorEvent(QEvent* event, QAbstractItemModel* model,
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

bool TickBoxDelegate::mouseEvent(const QEvent& event, QPoint position, QAbstractItemModel& model,
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

bool TickBoxDelegate::toggle(QAbstractItemModel& model, const QModelIndex& index) const {
    const TickState next = stateAfterClick(tickState(index.data(m_stateRole)));
    model.setData(index, static_cast<int>(next), m_stateRole);
    return true;
}

}  // namespace orrinvale
