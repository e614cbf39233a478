// UninstallDetails: what the sheet of one application shows: its picture, large, and what is known
// of it.
#pragma once

#include <QIcon>
#include <QWidget>
#include <optional>

#include "engine/uninstall/AppItems.h"

class QLabel;
class QVBoxLayout;

namespace orrinvale {

class TextImageButton;

/// The size comes later, since the files are counted while the sheet stands. Main thread only.
class UninstallDetails final : public QWidget {
    Q_OBJECT
public:
    UninstallDetails(const AppItems& item, const QIcon& icon);

    /// Nothing where it could not be measured: "--".
    void showSize(const ApplicationDetails& details);

    TextImageButton* okButton = nullptr;

    [[nodiscard]] QSize sizeHint() const override;

    /// Fewer than 29 letters stand whole, else the first 28.
    [[nodiscard]] static QString shownName(const QString& name);
    /// Fewer than 71, else the first 70.
    [[nodiscard]] static QString shownPath(const QString& path);

private:
    QLabel* getTextFiledLabel(const QString& text, const char* withName,
                              const QString& withToolTip = {});

    QVBoxLayout* m_lines = nullptr;
    QLabel* m_size = nullptr;
    QLabel* m_use = nullptr;
};

}  // namespace orrinvale
