// NamedControls: what tests of pages do with the controls of a window, reached by their names.
#pragma once

#include <QTreeView>
#include <QWidget>
#include <cstdlib>
#include <functional>
#include <string>
#include <vector>

#include "ui/support/soon.h"

namespace orrinvale::testing {

class NamedControls {
public:
    virtual ~NamedControls() = default;

    /// The control of this name; the test ends where there is none.
    template <class Control = QWidget> Control& control(const char* name) {
        for (QWidget* const in : places()) {
            if (in->objectName() == QLatin1String(name)) return static_cast<Control&>(*in);
            if (auto* const found = in->findChild<Control*>(QLatin1String(name))) return *found;
        }
        std::abort();
    }
    bool isShown(const char* name) { return control(name).isVisible(); }
    bool isEnabled(const char* name) { return control(name).isEnabled(); }
    std::string textOf(const char* name);
    void click(const char* name);
    /// What the window shows that a quiet button opens; it is closed again.
    std::string linesBehind(const char* button);
    /// Triggers an entry of the menu of a row. False where there is no menu, or the entry is off or
    /// not in it.
    static bool chooseInMenu(QTreeView& list, const QModelIndex& row, const char* entry);

    [[nodiscard]] static bool waitFor(const std::function<bool()>& isSo);

protected:
    /// Where the controls are looked for, first come first served.
    virtual std::vector<QWidget*> places() = 0;
};

}  // namespace orrinvale::testing
