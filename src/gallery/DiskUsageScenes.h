// DiskUsageScenes: the page "Disk Usage" in each of its looks, on the sample folder.
#pragma once

#include <QSet>
#include <QString>
#include <QTemporaryDir>
#include <memory>

#include "gallery/PageWorkings.h"
#include "gallery/StagedFiles.h"
#include "platform/fake/FakeVolumes.h"
#include "platform/linux/LinuxFiles.h"
#include "platform/linux/LinuxMemory.h"
#include "services/volumes/SystemWatch.h"

namespace orrinvale {

class AppPrefsWindowController;
class ColumnBrowser;
class DiskUsageAppController;
class PictureFolder;
class SampleFolder;
class UserDefaults;

/// The page stands in the toolbar window; the volumes are made up. Main thread only.
class DiskUsageScenes final {
public:
    /// All outlive the object; of the scenes only the `wanted` become pictures, all of them where
    /// none is named.
    DiskUsageScenes(const SampleFolder& sample, UserDefaults& defaults,
                    const PictureFolder& pictures, QSet<QString> wanted);
    ~DiskUsageScenes();
    DiskUsageScenes(const DiskUsageScenes&) = delete;
    DiskUsageScenes& operator=(const DiskUsageScenes&) = delete;

    /// False when a picture could not be made; standard error says why.
    bool draw();

private:
    bool save(const char* scene, QWidget* of = nullptr) const;
    void click(const char* button) const;
    void choose(int column, const char* name) const;
    void tick(int column, const char* name) const;
    [[nodiscard]] int rowOf(int column, const char* name) const;
    [[nodiscard]] bool waitForEnd() const;
    [[nodiscard]] bool drawScan();
    [[nodiscard]] bool drawResult();
    [[nodiscard]] bool drawRemoval();
    [[nodiscard]] bool drawMap(const char* scene) const;
    [[nodiscard]] bool drawCompareMenu() const;
    [[nodiscard]] bool drawChanges();
    void endComparison() const;
    void keepEarlierScan() const;

    const SampleFolder& m_sample;
    const PictureFolder& m_pictures;
    const QSet<QString> m_wanted;
    const LinuxFileSystem m_realFiles;
    StagedFiles m_files{m_realFiles};
    const LinuxMemory m_memory;
    FakeVolumes m_volumes;
    PageWorkings m_workings;
    const QTemporaryDir m_state;
    SystemWatch m_watch;
    std::unique_ptr<AppPrefsWindowController> m_controller;
    DiskUsageAppController* m_page = nullptr;
    ColumnBrowser* m_browser = nullptr;
};

}  // namespace orrinvale
