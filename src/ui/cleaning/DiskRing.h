// DiskRing: how full the startup disk is, and what of that can go.
#pragma once

#include <QString>
#include <QWidget>
#include <cstdint>

namespace orrinvale {

/// Figures of 0 draw an empty ring. Main thread only.
class DiskRing final : public QWidget {
    Q_OBJECT
public:
    static constexpr int side = 168;

    explicit DiskRing(QWidget* parent = nullptr);

    void setDisk(std::uint64_t total, std::uint64_t free);
    /// What can go; nothing was looked for while it is 0.
    void setCleanable(std::uint64_t bytes);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    void tell();

    std::uint64_t m_total = 0, m_free = 0, m_cleanable = 0;
};

}  // namespace orrinvale
