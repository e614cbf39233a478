// removalWays: the doors of the duplicate page's removals.
#pragma once

#include <functional>
#include <memory>

#include "engine/removal/RemovalDoor.h"

class QObject;

namespace orrinvale {

class FileSystem;
class ShareList;
class UndoableRemoval;

/// For RemovalJob: for good, with the administrator's right where it is held, or to the trash. The
/// file system outlives the door.
[[nodiscard]] std::function<std::unique_ptr<RemovalDoor>()> doorOf(const FileSystem& files,
                                                                   bool isToTrash);

/// What the list has shares its space instead, by hard links too where that is wished.
[[nodiscard]] std::function<std::unique_ptr<RemovalDoor>()> sharingDoorOf(
    const FileSystem& files, const std::shared_ptr<ShareList>& list, bool mayLink);

/// Takes the note of a removal that moved nothing out of the history, aside; null does nothing.
void forgetAside(QObject& asker, std::shared_ptr<UndoableRemoval> removal);

}  // namespace orrinvale
