// FlatHeader: the header of a list: quiet words over a hairline, in line with the cells below, and
// a chevron where it is sorted.
#pragma once

#include <QHeaderView>

namespace orrinvale {

/// Horizontal only. Shows the text and the alignment that the model gives for a section. Main
/// thread only.
class FlatHeader : public QHeaderView {
    Q_OBJECT
public:
    /// What cells and header leave free on either side of a text, in points.
    static constexpr int textMargin = 8;

    explicit FlatHeader(QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void paintSection(QPainter* painter, const QRect& rect, int section) const override;

    [[nodiscard]] virtual QColor titleColor(int section) const;
    [[nodiscard]] bool isSorted(int section) const {
        return isSortIndicatorShown() && sortIndicatorSection() == section;
    }
};

}  // namespace orrinvale
