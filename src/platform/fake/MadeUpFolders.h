// MadeUpFolders: the folders of a home, with those of the system beside them, so that nothing of
// the machine is looked at.
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "platform/folders.h"

namespace orrinvale {

/// The system's caches are "sys/cache" below `root`, its logs "sys/log". `real` outlives it.
class MadeUpFolders final : public Folders {
public:
    MadeUpFolders(const Folders& real, std::string root) : m_real(real), m_root(std::move(root)) {}

    std::string home() const override { return m_real.home(); }
    std::string systemCaches() const override { return m_root + "/sys/cache"; }
    std::string userCaches() const override { return m_real.userCaches(); }
    std::string systemLogs() const override { return m_root + "/sys/log"; }
    std::vector<std::string> programCaches() const override { return m_real.programCaches(); }
    std::vector<std::string> userLogs() const override { return m_real.userLogs(); }
    std::string downloads() const override { return m_real.downloads(); }
    std::vector<std::string> otherUserFolders() const override { return m_real.otherUserFolders(); }
    std::string homeTrash() const override { return m_real.homeTrash(); }
    std::vector<std::string> volumeTrash(const std::string& root) const override {
        return m_real.volumeTrash(root);
    }
    std::optional<std::string> trashRecordOf(const std::string& path) const override {
        return m_real.trashRecordOf(path);
    }

private:
    const Folders& m_real;
    const std::string m_root;
};

}  // namespace orrinvale
