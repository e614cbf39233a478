// PreviewZoom: how large the pictures beside each other are shown, and which part of them: one for
// all of them.
#pragma once

#include <QObject>
#include <QPointF>
#include <algorithm>
#include <map>

namespace orrinvale {

/// Main thread only.
class PreviewZoom final : public QObject {
    Q_OBJECT
public:
    static constexpr double most = 16;

    using QObject::QObject;

    /// 1: all of each picture fits into its place.
    [[nodiscard]] double factor() const { return m_factor; }
    /// Points on the screen for a pixel of the file at the factor 1: what the picture that needs
    /// most room is shown at, so that a pixel of one is as large as a pixel of the other.
    [[nodiscard]] double fit() const {
        double least = 1;
        for (const auto& [picture, fit] : m_fits) least = std::min(least, fit);
        return least;
    }
    /// What this picture fits into its place with, at most 1; above it there is none.
    void setFit(const QObject& picture, double fit) {
        const double before = this->fit();
        if (fit > 1) m_fits.erase(&picture);
        else m_fits[&picture] = fit;
        if (this->fit() < before || this->fit() > before) Q_EMIT changed();
    }
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
    std::map<const QObject*, double> m_fits;
    double m_factor = 1;
    QPointF m_centre{0.5, 0.5};
};

}  // namespace orrinvale
