// Folders: where this desktop keeps caches, logs, trash and downloads. linux/LinuxFolders.h
// implements it.
#pragma once

#include <optional>
#include <string>
#include <vector>

namespace orrinvale {

/// Absolute paths in exact bytes, as they are at the moment of the call. An empty text means that
/// there is no such folder; unless an operation says so, a folder that is named need not exist. Any
/// thread.
class Folders {
public:
    virtual ~Folders() = default;

    /// The user's home folder.
    [[nodiscard]] virtual std::string home() const = 0;

    [[nodiscard]] virtual std::string systemCaches() const = 0;
    [[nodiscard]] virtual std::string userCaches() const = 0;
    [[nodiscard]] virtual std::string systemLogs() const = 0;

    /// The caches of programs that are kept apart from the user's other ones (flatpak, snap); only
    /// those that exist.
    [[nodiscard]] virtual std::vector<std::string> programCaches() const = 0;

    /// The folders that hold nothing but logs of the user's programs, and old logs that lie alone;
    /// only those that exist.
    [[nodiscard]] virtual std::vector<std::string> userLogs() const = 0;

    /// The folder that receives what the user downloads. Empty when the user has none of its own: a
    /// home folder itself never is one.
    [[nodiscard]] virtual std::string downloads() const = 0;

    /// The folders that the user has for something else: the home folder, those of settings, data
    /// and states, and those for documents, pictures and the like. What is emptied must be none of
    /// them and hold none of them.
    [[nodiscard]] virtual std::vector<std::string> otherUserFolders() const = 0;

    /// The folder whose entries are what the user threw away, on the volume of the home folder.
    [[nodiscard]] virtual std::string homeTrash() const = 0;

    /// The same on another volume, by the path of its root. Only a folder that another user can not
    /// have put there counts; the one that would be made is named when there is none yet.
    [[nodiscard]] virtual std::vector<std::string> volumeTrash(const std::string& root) const = 0;

    /// The record of where a trashed entry came from, by the path of the entry in one of these
    /// folders: it is to be removed once the entry is gone. Nothing for a path that is not directly
    /// in such a folder.
    [[nodiscard]] virtual std::optional<std::string> trashRecordOf(
        const std::string& path) const = 0;

protected:
    Folders() = default;
    Folders(const Folders&) = default;
    Folders& operator=(const Folders&) = default;
};

}  // namespace orrinvale
