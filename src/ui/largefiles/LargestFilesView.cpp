#include "ui/largefiles/LargestFilesView.h"

#include <QHBoxLayout>
#include <QVBoxLayout>

#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/controls/ElidedLabel.h"
#include "ui/kit/controls/Panel.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/lists/FlatHeader.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {
namespace {

constexpr int filterBarHeight = 40;

}  // namespace

LargestFilesOutline::LargestFilesOutline(QWidget* parent) : TickOutline(new FlatHeader, parent) {
    setObjectName(QStringLiteral("filesList"));
    setAccessibleName(tr("Largest files of all folders"));
    headerBox()->setObjectName(QStringLiteral("selectListedButton"));
    headerBox()->setAccessibleName(tr("Select all files of this list"));
    setRootIsDecorated(false);
    setMouseTracking(true);
    header()->setSectionsClickable(true);
    header()->setSortIndicatorShown(true);
}

void LargestFilesOutline::keyboardSearch(const QString& search) {
    const QModelIndex current = currentIndex().siblingAtColumn(treePosition());
    if (current.isValid() && current != currentIndex()) setCurrentIndex(current);
    TickOutline::keyboardSearch(search);
}

LargestFilesView::LargestFilesView(QWidget* parent) : QWidget(parent) {
    setObjectName(QStringLiteral("filesView"));
    auto* const bar = named(new Panel(Theme::Color::SurfaceRaised, Qt::BottomEdge), "filterBar");
    bar->setFixedHeight(filterBarHeight);
    kindBtn = named(new HoverButton, "kindBtn");
    ageBtn = named(new HoverButton, "ageBtn");
    listNote = named(new ElidedLabel(Qt::ElideRight), "listNote");
    listNote->setForegroundRole(QPalette::PlaceholderText);
    auto* const filters = new QHBoxLayout(bar);
    filters->setContentsMargins(Theme::gapSmall, 0, Theme::gap, 0);
    filters->setSpacing(Theme::gapSmall);
    filters->addWidget(kindBtn);
    filters->addWidget(ageBtn);
    filters->addWidget(listNote, 1);
    filesList = new LargestFilesOutline;
    auto* const column = new QVBoxLayout(this);
    column->setContentsMargins({});
    column->setSpacing(0);
    column->addWidget(bar);
    column->addWidget(filesList, 1);
    setFocusProxy(filesList);
}

}  // namespace orrinvale
