// FileSystemBrowserCell: draws the rows of the disk usage columns, one after the other, and takes
// the clicks into their boxes. The page says what each shows.
#pragma once

#include <QIcon>
#include <QPersistentModelIndex>
#include <QStyledItemDelegate>
#include <functional>
#include <optional>

#include "ui/kit/lists/paintTickBox.h"
#include "ui/kit/look/Theme.h"

namespace orrinvale {

class FSNode;

/// The box of a row alone.
class FSBrowserCell final {
public:
    /// Whether a place lies in the box, of which the first 17 points count.
    [[nodiscard]] static bool hitTestForEvent(QPoint place, const QRect& frame);
};

/// One object for all rows: its fields are those of the row that is drawn next. Main thread only.
class FileSystemBrowserCell final : public QStyledItemDelegate {
    Q_OBJECT
public:
    static constexpr int rowHeight = 34, iconSide = 20;

    struct Page {
        /// Fills the fields for the row.
        std::function<void(FileSystemBrowserCell& cell, const QModelIndex& row)> willDisplay;
        /// The mouse has gone down on the row.
        std::function<void(const QModelIndex& row)> touched;
        /// A click into its box.
        std::function<void(const QModelIndex& row)> boxClicked;
    };
    explicit FileSystemBrowserCell(Page page, QObject* parent = nullptr);

    QIcon image;
    Theme::Color labelColor = Theme::Color::Text;
    Theme::Color sizeColor = Theme::Color::SizeWhite;
    std::optional<TickState> button;  ///< none for a row without a box
    bool isEnabled = true;            ///< of the box
    QString titleStr, sizeStr;
    FSNode* nodeValue = nullptr;  ///< not owned
    QString noteStr;              ///< in the place of the bar
    std::optional<double> share;  ///< of its folder, from 0 to 1
    bool opensColumn = false;

    /// Where the box lies in a row, and what of the row counts as the box for a click.
    [[nodiscard]] static QRect checkBoxForFrame(const QRect& frame, Qt::LayoutDirection direction);
    [[nodiscard]] static QRect hitRect(const QRect& frame, Qt::LayoutDirection direction);

    void paint(QPainter* painter, const QStyleOptionViewItem& option,
               const QModelIndex& index) const override;
    [[nodiscard]] QSize sizeHint(const QStyleOptionViewItem& option,
                                 const QModelIndex& index) const override;
    bool editorEvent(QEvent* event, QAbstractItemModel* model, const QStyleOptionViewItem& option,
                     const QModelIndex& index) override;

private:
    void fill(const QModelIndex& index) const;
    void drawBox(QPainter& painter, const QStyleOptionViewItem& option,
                 const QModelIndex& index) const;
    void drawWords(QPainter& painter, const QStyleOptionViewItem& option) const;
    void drawNote(QPainter& painter, const QStyleOptionViewItem& option, const QRect& place) const;
    void drawShare(QPainter& painter, const QStyleOptionViewItem& option, const QRect& place) const;

    const Page m_page;
    QPersistentModelIndex m_pressed;  // the row whose box the button went down in
};

/// The described colour of a size in bytes.
[[nodiscard]] Theme::Color getColorWithNode(std::uint64_t size);

}  // namespace orrinvale
