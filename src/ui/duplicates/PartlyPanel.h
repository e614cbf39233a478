// PartlyPanel: folders that are for the most part in other ones. It stands in a sheet.
#pragma once

#include <QWidget>
#include <vector>

#include "engine/duplicates/folders/FolderFindings.h"

namespace orrinvale {

class TextImageButton;
class TickOutline;

/// Asks no disk. Main thread only.
class PartlyPanel final : public QWidget {
    Q_OBJECT
public:
    /// Not empty; the first row is chosen.
    explicit PartlyPanel(std::vector<PartlyEqual> pairs, QWidget* parent = nullptr);

    /// The pair of the chosen row.
    [[nodiscard]] const PartlyEqual& chosen() const;

    TickOutline* list = nullptr;
    TextImageButton* showButton = nullptr;  ///< shows both in the file manager
    TextImageButton* searchButton = nullptr;
    TextImageButton* closeButton = nullptr;

    [[nodiscard]] QSize sizeHint() const override;

private:
    class Model;
    Model* m_model = nullptr;
};

}  // namespace orrinvale
