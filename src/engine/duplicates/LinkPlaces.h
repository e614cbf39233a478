// LinkPlaces: where what a search found behind links really lies, also where the path of a folder
// that is searched has a link in it.
#pragma once

#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

#include "engine/duplicates/AppAttrbItem.h"
#include "engine/duplicates/fileAttrbItem.h"
#include "platform/fileTypes.h"

namespace orrinvale {

/// Links are followed where they stand directly in a folder that is searched. Filled by the
/// thread that searches, read-only behind its end.
class LinkPlaces final {
public:
    /// `roots` are the folders that are searched. The file system must outlive the object.
    LinkPlaces(const FileSystem& files, const std::vector<std::string>& roots);

    /// Some path of a folder that is searched is not the one without links.
    [[nodiscard]] bool hasLinkedRoots() const;

    /// Finds out the place of each file or bundle that is such a link, or stands behind one, or in
    /// such a folder.
    void find(const FileList& list);
    void find(const std::vector<AppGroup>& groups);

    struct Place {
        std::string target;        ///< a path without links; empty when it can not be told
        bool outside = false;      ///< below none of the folders that are searched
        bool isBehindLink = true;  ///< that stands in a folder that is searched, or is one
    };
    /// Null for what lies where its path says.
    [[nodiscard]] const Place* of(const fileAttrbItem& file) const { return placeOf(&file); }
    [[nodiscard]] const Place* of(const AppAttrbItem& bundle) const { return placeOf(&bundle); }

    /// The same of a folder, which is asked of the disk; nothing for one that lies where its path
    /// says.
    [[nodiscard]] std::optional<Place> placeAt(const std::string& folder) const;

private:
    [[nodiscard]] bool liesAsItSays(const std::string& path) const;
    [[nodiscard]] Place behindLink(const std::string& path) const;
    [[nodiscard]] const Place* placeOf(const void* found) const;
    void add(const void* found, const std::string& path);
    void addPlain(const fileAttrbItem& file);

    const FileSystem& m_files;
    struct Root {
        std::string path;
        std::string real;
    };
    std::vector<Root> m_roots;
    std::unordered_map<const void*, Place> m_places;
};

/// By its path, below the folder that is searched.
[[nodiscard]] bool isBehindLink(const FolderNode& folder);

}  // namespace orrinvale
