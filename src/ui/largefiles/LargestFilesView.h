// LargestFilesView: the list of largest files under the bar of its filters, and nothing of what
// they do. LargestFilesDesk.h is what they do.
#pragma once

#include <QWidget>

#include "ui/kit/lists/TickOutline.h"

class QLabel;

namespace orrinvale {

class ElidedLabel;
class HoverButton;

/// "filesList": its rows have no rows below them. Main thread only.
class LargestFilesOutline final : public TickOutline {
    Q_OBJECT
public:
    explicit LargestFilesOutline(QWidget* parent = nullptr);

    /// By the names, whatever column the cursor is in.
    void keyboardSearch(const QString& search) override;
};

/// Each control has an object name equal to its field's. Main thread only.
class LargestFilesView final : public QWidget {
    Q_OBJECT
public:
    explicit LargestFilesView(QWidget* parent = nullptr);

    HoverButton* kindBtn = nullptr;
    HoverButton* ageBtn = nullptr;
    ElidedLabel* listNote = nullptr;  ///< what the list lacks, or why it is empty
    LargestFilesOutline* filesList = nullptr;
};

}  // namespace orrinvale
