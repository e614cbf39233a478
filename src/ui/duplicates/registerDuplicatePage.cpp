// registerDuplicatePage: see registerDuplicatePage.h.
#include "ui/duplicates/registerDuplicatePage.h"

#include <utility>

#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/preferences/AppPrefsWindowController.h"

namespace orrinvale {

void registerDuplicatePage(AppPrefsWindowController& controller, SameFileDeleteParts parts) {
    const auto makeView = [&controller, parts = std::move(parts)](QObject* owner) -> QWidget* {
        auto* const page = new SameFileDeleteViewController(parts, owner);
        page->setMainWindow(controller.window());
        return page->view();
    };
    controller.registerPage({QStringLiteral("duplicates_file"),
                             SameFileDeleteViewController::tr("Duplicates"),
                             QStringLiteral("duplicates_file"), makeView});
}

}  // namespace orrinvale
