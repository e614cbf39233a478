// LargePage: see LargePage.h.
#include "ui/support/LargePage.h"

#include <QApplication>

#include "support/test.h"
#include "ui/kit/lists/RowDelegate.h"
#include "ui/largefiles/FileNodeModel.h"

namespace orrinvale::testing {

LargePage::LargePage() {
    setOwnFiles({});
    QTest::keyClick(window.window->window(), Qt::Key_2, Qt::ControlModifier);
}

LargePage::~LargePage() {
    Controller::getController().setParts({});
    window.window.reset();
}

void LargePage::setOwnFiles(Strings ownFiles) {
    Controller::getController().setParts(
        {.files = &window.files,
         .mainQueue = &m_mainQueue,
         .ownFiles = std::move(ownFiles),
         .reveal = [this](const std::string& path) { revealed.push_back(path); },
         .openFolder = {}});
}

std::vector<QWidget*> LargePage::places() {
    return {page().listView(), page().aLoadView(), window.window->window()};
}

void LargePage::choose(Strings paths) {
    dialogs.willChoose(std::move(paths));
    QTest::keyClick(window.window->window(), Qt::Key_O, Qt::ControlModifier);
    EXPECT_SOON(isShown("listView"));
}

bool LargePage::scan(const std::string& path) {
    choose({path});
    return waitFor([this] { return !page().isScan(); });
}

std::string LargePage::list() {
    std::string text;
    for (QModelIndex row = outline().model()->index(0, 0); row.isValid();
         row = outline().indexBelow(row)) {
        for (QModelIndex above = row.parent(); above.isValid(); above = above.parent())
            text += "  ";
        const auto cell = [&](int column, int role = Qt::DisplayRole) {
            return row.siblingAtColumn(column).data(role);
        };
        const QVariant state = cell(FileNodeModel::CheckBox, FileNodeModel::StateRole);
        text += !state.isValid() ? ' ' : ".x-"[state.toInt()];
        text += ' ' + cell(FileNodeModel::Name).toString().toStdString() + ' ' +
                cell(FileNodeModel::Size).toString().toStdString() + '\n';
    }
    return text;
}

QModelIndex LargePage::row(const std::string& name) {
    for (QModelIndex row = outline().model()->index(0, 0); row.isValid();
         row = outline().indexBelow(row))
        if (row.siblingAtColumn(FileNodeModel::Name).data().toString().toStdString() == name)
            return row;
    ADD_FAILURE() << "no row " << name;
    return {};
}

void LargePage::clickCell(const std::string& name, int column) {
    const QModelIndex cell = row(name).siblingAtColumn(column);
    outline().scrollTo(cell);
    QStyleOptionViewItem option;
    option.rect = outline().visualRect(cell);
    const QPoint place = column == FileNodeModel::CheckBox ? RowDelegate::boxRect(option).center()
                                                           : option.rect.center();
    EXPECT_TRUE(outline().viewport()->rect().contains(place));
    QTest::mouseClick(outline().viewport(), Qt::LeftButton, {}, place);
    QApplication::processEvents();
}

void LargePage::tick(const std::string& name) { clickCell(name, FileNodeModel::CheckBox); }

void LargePage::open(const std::string& name) {
    outline().setFocus();
    outline().setCurrentIndex(row(name).siblingAtColumn(FileNodeModel::Name));
    QTest::keyClick(&outline(), Qt::Key_Right);
    QApplication::processEvents();
}

bool LargePage::remove(const std::function<void(QWidget& progressWindow)>& meanwhile) {
    dialogs.willAnswer(0);
    if (meanwhile) window.removing.shut();
    click("deleteButton");
    const auto modal = [] { return QApplication::activeModalWidget(); };
    if (meanwhile) {
        if (!waitFor([&] { return modal() != nullptr && window.removing.isWaitedAt(); }))
            return false;
        meanwhile(*modal());
        window.removing.open();
    }
    bool begun = meanwhile != nullptr;
    return waitFor([&] {
        begun = begun || Controller::getController().isRemoving();
        return begun && !Controller::getController().isRemoving() && modal() == nullptr;
    });
}

}  // namespace orrinvale::testing
