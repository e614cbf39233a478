// The layout is the only list of the items: places, spaces and the way of the arrow keys come from
// it.
#include "ui/preferences/PrefsToolbar.h"

#include <QActionGroup>
#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QMenu>
#include <algorithm>
#include <array>
#include <utility>

#include "ui/kit/look/Theme.h"

namespace orrinvale {

PrefsToolbar::PrefsToolbar(QWidget* parent) : QWidget(parent), m_row(new QHBoxLayout(this)) {
    m_row->setContentsMargins(Theme::gapSmall, 0, Theme::gapSmall, Theme::gapSmall);
    m_row->setSpacing(Theme::gapTiny);
    m_row->addStretch(0);  // gives way to any flexible space
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void PrefsToolbar::insertItem(int place, ToolbarItem* item) {
    m_row->insertWidget(place, item);
    item->setDisplay(m_display);
    connect(item, &QAbstractButton::clicked, this,
            [this, item] { Q_EMIT itemClicked(item->identifier()); });
    const auto all = items();
    if (std::none_of(all.begin(), all.end(),
                     [](auto* each) { return each->focusPolicy() == Qt::TabFocus; }))
        setTabStop(item);
    // The order in which they were made says nothing about where they stand.
    for (qsizetype i = 1; i < all.size(); ++i) setTabOrder(all[i - 1], all[i]);
}

void PrefsToolbar::insertFlexibleSpace(int place) { m_row->insertStretch(place, 1); }

void PrefsToolbar::insertSpace(int place) { m_row->insertSpacing(place, Theme::gapLarge); }

QList<ToolbarItem*> PrefsToolbar::items() const {
    QList<ToolbarItem*> out;
    for (int i = 0; i < m_row->count(); ++i)
        if (auto* const item = qobject_cast<ToolbarItem*>(m_row->itemAt(i)->widget()))
            out.append(item);
    return out;
}

void PrefsToolbar::setSelectedItemIdentifier(const QString& identifier) {
    for (ToolbarItem* const each : items()) {
        each->setChecked(each->isCheckable() && each->identifier() == identifier);
        if (each->isChecked()) setTabStop(each);
    }
}

QString PrefsToolbar::selectedItemIdentifier() const {
    const auto all = items();
    const auto found =
        std::find_if(all.begin(), all.end(), [](auto* each) { return each->isChecked(); });
    return found == all.end() ? QString() : (*found)->identifier();
}

void PrefsToolbar::setTabStop(ToolbarItem* item) {
    for (ToolbarItem* const each : items())
        each->setFocusPolicy(each == item ? Qt::TabFocus : Qt::NoFocus);
}

void PrefsToolbar::setDisplay(ToolbarDisplay display) {
    if (display == m_display) return;
    m_display = display;
    for (ToolbarItem* const each : items()) each->setDisplay(display);
    Q_EMIT displayChanged(display);
}

void PrefsToolbar::keyPressEvent(QKeyEvent* event) {
    const auto all = items();
    const qsizetype last = all.size() - 1;
    const qsizetype now = all.indexOf(static_cast<ToolbarItem*>(focusWidget()));
    const bool isMirrored = layoutDirection() == Qt::RightToLeft;
    qsizetype then = now;
    switch (event->key()) {
        case Qt::Key_Left: then = isMirrored ? now + 1 : now - 1; break;
        case Qt::Key_Right: then = isMirrored ? now - 1 : now + 1; break;
        case Qt::Key_Home: then = 0; break;
        case Qt::Key_End: then = last; break;
        default: QWidget::keyPressEvent(event); return;
    }
    if (now < 0 || then < 0 || then > last) return;
    setTabStop(all[then]);
    all[then]->setFocus(Qt::TabFocusReason);
}

void PrefsToolbar::contextMenuEvent(QContextMenuEvent* event) {
    auto* const menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    auto* const choices = new QActionGroup(menu);
    const std::array<std::pair<QString, ToolbarDisplay>, 3> displays{
        {{tr("Icon and Text"), ToolbarDisplay::IconAndText},
         {tr("Icon Only"), ToolbarDisplay::IconOnly},
         {tr("Text Only"), ToolbarDisplay::TextOnly}}};
    for (const auto& [title, display] : displays) {
        QAction* const action =
            menu->addAction(title, this, [this, chosen = display] { setDisplay(chosen); });
        action->setCheckable(true);
        action->setChecked(display == m_display);
        choices->addAction(action);
    }
    menu->popup(event->globalPos());
}

}  // namespace orrinvale
