// ScopePanel: what is searched when it is more than one folder: the folders, which of them are
// protected, and what is left out. It stands in a sheet.
#pragma once

#include <QWidget>
#include <functional>
#include <string>
#include <vector>

#include "engine/duplicates/scope/NamedSearches.h"

class QLabel;
class QLineEdit;
class QMimeData;
class QScrollArea;
class QVBoxLayout;

namespace orrinvale {

class HoverButton;
class TextImageButton;
class TickBox;

/// Takes folders that are dropped on it. Asks no disk by itself. Main thread only.
class ScopePanel final : public QWidget {
    Q_OBJECT
public:
    explicit ScopePanel(QWidget* parent = nullptr);

    [[nodiscard]] const SearchScope& scope() const { return m_scope; }
    void setScope(SearchScope scope);
    /// Adds a folder that is not there yet.
    void addFolder(const std::string& path);
    /// What the menu of kept searches shows.
    void setKept(std::vector<SearchScope> kept);
    /// What went wrong outside of the panel, in words.
    void showFault(const QString& fault);

    TextImageButton* addBtn = nullptr;
    TextImageButton* searchYes = nullptr;  ///< off while there is nothing to search, or it is wrong
    TextImageButton* cancelButton = nullptr;

    [[nodiscard]] QSize sizeHint() const override;
    bool eventFilter(QObject* watched, QEvent* event) override;

Q_SIGNALS:
    void dropped(const std::vector<std::string>& paths);  ///< whatever they are
    void saveWanted(const orrinvale::SearchScope& scope);
    void clearWanted();

protected:
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    void addHead(QVBoxLayout& column);
    void addFilters(QVBoxLayout& column);
    void addButtons(QVBoxLayout& column);
    void showFolders();
    void addRow(const std::string& path);
    void read();
    void readSize(const QLineEdit& field, std::optional<std::uint64_t>& size);
    void showKeptMenu();

    SearchScope m_scope;
    std::vector<SearchScope> m_kept;
    QString m_fault;
    bool m_isFilling = false;
    QScrollArea* m_area = nullptr;
    QVBoxLayout* m_rows = nullptr;
    QLineEdit* m_patterns = nullptr;
    QLineEdit* m_smallest = nullptr;
    QLineEdit* m_largest = nullptr;
    std::vector<TickBox*> m_kinds;  // in the order of the list on the left of a result
    TickBox* m_files = nullptr;
    QLineEdit* m_name = nullptr;
    TextImageButton* m_save = nullptr;
    HoverButton* m_keptBtn = nullptr;
    QLabel* m_faultLabel = nullptr;
};

/// The paths of all local files of what is dragged, in exact bytes.
[[nodiscard]] std::vector<std::string> localPathsOf(const QMimeData& dragged);

}  // namespace orrinvale
