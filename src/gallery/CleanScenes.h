// CleanScenes: pictures of the cleaning page in its states.
#pragma once

#include <QSet>
#include <QString>
#include <memory>
#include <string>

#include "gallery/PageWorkings.h"
#include "gallery/StagedFiles.h"
#include "platform/fake/FakeVolumes.h"
#include "platform/fake/MadeUpFolders.h"
#include "platform/linux/LinuxFiles.h"
#include "platform/linux/LinuxFolders.h"
#include "platform/linux/LinuxMemory.h"
#include "services/volumes/Ejections.h"
#include "services/volumes/SystemWatch.h"

namespace orrinvale {

class AppPrefsWindowController;
class FolderUtilities;
class NewMainViewController;
class PictureFolder;
class SampleFolder;
class UserDefaults;

/// Cleans a made-up home in the sample folder. Main thread only.
class CleanScenes final {
public:
    /// All outlive the object; of the scenes only the `wanted` become pictures, all of them where
    /// none is named.
    CleanScenes(const SampleFolder& sample, UserDefaults& defaults, const PictureFolder& pictures,
                QSet<QString> wanted);
    ~CleanScenes();
    CleanScenes(const CleanScenes&) = delete;
    CleanScenes& operator=(const CleanScenes&) = delete;

    /// False when a picture could not be made; standard error says why.
    bool draw();

private:
    void fill() const;
    [[nodiscard]] bool drawScan();
    [[nodiscard]] bool drawReview();
    [[nodiscard]] bool drawClean();
    [[nodiscard]] bool drawEmpty();
    [[nodiscard]] bool save(const char* scene) const;
    [[nodiscard]] bool waitForLists() const;
    [[nodiscard]] QString noteText() const;
    bool click(const char* name) const;

    const PictureFolder& m_pictures;
    const QSet<QString> m_wanted;
    const std::string m_home;
    const LinuxFileSystem m_files;
    StagedFiles m_staged{m_files};
    const LinuxFolders m_real;
    const MadeUpFolders m_folders;
    const std::unique_ptr<const FolderUtilities> m_utilities;
    PageWorkings m_workings;
    FakeVolumes m_platform;
    const LinuxMemory m_memory;
    SystemWatch m_watch{m_platform, m_memory, m_workings.mainQueue, std::chrono::hours(1)};
    Ejections m_ejections{m_platform, m_workings.mainQueue};
    std::uint64_t m_free = 0;
    std::unique_ptr<AppPrefsWindowController> m_window;
    NewMainViewController* m_page = nullptr;
};

}  // namespace orrinvale
