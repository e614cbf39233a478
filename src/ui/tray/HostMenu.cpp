// The popup's entries one after another; what they do is what the popup's do.
#include "ui/tray/HostMenu.h"

#include <QAction>
#include <QWidgetAction>
#include <utility>

#include "ui/kit/controls/pathText.h"
#include "ui/tray/CustomGreyBarView.h"
#include "ui/tray/StatusMenu.h"

namespace orrinvale {
namespace {

void setTextOf(QAction& entry, const QString& text) {
    if (entry.text() != text) entry.setText(text);
}

}  // namespace

QString hostText(const QString& text) {
    constexpr QChar mark = QLatin1Char('&');
    QString plain = onOneLine(text);
    plain.replace(QLatin1Char('_'), QLatin1String("__"));
    if (!plain.contains(mark)) return plain;
    // The toolkit turns the first one into the mark of a key: so one is put there for that, before
    // the first letter, or before a letter of no width where that would make a mark of a mark.
    constexpr QChar noWidth(0x2060);
    const bool isLetter = !plain.startsWith(mark) && !plain.startsWith(QLatin1Char('_'));
    QString lead(mark);
    if (!isLetter) lead += noWidth;
    return lead + plain;
}

HostMenu::HostMenu(std::function<void(const std::string& root)> openVolume, QObject* parent)
    : QObject(parent), m_openVolume(std::move(openVolume)) {
    m_menu.setObjectName(QStringLiteral("hostMenu"));
}

void HostMenu::take(const QMenu* popup) {
    m_rows.clear();
    m_menu.clear();
    if (popup == nullptr) return;
    for (QAction* const each : popup->actions()) {
        const auto* const widget = qobject_cast<const QWidgetAction*>(each);
        if (MenuItemView* const row = StatusMenu::viewOf(each)) {
            addRow(*row);
        } else if (widget != nullptr) {
            const auto* const bar = qobject_cast<CustomGreyBarView*>(widget->defaultWidget());
            if (bar != nullptr) m_menu.addAction(hostText(bar->title()))->setEnabled(false);
        } else if (each->isSeparator()) {
            m_menu.addSeparator();
        } else {
            QAction* const entry = m_menu.addAction(hostText(each->text()));
            entry->setEnabled(each->isEnabled());
            entry->setShortcut(each->shortcut());
            connect(entry, &QAction::triggered, each, &QAction::trigger);
        }
    }
    refresh();
}

void HostMenu::addRow(MenuItemView& view) {
    Row row{&view, m_menu.addAction(QString()), nullptr};
    connect(row.opens, &QAction::triggered, &view,
            [this, &view] { m_openVolume(view.volRootDir); });
    if (view.bCanEject) {
        row.ejects = m_menu.addAction(QString());
        connect(row.ejects, &QAction::triggered, &view, &MenuItemView::backDisk);
    }
    connect(&view, &MenuItemView::ejectingChanged, this, &HostMenu::refresh);
    m_rows.push_back(row);
}

void HostMenu::refresh() {
    for (const Row& each : m_rows) {
        if (each.view == nullptr) continue;
        const MenuItemView& view = *each.view;
        setTextOf(*each.opens, hostText(view.inOneLine()));
        each.opens->setEnabled(view.seen().silence.empty());
        if (each.ejects == nullptr) continue;
        each.ejects->setEnabled(!view.isEjecting());
        setTextOf(*each.ejects,
                  hostText(view.isEjecting() ? tr("Ejecting %1 …").arg(view.volumeSize)
                                             : tr("Eject %1").arg(view.volumeSize)));
    }
}

}  // namespace orrinvale
