// PreviewZoom: how large the pictures beside each other are shown, and which part of them: one for
// all of them.
#pragma once

#include <QObject>
#include <QPointF>
#include <algorithm>

namespace orrinvale {

/// Main thread only.
class PreviewZoom final : public QObject {
    Q_OBJECT
public:
    static constexpr double most = 16;

    using QObject::QObject;

    /// 1: all of the picture fits into its place.
    [[nodiscard]] double factor() const { return m_factor; }
    /// The point of the picture that is in the middle, each coordinate from 0 to 1.
    [[nodiscard]] QPointF centre() const { return m_centre; }

    void set(double factor, QPointF centre) {
        m_factor = std::clamp(factor, 1.0, most);
        m_centre = {std::clamp(centre.x(), 0.0, 1.0), std::clamp(centre.y(), 0.0, 1.0)};
        if (m_factor <= 1.0) m_centre = {0.5, 0.5};
        Q_EMIT changed();
    }
    void reset() { set(1, {0.5, 0.5}); }

Q_SIGNALS:
    void changed();

private:
    double m_factor = 1;
    QPointF m_centre{0.5, 0.5};
};

}  // namespace orrinvale
