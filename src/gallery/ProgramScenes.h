// ProgramScenes: pictures of what concerns the whole program: its menu, the words about it, and
// volumes that stay.
#pragma once

#include <QSet>
#include <QString>
#include <memory>
#include <string>

#include "engine/cleaning/makeFolderUtilities.h"
#include "engine/updates/UpdateCheck.h"
#include "gallery/PageWorkings.h"
#include "platform/fake/FakeMountChanges.h"
#include "platform/fake/FakeVolumes.h"
#include "platform/linux/LinuxFiles.h"
#include "platform/linux/LinuxFolders.h"
#include "platform/linux/LinuxMemory.h"
#include "services/volumes/Ejections.h"
#include "services/volumes/SystemWatch.h"
#include "ui/diagnostics/DiagnosticParts.h"

namespace orrinvale {

/// A machine that nobody has.
class StagedSystem final : public SystemValues {
public:
    [[nodiscard]] SysResult<std::string> sysctlbyname(std::string_view name) const override;
};

class AppDelegate;
class PictureFolder;
class TCImageWindow;
class UserDefaults;

/// The volumes are made up, as no machine that draws has a stick in it. Main thread only.
class ProgramScenes final {
public:
    /// All outlive the object; of the scenes only the `wanted` become pictures, all of them where
    /// none is named.
    ProgramScenes(UserDefaults& defaults, const PictureFolder& pictures, QSet<QString> wanted);
    ~ProgramScenes();
    ProgramScenes(const ProgramScenes&) = delete;
    ProgramScenes& operator=(const ProgramScenes&) = delete;

    /// False when a picture could not be made; standard error says why.
    bool draw();

private:
    bool save(const char* scene, const QPixmap& picture) const;
    bool saveSheet(const char* scene);
    bool drawMenu();
    bool drawReport();
    [[nodiscard]] TCImageWindow& window() const;

    const PictureFolder& m_pictures;
    const QSet<QString> m_wanted;
    const LinuxFileSystem m_files;
    PageWorkings m_workings;
    FakeVolumes& m_volumes = *new FakeVolumes;  // never freed, as a look may go on
    Ejections m_ejections{m_volumes, m_workings.mainQueue};
    SystemWatch m_watch{m_volumes, *new LinuxMemory, m_workings.mainQueue, std::chrono::hours(1)};
    FakeMountChanges m_mountChanges;
    const StagedSystem m_system;
    LogState m_log{.file = "/home/anna/.local/state/com.kelpford.Orrinvale/Orrinvale.log"};
    const UpdateParts m_updates{};  // without keys: nobody is asked
    const LinuxFolders m_folders;
    const std::shared_ptr<const FolderUtilities> m_utilities =
        makeFolderUtilities(m_files, m_folders, m_volumes);
    std::unique_ptr<AppDelegate> m_delegate;
};

}  // namespace orrinvale
