// ComputerPanel: the contents of the sheet "About This Computer".
#pragma once

#include <QWidget>

#include "platform/systemValues.h"

namespace orrinvale {

class CustomComInfoView;
class TextImageButton;

/// The buttons do what whoever shows the panel connects. Main thread only.
class ComputerPanel final : public QWidget {
    Q_OBJECT
public:
    explicit ComputerPanel(const SystemValues& system);

    CustomComInfoView* infoView = nullptr;
    TextImageButton* copyButton = nullptr;   ///< leads to the report
    TextImageButton* closeButton = nullptr;  ///< where the keyboard is at first

    [[nodiscard]] QSize sizeHint() const override;
};

}  // namespace orrinvale
