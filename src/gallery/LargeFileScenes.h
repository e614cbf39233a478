// LargeFileScenes: the large file page led through its states on a folder of real files, with a
// picture of each.
#pragma once

#include "gallery/PageScenes.h"

class QModelIndex;
class QTreeView;

namespace orrinvale {

/// The page is driven as a person does it: through its controls. Main thread only.
class LargeFileScenes final : private PageScenes {
public:
    /// All outlive the object. Of the scenes only those that are `wanted` become pictures; an empty
    /// set means all.
    LargeFileScenes(const SampleFolder& sample, UserDefaults& defaults,
                    const PictureFolder& pictures, QSet<QString> wanted);
    ~LargeFileScenes();

    /// False when a state did not come about or a picture could not be written; standard error says
    /// which.
    bool draw();

private:
    bool drawScan();
    bool drawResult();
    bool drawPane();
    bool drawRemoval();
    bool drawList();

    bool waitForEnd() const;
    [[nodiscard]] QTreeView& outline() const;
    [[nodiscard]] QModelIndex rowNamed(const char* name) const;
    void tick(const char* name) const;
};

}  // namespace orrinvale
