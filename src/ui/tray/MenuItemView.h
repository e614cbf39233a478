// MenuItemView: one volume's row in the menu of the status item. StatusMenu.h makes and refreshes
// the rows.
#pragma once

#include <QIcon>
#include <QString>
#include <QWidget>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>

#include "engine/volumes/SystemSight.h"

class QToolButton;

namespace orrinvale {

/// What the row of the memory bears in the place of a volume's number and tag: never a volume's.
inline constexpr std::uint64_t memoryStorage = 5;
inline constexpr std::int32_t memoryTag = 5;

/// The row's fields have the names of the interface and are what the refresh writes; what a person
/// sees beside the texts, the bar and what greys the row, comes from the volume's own record, since
/// a refresh leaves the total in `nFreeSize` too. Main thread only.
class MenuItemView final : public QWidget {
    Q_OBJECT
public:
    /// The constructor's arguments.
    struct Row {
        std::uint64_t withStorage = 0;  ///< group code; 5 is the memory
        QIcon withVolIcon;
        bool withBCanEject = false;
        QString withVlumeName;
        std::int32_t isPrograss = 0;
        QString withTotolVol;
        QString withFreeVol;
        std::int32_t withTag = 0;
    };
    struct Handlers {
        std::function<void(MenuItemView& row)> ejects;
        std::function<void(const std::string& root)> opens;
    };
    static constexpr QSize leastSize{280, 40};

    MenuItemView(const Row& row, Handlers handlers, QWidget* parent = nullptr);

    void setVolumName(const QString& name);
    void setFreeTextFieldSpace(const QString& text);
    void setTotleTextFieldSpace(const QString& text);
    void setNFreeSize(std::uint64_t bytes) { nFreeSize = bytes; }
    void setVolRootDir(const std::string& root) { volRootDir = root; }

    /// The name of the picture by the row's fields; empty where there is none.
    [[nodiscard]] QString getPrograssImage() const;
    /// Looks it up and puts it nowhere: the row has no view for it.
    void setPrograssImage() const;
    [[nodiscard]] bool getWarningValue() const;

    /// What the bar is drawn from, and why the volume does not answer.
    void setSeen(const SeenVolume& seen);
    [[nodiscard]] const SeenVolume& seen() const { return m_seen; }

    /// Ejects unless the row is the memory's.
    void backDisk();
    /// Opens the root, but for the tag 5, which is also that of the memory's row, and for a volume
    /// that does not answer, which nobody else could open either.
    void mouseDown();
    /// It is the entry that the pointer or the keyboard is at. It takes the keyboard then: the key
    /// towards its end chooses what ejects, the other one leaves that, and Return presses it. All
    /// other keys are the menu's.
    void setCurrent(bool isCurrent);
    [[nodiscard]] bool isCurrent() const { return m_isCurrent; }

    /// Name, free and total as one line, or that it does not answer.
    [[nodiscard]] QString inOneLine() const;

    /// The row tells that the volume is being ejected, until it is told that it stayed.
    void setEjecting(bool isEjecting);
    [[nodiscard]] bool isEjecting() const { return m_isEjecting; }

    [[nodiscard]] QSize sizeHint() const override { return leastSize; }

    // The interface's plain fields.
    QString volumeSize;  ///< the name
    QString u64TotalSpace;
    QString u64FreeSpace;
    std::uint64_t nTotalSize = 0;
    std::uint64_t nFreeSize = 0;
    std::int16_t volRefNumber = 0;
    std::string volRootDir;
    bool bCanEject = false;
    bool bIsDefaultVol = false;
    bool clicked = false;  ///< drawn as selected; nothing sets it
    const std::uint64_t myStorage;
    const std::int32_t aIsPrograss;
    QString errorValue;  ///< the warning level in per cent
    const std::int32_t ViewTag;

Q_SIGNALS:
    void ejectingChanged();
    /// It reads otherwise: inOneLine().
    void readsOtherwise();
    /// The pointer came to the row, or left it.
    void pointed(bool isThere);

protected:
    void paintEvent(QPaintEvent* event) override;
    void mousePressEvent(QMouseEvent* event) override;
    void mouseReleaseEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void changeEvent(QEvent* event) override;
    void enterEvent(QEnterEvent* event) override;
    void leaveEvent(QEvent* event) override;

private:
    void tellReaders();
    void placeButton();
    void chooseEject(bool isChosen);
    [[nodiscard]] float level() const;
    [[nodiscard]] QRect mirrored(const QRect& place) const;
    void paintTexts(QPainter& painter) const;
    void paintBar(QPainter& painter) const;

    const Handlers m_handlers;
    const QIcon m_icon;
    QToolButton* m_backButton = nullptr;
    SeenVolume m_seen;
    bool m_isEjecting = false;
    bool m_isCurrent = false;
    bool m_isPressed = false;
    bool m_isEjectChosen = false;  // by the keyboard
};

}  // namespace orrinvale
