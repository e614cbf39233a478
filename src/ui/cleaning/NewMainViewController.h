// NewMainViewController: the cleaning page with its result tree and outline. MainViewController.h
// has all that does not need these.
#pragma once

#include "ui/cleaning/CleanTreeModel.h"
#include "ui/cleaning/MainViewController.h"
#include "ui/kit/controls/PathAnimation.h"

class QLabel;

namespace orrinvale {

class PictureView;
class ScanListView;
class TickBox;

/// Its views come one after another: the start, the summary rows, the outline. Main thread only.
class NewMainViewController final : public MainViewController, private PathAnimationDelegate {
    Q_OBJECT
public:
    explicit NewMainViewController(CleanPageParts parts, QObject* parent = nullptr);
    ~NewMainViewController() override;

    [[nodiscard]] const CleanTree& tree() const { return m_tree; }
    [[nodiscard]] SimpleTreeNode* treeData() const { return m_tree.treeData(); }
    [[nodiscard]] std::size_t allSelectNumArr() const { return m_tree.allSelectNumArr(); }

    void constructTree();
    /// A click on the box of a row.
    void setObjectValue(TreeNode& node, const QModelIndex& index);
    /// The list of a group by its name.
    [[nodiscard]] ScanViewController& returnScanViewController(std::string_view name) const;
    /// The box above: 1 ticks everything, anything else clears it.
    void setAllSelectOrNoSelect(std::int32_t state);
    /// The box takes the state of all groups together, or of what the filter shows of them.
    void changeAllSelectCheckBoxState();
    void refOutlineWhenClickScanView();
    /// A box of a list has gone off.
    void callBackCheckBoxClick(const UntickedRow& row);

    void forwardViewAnimation() override;
    void backViewAnimation() override;

private:
    void makeOutline();
    void headerClicked();
    [[nodiscard]] std::int32_t shownState() const;
    void ticksWereChanged();
    void showNumber();
    void showExpanded();
    void flyFrom(const QPixmap& picture, const QRect& start);
    void callBackDeleteItemWithIndex() override { showNumber(); }

    void willScan() override;
    void scansEnded() override;
    void listsChanged() override;
    void rowTaken(std::size_t category, const std::string& path) override;
    void rowShown() override;
    void ticksChanged() override { refOutlineWhenClickScanView(); }
    void fly(const QWidget* from) override;
    void cleanSuccessBtnShowStyle() override;
    void filterChanged(const QString& words) override;
    [[nodiscard]] QWidget* overview() const override;
    bool goBackFromOverview() override;
    void showOutline(bool isOn);

    CleanTree m_tree;
    CleanTreeModel m_model;
    PathAnimation m_flight;
    ScanListView* outline = nullptr;
    TickBox* button = nullptr;  // above the outline
    PictureView* trashBtn = nullptr;
    QLabel* trashFileNumTF = nullptr;
    bool m_isOutlineShown = false;
    NotificationCenter::Observation m_unticked;
};

}  // namespace orrinvale
