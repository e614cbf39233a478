// See largeFilePlaces.h.
#include "engine/largefiles/largeFilePlaces.h"

#include "engine/largefiles/SystemFolder.h"

namespace orrinvale {

ProtectedPlaces protectedFromLargeFiles(const FileSystem& files,
                                        const std::vector<std::string>& ownFiles) {
    auto places = ProtectedPlaces::ofThisMachine(files, ownFiles);
    for (const std::string& path : SystemFolder::paths())
        places.add(files, path, "part of the system");
    return places;
}

}  // namespace orrinvale
