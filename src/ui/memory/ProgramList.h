// ProgramList: the programs that hold most of the memory, a row each with a bar for its share.
#pragma once

#include <QWidget>
#include <cstdint>
#include <vector>

#include "platform/programMemory.h"

namespace orrinvale {

/// Rows that are drawn, with one line for screen readers in all. Main thread only.
class ProgramList final : public QWidget {
    Q_OBJECT
public:
    static constexpr int rowHeight = 26;

    explicit ProgramList(int rows, QWidget* parent = nullptr);

    /// The largest first.
    void setPrograms(std::vector<ProgramMemory> programs);
    [[nodiscard]] const std::vector<ProgramMemory>& programs() const { return m_programs; }
    /// What a row says: name and size.
    [[nodiscard]] static QString nameOf(const ProgramMemory& program);
    [[nodiscard]] static QString sizeOf(const ProgramMemory& program);

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    std::vector<ProgramMemory> m_programs;
};

}  // namespace orrinvale
