// PlanPanel: what a plan would let go, before it does, while it does, and what became of it. It
// stands in a sheet.
#pragma once

#include <QWidget>
#include <cstddef>
#include <memory>

#include "engine/base/Progress.h"
#include "engine/duplicates/plan/DuplicatePlan.h"

class QLabel;
class QVBoxLayout;

namespace orrinvale {

class ElidedLabel;
class HoverButton;
class TextImageButton;
class TickOutline;

/// What is said of a plan before anything goes.
struct PlanFacts {
    QString name;  ///< of its file
    PlanSums sums;
    std::size_t outside = 0;  ///< of what goes, lies outside of the folders that were searched
    bool isTrashFirst = false;
};

/// Main thread only.
class PlanPanel final : public QWidget {
    Q_OBJECT
public:
    PlanPanel(const std::shared_ptr<const DuplicatePlan>& plan, const PlanFacts& facts,
              QWidget* parent = nullptr);

    /// The buttons give way to how far it is.
    void showRunning();
    void showProgress(const Progress& progress, bool isToTrash);
    /// What became of it. `failed` is what a quiet link says, which is not there where it is empty.
    void showEnd(const QString& text, const QString& failed, bool canUndo);

    TickOutline* list = nullptr;
    TextImageButton* trashButton = nullptr;
    TextImageButton* removeButton = nullptr;
    TextImageButton* cancelButton = nullptr;  ///< closes, once it has ended
    TextImageButton* stopButton = nullptr;
    HoverButton* undoButton = nullptr;
    HoverButton* failedLink = nullptr;

    [[nodiscard]] QSize sizeHint() const override;

private:
    void addTexts(QVBoxLayout& column, const PlanFacts& facts);
    void addList(QVBoxLayout& column, const std::shared_ptr<const DuplicatePlan>& plan);
    void addButtons(QVBoxLayout& column, const PlanFacts& facts);

    ElidedLabel* m_state = nullptr;
};

}  // namespace orrinvale
