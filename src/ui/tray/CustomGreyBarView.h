// CustomGreyBarView: the title above a group of rows in the menu of the status item.
#pragma once

#include <QColor>
#include <QString>
#include <QWidget>
#include <cstdint>

namespace orrinvale {

class CustomGreyBarView final : public QWidget {
    Q_OBJECT
public:
    explicit CustomGreyBarView(std::uint64_t withStorage, QWidget* parent = nullptr);

    /// The title in the person's language; empty for a code that is no group.
    [[nodiscard]] QString title() const;

    [[nodiscard]] QSize sizeHint() const override { return {280, 16}; }

    QColor myColor;
    std::uint64_t titleImplment;  ///< group code

protected:
    void paintEvent(QPaintEvent* event) override;
};

}  // namespace orrinvale
