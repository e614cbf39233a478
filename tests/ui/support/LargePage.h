// LargePage: the large file page in the real main window over real folders, driven by the names of
// its controls.
#pragma once

#include <QModelIndex>
#include <functional>
#include <string>
#include <vector>

#include "engine/largefiles/Controller.h"
#include "services/foundation/QtMainQueue.h"
#include "ui/support/PageWindow.h"

namespace orrinvale::testing {

/// The window with the second tab chosen. The controller of the process works on the files of this
/// object for as long as it lives.
class LargePage : public NamedControls {
public:
    LargePage();
    ~LargePage() override;
    LargePage(const LargePage&) = delete;
    LargePage& operator=(const LargePage&) = delete;

    /// The controller with these files of the program's own, which nothing removes.
    void setOwnFiles(std::vector<std::string> ownFiles);

    ListFileViewController& page() { return *window.window->listFileVC(); }
    QTreeView& outline() { return control<QTreeView>("outlineView"); }

    /// Chooses the folder in the panel, and waits until the scan has begun.
    void choose(std::vector<std::string> paths);
    /// Chooses it and waits until the scan is over.
    [[nodiscard]] bool scan(const std::string& path);
    /// The rows as a person reads them, one a line: indent, box ("x" all, "." nothing, "-" some, "
    /// " none), name, size.
    std::string list();
    /// The row of this name among those that are to be seen.
    QModelIndex row(const std::string& name);
    void clickCell(const std::string& name, int column);
    void tick(const std::string& name);
    void open(const std::string& name);
    /// Presses Delete, agrees, and waits until the removal is over; `meanwhile` runs when its
    /// window stands.
    [[nodiscard]] bool remove(const std::function<void(QWidget& progressWindow)>& meanwhile = {});

    PageWindow window;
    TestTree& tree = window.tree;
    RecordedDialogs& dialogs = window.dialogs;
    std::vector<std::string> revealed;

protected:
    std::vector<QWidget*> places() override;

private:
    QtMainQueue m_mainQueue;
};

}  // namespace orrinvale::testing
