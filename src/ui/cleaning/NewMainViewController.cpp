// CleanTree has the ticks of the tree; here they meet the outline and the page.
#include "ui/cleaning/NewMainViewController.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLocale>
#include <QStackedWidget>
#include <utility>

#include "engine/cleaning/CleanPageRows.h"
#include "ui/cleaning/CleanViews.h"
#include "ui/cleaning/ScanListView.h"
#include "ui/kit/chrome/HoverButton.h"
#include "ui/kit/chrome/TextImageButton.h"
#include "ui/kit/controls/PictureView.h"
#include "ui/kit/controls/showDisappearingEffect.h"
#include "ui/kit/controls/viewParts.h"
#include "ui/kit/lists/TickBox.h"
#include "ui/kit/look/picture.h"

namespace orrinvale {
namespace {

constexpr QSize flyingSize{30, 30};
// Where the effect of a clean stands, from the trash: the middle of what the page shows.
constexpr QPoint effectOffset{215, 40};

}  // namespace

NewMainViewController::NewMainViewController(CleanPageParts parts, QObject* parent)
    : MainViewController(std::move(parts), parent),
      m_model(
          this->parts().pages.icons,
          [this](TreeNode& node, const QModelIndex& index) { setObjectValue(node, index); },
          cleaned()),
      m_flight(*views().resultView) {
    makeOutline();
    m_flight.setDelegate(this);
    m_unticked = selectedRowInFastClean.observe(
        *this->parts().pages.notifications,
        [this](const UntickedRow& row) { callBackCheckBoxClick(row); });
    connect(views().outlineButton, &QAbstractButton::clicked, this, [this] { showOutline(true); });
    showOutline(false);
}

NewMainViewController::~NewMainViewController() {
    m_model.setTree(nullptr);
    if (view() != nullptr) outline->setModel(nullptr);
}

void NewMainViewController::makeOutline() {
    outline = new ScanListView(QStringLiteral("outline"), QStringLiteral("button"),
                               tr("What was found"), tr("Tick everything"));
    outline->setModel(&m_model);
    button = outline->headerBox();
    views().content->addWidget(outline);
    trashBtn = named(new PictureView(QStringLiteral("trash"), {20, 20}), "trashBtn");
    trashFileNumTF = makeLabel("trashFileNumTF", Theme::Text::BodyStrong);
    trashFileNumTF->setAccessibleName(tr("Ticked entries"));
    QBoxLayout& bottom = *views().bottom;
    bottom.insertWidget(bottom.indexOf(views().stopButton), trashBtn);
    bottom.insertWidget(bottom.indexOf(views().stopButton), trashFileNumTF);
    connect(button, &QAbstractButton::clicked, this, &NewMainViewController::headerClicked);
    connect(outline, &ScanListView::orderWanted, this, [this](int key, bool isDescending) {
        m_model.sort(static_cast<SortKey>(key), isDescending);
    });
    connect(outline, &TickOutline::menuWanted, this,
            [this](const QModelIndex& index, QPoint position) {
                TreeNode* const node = m_model.node(index);
                if (node != nullptr && simpleData(*node)->isLeaf())
                    showPlace(position, simpleData(*node)->name(), m_tree.categoryOf(*node));
            });
}

void NewMainViewController::willScan() {
    m_model.setTree(nullptr);
    m_tree.clear();
    showNumber();
    showOutline(false);
}

void NewMainViewController::scansEnded() {
    constructTree();
    showOutline(true);
}

void NewMainViewController::listsChanged() { constructTree(); }

// Whoever reads the outline keeps the place.
void NewMainViewController::rowTaken(std::size_t category, const std::string& path) {
    const TreeNode::Pointer went = m_tree.takeOut(category, path);
    if (went != nullptr) m_model.rowsWent();
}

void NewMainViewController::rowShown() {
    views().outlineButton->setVisible(!m_isOutlineShown && treeData() != nullptr &&
                                      selectRowNum == overviewRow);
}

void NewMainViewController::constructTree() {
    m_model.setTree(nullptr);
    m_tree.constructTree(lists());
    m_model.setTree(m_tree.treeData());
    outline->showOrder(-1, false);
    showExpanded();
    changeAllSelectCheckBoxState();
    showNumber();
}

void NewMainViewController::showExpanded() {
    if (m_model.rowCount() > 0) outline->expand(m_model.index(0, 0));
}

void NewMainViewController::setObjectValue(TreeNode& node, const QModelIndex& index) {
    if (!isFree()) return;
    const bool isLeaf = simpleData(node)->isLeaf();
    const std::int32_t before = simpleData(node)->selectNum();
    if (isLeaf) m_tree.clickLeaf(node);
    else if (m_model.isFiltered()) m_tree.clickLeaves(node, m_model.shownLeaves(node));
    else m_tree.clickGroup(node);
    if (before == 0) {
        const QIcon icon = isLeaf && parts().pages.icons
                               ? parts().pages.icons(*simpleData(node)->iconRep())
                               : picture(QStringLiteral("file1.png"));
        const QPoint offset = outline->viewport()->mapTo(views().resultView, QPoint(0, 0));
        flyFrom(icon.pixmap(flyingSize, outline->devicePixelRatioF()),
                outline->visualRect(index).translated(offset));
    }
    ticksWereChanged();
}

ScanViewController& NewMainViewController::returnScanViewController(std::string_view name) const {
    return *tableControllers().at(categoryOfGroup(name));
}

void NewMainViewController::headerClicked() {
    if (!isFree() || treeData() == nullptr) return changeAllSelectCheckBoxState();
    const bool isOn = shownState() != 1;
    if (!m_model.isFiltered()) return setAllSelectOrNoSelect(isOn ? 1 : 0);
    for (std::size_t i = 0; i < treeData()->numberOfChildren(); ++i) {
        TreeNode& group = *treeData()->childAtIndex(i);
        m_tree.setLeaves(group, m_model.shownLeaves(group), isOn);
    }
    ticksWereChanged();
}

void NewMainViewController::setAllSelectOrNoSelect(std::int32_t state) {
    if (!isFree()) return changeAllSelectCheckBoxState();
    m_tree.setAllSelectOrNoSelect(state == 1);
    if (state == 1) fly(button);
    button->setState(state == 1 ? TickState::All : TickState::Nothing);
    ticksWereChanged();
}

std::int32_t NewMainViewController::shownState() const {
    return m_model.isFiltered() ? m_model.shownState() : m_tree.changeAllSelectCheckBoxState();
}

void NewMainViewController::changeAllSelectCheckBoxState() {
    button->setState(static_cast<TickState>(shownState()));
}

// The tree is ahead of everything else.
void NewMainViewController::ticksWereChanged() {
    showNumber();
    changeAllSelectCheckBoxState();
    m_model.refresh();
    cleanShowSelectNumCommAction();
    setCleanButtonState();
}

void NewMainViewController::refOutlineWhenClickScanView() {
    m_tree.refOutlineWhenClickScanView();
    changeAllSelectCheckBoxState();
    showNumber();
    if (outline->isVisible()) m_model.refresh();
}

void NewMainViewController::callBackCheckBoxClick(const UntickedRow& /*row*/) {
    refOutlineWhenClickScanView();
}

void NewMainViewController::showNumber() {
    trashFileNumTF->setText(QLocale().toString(qulonglong(m_tree.allSelectNumArr())));
}

void NewMainViewController::flyFrom(const QPixmap& picture, const QRect& start) {
    if (outline->isVisible()) m_flight.fly(picture, start, trashBtn);
}

void NewMainViewController::fly(const QWidget* from) {
    const QRect start(from->mapTo(views().resultView, QPoint(0, 0)), from->size());
    m_flight.fly(picturePixmap(QStringLiteral("file1.png"), flyingSize, from->devicePixelRatioF()),
                 start, trashBtn);
}

void NewMainViewController::cleanSuccessBtnShowStyle() {
    const QPoint basket = trashBtn->mapTo(views().resultView, trashBtn->rect().center());
    showDisappearingEffect(*views().resultView, basket - effectOffset);
}

void NewMainViewController::filterChanged(const QString& words) {
    m_model.setFilter(words);
    changeAllSelectCheckBoxState();
    if (words.isEmpty()) return;
    // All at once would lay out anew even where all are open already.
    for (int row = 0; row < m_model.rowCount(); ++row) outline->expand(m_model.index(row, 0));
}

QWidget* NewMainViewController::overview() const {
    return m_isOutlineShown ? static_cast<QWidget*>(outline) : MainViewController::overview();
}

void NewMainViewController::showOutline(bool isOn) {
    m_isOutlineShown = isOn;
    if (selectRowNum == overviewRow) showRow();
    rowShown();
}

void NewMainViewController::forwardViewAnimation() {
    if (view()->isAncestorOf(views().resultView) && views().resultView->isVisible())
        return showOutline(treeData() != nullptr);
    MainViewController::forwardViewAnimation();
}

void NewMainViewController::backViewAnimation() {
    if (!goBackFromOverview()) MainViewController::backViewAnimation();
}

bool NewMainViewController::goBackFromOverview() {
    if (!m_isOutlineShown) return false;
    showOutline(false);
    return true;
}

}  // namespace orrinvale
