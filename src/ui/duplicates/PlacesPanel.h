// PlacesPanel: folders in the order in which their copies stay. It stands in a sheet.
#pragma once

#include <QWidget>
#include <string>
#include <vector>

namespace orrinvale {

class TextImageButton;
class TickOutline;

/// Asks no disk. Main thread only.
class PlacesPanel final : public QWidget {
    Q_OBJECT
public:
    /// Paths without links, the best first.
    explicit PlacesPanel(std::vector<std::string> folders, QWidget* parent = nullptr);

    [[nodiscard]] const std::vector<std::string>& folders() const;
    /// Below the others, unless it is there.
    void add(const std::string& folder);

    TickOutline* list = nullptr;
    TextImageButton* addButton = nullptr;
    TextImageButton* keepButton = nullptr;  ///< off while there is no folder
    TextImageButton* cancelButton = nullptr;

    [[nodiscard]] QSize sizeHint() const override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    class Model;
    void takeOut();
    void move(int step);
    void setFolders(std::vector<std::string> folders, int current);
    void showButtons();

    Model* m_model = nullptr;
    TextImageButton* m_up = nullptr;
    TextImageButton* m_down = nullptr;
    TextImageButton* m_takeOut = nullptr;
};

}  // namespace orrinvale
