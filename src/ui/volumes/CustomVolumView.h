// CustomVolumView: one volume as a card with its usage bar, ejection, and a way to the file
// manager. DiskSizeView.h lists all volumes by it, MyMacView.h shows the boot volume.
#pragma once

#include <QLabel>
#include <QWidget>
#include <cstdint>
#include <string>

#include "engine/volumes/SpaceLevel.h"
#include "engine/volumes/SystemSight.h"

namespace orrinvale {

class ElidedLabel;
class TCImageButton;

/// What a card asks of the page that it stands on.
class CustomVolumViewDelegate {
public:
    virtual ~CustomVolumViewDelegate() = default;
    /// Ejects off the main thread. A card shows that it is being ejected once it is told so.
    virtual void ejectVolume(std::int16_t volRefNumber, const std::string& volRootDir,
                             const std::string& volumeName) = 0;
    /// Opens the volume's root in the file manager.
    virtual void browseVolume(const std::string& volRootDir) = 0;

protected:
    CustomVolumViewDelegate() = default;
    CustomVolumViewDelegate(const CustomVolumViewDelegate&) = default;
    CustomVolumViewDelegate& operator=(const CustomVolumViewDelegate&) = default;
};

/// The name under which a group of volumes is listed, or the memory with its code 5, in the
/// language of the window; empty for a code that has none.
[[nodiscard]] QString volumeGroupName(std::int64_t group);

/// The picture of a volume of that type.
[[nodiscard]] QString volumePicture(std::int32_t volType, bool isBootVolume);

/// Main thread only.
class CustomVolumView final : public QWidget {
    Q_OBJECT
public:
    static constexpr int cardHeight = 90;

    /// Copies the record's figures in. `errorValue` is the level of the warning as text, in whole
    /// per cent; `isPrograss` the setting of the style, which nothing reads. The delegate outlives
    /// the card.
    CustomVolumView(const ZvVolumeInfo& volume, std::string errorValue, std::int32_t isPrograss,
                    std::int32_t tag, CustomVolumViewDelegate& delegate, QWidget* parent = nullptr);

    /// Writes the figures and texts of a later look in; the kind stays. A volume that does not
    /// answer is grey, with the figures of its last answer, if there was one, and says why.
    void showFigures(const SeenVolume& seen);
    void setvolumIcon(const QString& picture);
    void setVolumName(const std::string& name);
    void setFreeTextFieldSpace(const std::string& freeSpace);
    void setTotleTextFieldSpace(const std::string& totalSpace);
    void setNFreeSize(std::uint64_t bytes) { m_nFreeSize = bytes; }
    [[nodiscard]] std::uint64_t nFreeSize() const { return m_nFreeSize; }
    [[nodiscard]] std::uint64_t nTotalSize() const { return m_nTotalSize; }

    /// Puts the picture of getPrograssImage() on the bar, and colours the texts to it.
    void setPrograssImage();
    /// Empty for a total of 0.
    [[nodiscard]] QString getPrograssImage() const;
    /// Whether the volume is short of space, whatever its group.
    [[nodiscard]] bool getWarningValue() const;
    [[nodiscard]] std::int32_t getTag() const { return m_viewTag; }

    void backDisk();
    void browseDisk();

    /// It is being ejected: it says so in the place of its free space, and its buttons rest.
    void setEjecting(bool is);

protected:
    void paintEvent(QPaintEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void makeParts(bool canEject);
    [[nodiscard]] VolumeSpace space() const;
    [[nodiscard]] bool isWarned() const;
    void showClicked(bool is);
    void showTexts();

    CustomVolumViewDelegate& m_delegate;
    std::string m_volumeName, m_volRootDir, m_errorValue;
    std::string m_u64FreeSpace, m_u64TotalSpace;  // sizes as text
    std::uint64_t m_nTotalSize = 0, m_nFreeSize = 0, m_nReservedSize = 0;
    const std::int16_t m_volRefNumber;
    const std::int64_t m_myStorage;  // the group
    const std::int32_t m_aIsPrograss;
    const std::int32_t m_viewTag;
    const bool m_bCanEject;
    bool m_clicked = false;  // under the pointer
    bool m_isEjecting = false;
    QString m_silence;

    class PictureView* m_curVolIcon = nullptr;
    ElidedLabel* m_volName = nullptr;
    QLabel* m_groupName = nullptr;
    QLabel* m_freeVolT = nullptr;
    QLabel* m_totlVolT = nullptr;
    QLabel* m_usedVolT = nullptr;
    class PictureView* m_prograssView = nullptr;
    TCImageButton* m_browseButton = nullptr;
    TCImageButton* m_ejectButton = nullptr;
};

}  // namespace orrinvale
