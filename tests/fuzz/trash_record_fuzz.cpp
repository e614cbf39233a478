// Any bytes as what a trash keeps of an entry: a path that is read can be written, and is read back
// the same.
#include "engine/files/TrashRecord.h"
#include "fuzz/fuzz.h"

void checkAny(std::string_view text) {
    using namespace orrinvale;
    for (const bool isWhole : {true, false}) {
        const std::string record = (isWhole ? "" : "[Trash Info]\nPath=") + std::string(text);
        const auto path = pathInTrashRecord(record);
        if (path) require(pathInTrashRecord(trashRecordOf(*path)) == path);
    }
    const std::string bytes(text.substr(0, 4096));
    if (!bytes.empty() && bytes.find('\0') == std::string::npos)
        require(pathInTrashRecord(trashRecordOf(bytes)) == bytes);
}
