// SavePlanPanel: where what is ticked is kept as a plan, and what of it. It stands in a sheet.
#pragma once

#include <QWidget>
#include <string>

#include "engine/duplicates/plan/planOfTicks.h"

class QLabel;
class QLineEdit;

namespace orrinvale {

class HoverButton;
class TextImageButton;

/// Main thread only.
class SavePlanPanel final : public QWidget {
    Q_OBJECT
public:
    SavePlanPanel(const PlanSums& sums, const LeftOutOfPlan& left, const QString& path,
                  QWidget* parent = nullptr);

    /// Where it is to be kept, in exact bytes; empty where the field holds no absolute path.
    [[nodiscard]] std::string path() const;
    /// Another folder for the same name.
    void setFolder(const std::string& folder);
    void showFault(const QString& fault);

    QLineEdit* pathField = nullptr;
    HoverButton* chooseButton = nullptr;
    TextImageButton* saveButton = nullptr;
    TextImageButton* cancelButton = nullptr;

    [[nodiscard]] QSize sizeHint() const override;

private:
    void read();

    const bool m_isAnything;
    QLabel* m_fault = nullptr;
};

}  // namespace orrinvale
