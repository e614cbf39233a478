// Starting the window on the sample, and saving what it shows.
#include "gallery/PageScenes.h"

#include <QApplication>
#include <QWidget>
#include <cerrno>
#include <utility>

#include "engine/settings/UserDefaults.h"
#include "gallery/SampleFolder.h"
#include "gallery/drawing.h"
#include "platform/paths.h"
#include "ui/kit/chrome/TCImageWindow.h"
#include "ui/shell/DuplicateMainWindowController.h"

namespace orrinvale {

PageScenes::PageScenes(const SampleFolder& sample, UserDefaults& defaults,
                       const PictureFolder& pictures, QSet<QString> wanted, QString page)
    : m_sample(sample),
      m_pictures(pictures),
      m_wanted(std::move(wanted)),
      m_page(std::move(page)),
      m_menu({}),
      m_controller(std::make_unique<DuplicateMainWindowController>(
          m_workings.parts(m_files, defaults, joinPath(folderOf(sample.settings()), "state")),
          m_workings.icons)),
      m_window(m_controller->window()) {
    m_controller->setApplicationMenu(m_menu);
    m_controller->showWindow();
    m_files.refuse(SampleFolder::unreadableFolder, EACCES);
}

// Whoever waits in a held place still uses what goes now.
PageScenes::~PageScenes() { m_files.release(); }

bool PageScenes::save(const char* scene, QWidget* shown) const {
    const QString name = QLatin1String(scene);
    if (!m_wanted.isEmpty() && !m_wanted.contains(name)) return true;
    if (shown == nullptr) m_window->activateWindow();
    QApplication::processEvents();
    return m_pictures.save(m_page + name, (shown != nullptr ? shown : m_window)->grab());
}

}  // namespace orrinvale
