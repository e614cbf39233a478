// HistoryPanel: what was moved to the trash in the last 30 days, each to be brought back. It stands
// in a sheet.
#pragma once

#include <QDateTime>
#include <QWidget>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <tl/expected.hpp>
#include <vector>

class QLabel;

namespace orrinvale {

class HoverButton;
class TextImageButton;
class TickOutline;

/// A removal as the list shows it.
struct HistoryRow {
    std::string id;
    QDateTime when;
    std::size_t entries = 0;
    std::uint64_t bytes = 0;
    std::optional<std::size_t> inTrash = std::nullopt;  ///< none until it is counted
    std::string fault = {};                             ///< why its record can not be read
};

/// Asks no disk. Main thread only.
class HistoryPanel final : public QWidget {
    Q_OBJECT
public:
    explicit HistoryPanel(QWidget* parent = nullptr);

    /// The newest first. The row that was current stays so.
    void setRows(std::vector<HistoryRow> rows);
    /// How much of a removal is in the trash still, or why nobody can say it.
    void setInTrash(const std::string& id, const tl::expected<std::size_t, std::string>& count);
    /// The id of the row that would come back; empty where none is chosen or nothing is left of it.
    [[nodiscard]] std::string chosen() const;

    /// While something comes back the list waits.
    void showRunning();
    /// What came of it. `failed` is what a quiet link says, which is not there where it is empty.
    void showEnd(const QString& text, const QString& failed);

    TickOutline* list = nullptr;
    TextImageButton* restoreButton = nullptr;
    TextImageButton* closeButton = nullptr;
    TextImageButton* stopButton = nullptr;
    HoverButton* clearButton = nullptr;
    HoverButton* failedLink = nullptr;

    [[nodiscard]] QSize sizeHint() const override;

private:
    class Model;
    void showButtons();

    Model* m_model = nullptr;
    QLabel* m_state = nullptr;
    bool m_isFresh = true;
    bool m_isRunning = false;
};

}  // namespace orrinvale
