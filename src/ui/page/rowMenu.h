// rowMenu: what every page offers for one row of its list.
#pragma once

#include <functional>
#include <string>

class QMenu;
class QObject;
class QWidget;

namespace orrinvale {

struct RowActions {
    std::function<void()> preview;  ///< greyed without it
    std::function<void()> reveal;
    std::function<std::string()> path;  ///< exact bytes; asked when it is copied
};

/// A menu with these, to which the page adds its own behind a line. It deletes itself when it is
/// closed; nothing runs once `page` has ended. Main thread only.
[[nodiscard]] QMenu* makeRowMenu(QWidget* over, QObject& page, const RowActions& actions);

}  // namespace orrinvale
