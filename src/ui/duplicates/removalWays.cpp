// The administrator's tool moves nothing: what lacks a right stays where the trash is wanted.
#include "ui/duplicates/removalWays.h"

#include "engine/cleaning/QnAuthorization.h"
#include "engine/duplicates/plan/UndoableRemoval.h"
#include "engine/duplicates/share/ShareOutlook.h"
#include "engine/removal/TrashDoor.h"
#include "services/foundation/runAside.h"

namespace orrinvale {

std::function<std::unique_ptr<RemovalDoor>()> doorOf(const FileSystem& files, bool isToTrash) {
    if (!isToTrash) return &QnAuthorization::makeDoor;
    return
        [&files] { return std::make_unique<TrashDoor>(files, QnAuthorization::protectedPlaces()); };
}

std::function<std::unique_ptr<RemovalDoor>()> sharingDoorOf(const FileSystem& files,
                                                            const std::shared_ptr<ShareList>& list,
                                                            bool mayLink) {
    return [&files, order = shareOrder(list, mayLink)] {
        return std::make_unique<ShareDoor>(files, QnAuthorization::protectedPlaces(), order);
    };
}

void forgetAside(QObject& asker, std::shared_ptr<UndoableRemoval> removal) {
    if (removal == nullptr) return;
    static_cast<void>(runAside(
        &asker, "forgetRemoval", [removal = std::move(removal)] { removal->forgetUnused(); },
        [] {}));
}

}  // namespace orrinvale
