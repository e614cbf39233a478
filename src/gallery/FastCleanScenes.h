// FastCleanScenes: pictures of the window of Fast Clean from the click to its end.
#pragma once

#include <QSet>
#include <QString>
#include <memory>
#include <string>

#include "gallery/PageWorkings.h"
#include "gallery/StagedFiles.h"
#include "platform/linux/LinuxFiles.h"
#include "platform/linux/LinuxFolders.h"

namespace orrinvale {

class FastClean;
class FolderUtilities;
class PictureFolder;
class SampleFolder;
class TCImageWindow;

/// Cleans a made-up home in the sample folder. Main thread only.
class FastCleanScenes final {
public:
    /// All outlive the object; of the scenes only the `wanted` become pictures, all of them where
    /// none is named.
    FastCleanScenes(const SampleFolder& sample, UserDefaults& defaults,
                    const PictureFolder& pictures, QSet<QString> wanted);
    ~FastCleanScenes();
    FastCleanScenes(const FastCleanScenes&) = delete;
    FastCleanScenes& operator=(const FastCleanScenes&) = delete;

    /// False when a picture could not be made; standard error says why.
    bool draw();

private:
    void fill() const;
    void choose(const char* settingKey);
    [[nodiscard]] bool drawRun();
    [[nodiscard]] bool drawQuestion();
    [[nodiscard]] bool save(const char* scene);
    [[nodiscard]] TCImageWindow& window() const;

    const PictureFolder& m_pictures;
    const QSet<QString> m_wanted;
    UserDefaults& m_defaults;
    const std::string m_home;
    const LinuxFileSystem m_files;
    StagedFiles m_staged{m_files};
    const LinuxFolders m_folders;
    const std::unique_ptr<const FolderUtilities> m_utilities;
    PageWorkings m_workings;
    NotificationCenter::Observation m_closing;
    std::uint64_t m_free = 0;
    std::unique_ptr<FastClean> m_clean;
};

}  // namespace orrinvale
