// NamedControls: see NamedControls.h.
#include "ui/support/NamedControls.h"

#include <QAbstractButton>
#include <QApplication>
#include <QContextMenuEvent>
#include <QLabel>
#include <QMenu>
#include <QPlainTextEdit>

#include "support/test.h"

namespace orrinvale::testing {

std::string NamedControls::textOf(const char* name) {
    QWidget& found = control(name);
    if (const auto* const label = qobject_cast<QLabel*>(&found)) return label->text().toStdString();
    return qobject_cast<QAbstractButton*>(&found)->text().toStdString();
}

void NamedControls::click(const char* name) {
    EXPECT_TRUE(isShown(name) && isEnabled(name)) << name << " is out of reach";
    QTest::mouseClick(&control(name), Qt::LeftButton);
}

std::string NamedControls::linesBehind(const char* button) {
    click(button);
    auto& shown = control("lineList");
    const std::string lines = shown.findChild<QPlainTextEdit*>()->toPlainText().toStdString();
    QTest::keyClick(&shown, Qt::Key_Escape);
    return lines;
}

bool NamedControls::chooseInMenu(QTreeView& list, const QModelIndex& row, const char* entry) {
    list.setCurrentIndex(row);
    QContextMenuEvent event(QContextMenuEvent::Keyboard, {}, {});
    QApplication::sendEvent(list.viewport(), &event);
    auto* const menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    if (menu == nullptr) return false;
    bool isChosen = false;
    for (QAction* const action : menu->actions()) {
        if (action->text() != QString::fromUtf8(entry) || !action->isEnabled()) continue;
        action->trigger();
        isChosen = true;
    }
    menu->close();
    return isChosen;
}

bool NamedControls::waitFor(const std::function<bool()>& isSo) {
    return QTest::qWaitFor(isSo, 10'000);
}

}  // namespace orrinvale::testing
