// rowMenu: "Preview", "Show in Folder" and "Copy Path", in the same order on each page.
#include "ui/page/rowMenu.h"

#include <QClipboard>
#include <QCoreApplication>
#include <QGuiApplication>
#include <QMenu>

namespace orrinvale {
namespace {

QString entryText(const char* source) { return QCoreApplication::translate("RowMenu", source); }

}  // namespace

QMenu* makeRowMenu(QWidget* over, QObject& page, const RowActions& actions) {
    auto* const menu = new QMenu(over);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QAction* const preview = menu->addAction(entryText(QT_TRANSLATE_NOOP("RowMenu", "Preview")));
    preview->setEnabled(static_cast<bool>(actions.preview));
    if (actions.preview) QObject::connect(preview, &QAction::triggered, &page, actions.preview);
    menu->addAction(entryText(QT_TRANSLATE_NOOP("RowMenu", "Show in Folder")), &page,
                    actions.reveal);
    menu->addAction(entryText(QT_TRANSLATE_NOOP("RowMenu", "Copy Path")), &page,
                    [path = actions.path] {
                        QGuiApplication::clipboard()->setText(QString::fromStdString(path()));
                    });
    menu->addSeparator();
    return menu;
}

}  // namespace orrinvale
