// MyItemSetObj: the rows of the status item's menu by group.
#pragma once

#include <vector>

class QAction;

namespace orrinvale {

/// The actions belong to the menu that they are in; a menu that goes takes them along, so that
/// whoever drops the menu clears this.
struct MyItemSetObj {
    using Items = std::vector<QAction*>;
    static constexpr std::size_t capacity = 50;

    MyItemSetObj() {
        for (Items* const each : {&localStrorageArr, &superDriveArr, &exteralStorageArr,
                                  &netWorkStorageArr, &diskImagesArr})
            each->reserve(capacity);
    }

    Items localStrorageArr;
    Items superDriveArr;
    Items exteralStorageArr;
    Items netWorkStorageArr;
    Items diskImagesArr;
};

}  // namespace orrinvale
