// UninstallAppDelegate: searches this machine for applications. UninstallAppInfo is one such
// search.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "engine/uninstall/AppItems.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// Holds no state that changes; any thread.
class UninstallAppDelegate final {
public:
    /// `applications` has the kinds of this system besides bundles, and may be null. `root` stands
    /// before the folders that bundles are searched in, but for the one in the home. The references
    /// outlive the object.
    UninstallAppDelegate(const FileSystem& files, std::string home,
                         const Applications* applications = nullptr, std::string root = {})
        : m_files(files),
          m_home(std::move(home)),
          m_applications(applications),
          m_root(std::move(root)) {}

    /// What was found so far, each time that one more kind has answered.
    using News = std::function<void(const AppItemsArray& soFar)>;

    /// Adds all applications: bundles in the order of the four folders and of their listings, then
    /// the other kinds in theirs. Does nothing for null. What the kinds tell besides, and that not
    /// all bundles could be read, goes to `rest`, which may be null; it has no records. `news`,
    /// which may be empty, is called on this thread, and the items are not touched behind it.
    void getAppInfo(AppItemsArray* array, ApplicationInventory* rest = nullptr,
                    const News& news = {}) const;

    /// Adds the paths of the bundles in a folder: of each folder, links followed, whose extension
    /// is exactly "app". Other folders are searched in turn, at any depth, each once, so that links
    /// that lead in a circle end. What can not be read holds none, and the first of it is told in
    /// `unread`, which may be null.
    void applicationsInDirectory(const std::string& directory, std::vector<std::string>& withArray,
                                 std::string* unread = nullptr) const;

    /// The record of the bundle at a path. Without a property list that can be read it has neither
    /// identifier nor version; one that is there all the same is told in `unread`.
    [[nodiscard]] std::shared_ptr<AppItems> constructAppItem(const std::string& path,
                                                             std::string* unread = nullptr) const;

    /// The record of an application of another kind.
    [[nodiscard]] static std::shared_ptr<AppItems> itemOf(ApplicationRecord record);

private:
    const FileSystem& m_files;
    const std::string m_home;
    const Applications* const m_applications;
    const std::string m_root;
};

}  // namespace orrinvale
