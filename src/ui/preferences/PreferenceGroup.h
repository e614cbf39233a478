// PreferenceGroup: one group of the preferences: a heading with a way back to the defaults, and
// below it rows of label, control, and what the control does in a caption.
#pragma once

#include <QString>
#include <vector>

#include "ui/kit/controls/Panel.h"

class QGridLayout;
class QLabel;

namespace orrinvale {

class HoverButton;

/// Main thread only.
class PreferenceGroup final : public QWidget {
    Q_OBJECT
public:
    PreferenceGroup(const char* name, const QString& title, QWidget* parent = nullptr);

    /// A control with its label before it; none for one that has its words itself. `beside` comes
    /// behind it. The label is the control's name for screen readers and its caption what they hear
    /// of it further. Takes all of it over.
    void add(const QString& label, QWidget* control, const QString& caption = {},
             QWidget* beside = nullptr);

    /// Greys the control, and says why in the place of its caption; an empty reason brings both
    /// back.
    void setFault(const QWidget* control, const QString& reason);

    /// Says this in the place of the control's caption, and leaves the control as it is; empty
    /// brings the caption back.
    void setRemark(const QWidget* control, const QString& remark);

    /// Of its widest label; all groups of a page get the same.
    [[nodiscard]] int labelWidth() const;
    void setLabelWidth(int width);

    [[nodiscard]] HoverButton* restoreButton() const { return m_restore; }

private:
    struct Row {
        QWidget* control;
        QWidget* beside;
        QLabel* label;
        QLabel* caption;
        QString effect;
    };
    QGridLayout* m_grid;
    HoverButton* m_restore;
    std::vector<Row> m_rows;
};

}  // namespace orrinvale
