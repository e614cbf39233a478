// ToolbarScene: a picture of the toolbar window with its first page.
#pragma once

#include <QSet>
#include <QString>

namespace orrinvale {

class PictureFolder;
class SampleFolder;
class UserDefaults;

/// Main thread only.
class ToolbarScene final {
public:
    /// All outlive the object. There is one picture, which every look of the documentation has.
    ToolbarScene(const SampleFolder& sample, UserDefaults& defaults, const PictureFolder& pictures,
                 const QSet<QString>& wanted);

    /// False when the picture could not be written; standard error says why.
    bool draw();

private:
    UserDefaults& m_defaults;
    const PictureFolder& m_pictures;
};

}  // namespace orrinvale
