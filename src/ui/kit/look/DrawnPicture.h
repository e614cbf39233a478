// The drawings that are code: the numbered families, and the plates of buttons and tabs, whose
// corners keep their radius.
#pragma once

#include <QSize>
#include <QString>
#include <QStringList>
#include <optional>

#include "ui/kit/look/Theme.h"

class QPainter;
class QRectF;

namespace orrinvale {

/// One such picture. They fill whatever rectangle they are given. Main thread only.
class DrawnPicture final {
public:
    /// A per cent runs from 0 to 100, a step of the spinner from 1 to 12.
    enum class Family {
        Gauge,    ///< "37%", "37%-1": how full the disk is, for the status item
        Bar,      ///< "37", "37-1", "37_index", "37_r_index", "37_progress_bar"
        Spinner,  ///< "loading_7"
        Tab,      ///< "tab", "tab_on"
        Plate,    ///< "btn_pri", "btn_sec", "btn_back", with "_hover", "_press" and "_disable"
    };
    enum class State { Normal, Hover, Press, Disable, On, Warning };

    /// None for a name of no family, a number out of its range among them, or one with a leading
    /// zero.
    [[nodiscard]] static std::optional<DrawnPicture> named(const QString& name);

    /// Every plate, and of each numbered family the first.
    [[nodiscard]] static QStringList names();

    /// In points.
    [[nodiscard]] QSize size() const { return m_size; }

    void draw(QPainter& painter, const QRectF& rectangle, Theme::Scheme scheme) const;

private:
    DrawnPicture(Family family, State state, int number, QSize size, QString name)
        : m_family(family),
          m_state(state),
          m_number(number),
          m_size(size),
          m_name(std::move(name)) {}

    Family m_family;
    State m_state;
    int m_number;
    QSize m_size;
    QString m_name;
};

}  // namespace orrinvale
