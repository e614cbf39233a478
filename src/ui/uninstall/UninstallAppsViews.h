// UninstallAppsViews: the view of the uninstall page with its controls, and nothing of what they
// do. UninstallAppsController.h is what they do.
#pragma once

#include <QCoreApplication>
#include <vector>

#include "ui/kit/lists/TickOutline.h"
#include "ui/page/ResultFrame.h"

class QLabel;
class QLineEdit;

namespace orrinvale {

class LeftRail;
class NotificationCenter;
class Padlock;
class Spinner;
class TickBox;
class UninstallLeftCell;

/// The table, which hides what has no room: first the day of installation, then that of the last
/// use. Return asks for details, Delete for removal. Main thread only.
class UninstallAppsTable final : public TickOutline {
    Q_OBJECT
public:
    explicit UninstallAppsTable(QWidget* parent = nullptr);

Q_SIGNALS:
    void detailsWanted();
    void removalWanted();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
};

/// Each control has an object name equal to its field's. A view that nobody has put into a window
/// is deleted with this. Main thread only.
class UninstallAppsViews final : public ResultFrame {
    Q_DECLARE_TR_FUNCTIONS(UninstallAppsViews)

public:
    /// The centre outlives it.
    explicit UninstallAppsViews(NotificationCenter& notifications);

    LeftRail* leftView = nullptr;
    std::vector<UninstallLeftCell*> leftCellArr;  ///< by UninstallList::Row
    QLineEdit* filterField = nullptr;
    Padlock* lockButton = nullptr;
    UninstallAppsTable* tableView = nullptr;
    TickBox* selectButton = nullptr;
    QWidget* searchView = nullptr;  ///< while the inventory runs
    Spinner* searchAppsIndicator = nullptr;
    QWidget* emptyView = nullptr;
    QLabel* emptyLabel = nullptr;
    QLabel* uninstallTextField = nullptr;
    TextImageButton* stopButton = nullptr;
    TextImageButton* uninstallButton = nullptr;

private:
    void initLeftView(const NotificationCenter& notifications);
    void fillHead(NotificationCenter& notifications);
    void fillContent();
    void fillBottom();
};

}  // namespace orrinvale
