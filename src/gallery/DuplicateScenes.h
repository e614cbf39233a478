// DuplicateScenes: the duplicate page led through its states on a folder of real files, with a
// picture of each.
#pragma once

#include "gallery/PageScenes.h"

class QAbstractButton;
class QTreeView;

namespace orrinvale {

/// The page is driven as a person does it: through its controls. Main thread only.
class DuplicateScenes final : private PageScenes {
public:
    /// All outlive the object. Of the scenes only those that are `wanted` become pictures; an empty
    /// set means all.
    DuplicateScenes(const SampleFolder& sample, UserDefaults& defaults,
                    const PictureFolder& pictures, QSet<QString> wanted);

    /// False when a state did not come about or a picture could not be written; standard error says
    /// which.
    bool draw();

private:
    bool drawFirstView();
    bool drawScope();
    bool drawFolders();
    bool drawKeep();
    bool drawSearch();
    bool drawResult();
    bool drawQuestion();
    bool drawKeyboard();
    bool drawLargeWindow();
    bool drawPane();
    bool drawPreview();
    bool drawMoved();
    bool drawHistory();
    bool drawPlan();
    bool drawSharing();
    bool drawRemoval();
    bool drawFailures();
    bool drawEmptyResult();

    bool startSearch(const std::string& folder);
    bool waitForResult();
    bool waitForSheet(bool isThere);
    bool pressInSheet(int number);
    bool saveLines(const char* scene, const char* lineButton);
    void tickGroup(const char* name);
    UserDefaults& m_defaults;
    [[nodiscard]] QTreeView* outline() const;
    [[nodiscard]] QModelIndex groupNamed(const char* name) const;
    bool click(const char* objectName) const;
};

}  // namespace orrinvale
