// Exhibits: what the sheet of controls shows besides controls: colours, letters, pictures.
#pragma once

#include <QWidget>

#include "ui/kit/look/Theme.h"

namespace orrinvale {

/// A colour of the theme with its name.
class Swatch final : public QWidget {
    Q_OBJECT
public:
    Swatch(Theme::Color color, QString name, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const Theme::Color m_color;
    const QString m_name;
};

/// A picture with its name, brought to at most the side of the cell.
class PictureCell final : public QWidget {
    Q_OBJECT
public:
    explicit PictureCell(QString name, QWidget* parent = nullptr);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    const QString m_name;
};

[[nodiscard]] QWidget* allColors();
[[nodiscard]] QWidget* typeScale();
[[nodiscard]] QWidget* allPictures();

}  // namespace orrinvale
