// ToolbarItem: one item of a window's toolbar. PrefsToolbar.h lines them up.
#pragma once

#include <QIcon>
#include <QString>

#include "ui/kit/chrome/DrawnButton.h"

namespace orrinvale {

/// What a toolbar shows of its items. The numbers are stored in the settings.
enum class ToolbarDisplay { IconAndText = 0, IconOnly = 1, TextOnly = 2 };

/// A picture over a label. A selectable item stands for a page and is checked while that page is
/// shown; only the toolbar checks it, a click alone does not. Main thread only.
class ToolbarItem final : public DrawnButton<QAbstractButton> {
    Q_OBJECT
public:
    /// The label is the identifier until another one is set. A name that picture() does not know
    /// leaves the label alone.
    ToolbarItem(QString identifier, const QString& image, bool isSelectable,
                QWidget* parent = nullptr);

    [[nodiscard]] const QString& identifier() const { return m_identifier; }
    void setLabel(const QString& label);
    void setDisplay(ToolbarDisplay display);
    /// A part of the label is not to be seen; the tool tip has it then.
    [[nodiscard]] bool isLabelCut() const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    bool event(QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void nextCheckState() override {}

private:
    [[nodiscard]] bool showsPicture() const {
        return m_display != ToolbarDisplay::TextOnly && !icon().isNull();
    }
    [[nodiscard]] bool showsLabel() const {
        return m_display != ToolbarDisplay::IconOnly || icon().isNull();
    }
    void drawPlate(QPainter& painter) const;

    const QString m_identifier;
    ToolbarDisplay m_display = ToolbarDisplay::IconAndText;
};

}  // namespace orrinvale
