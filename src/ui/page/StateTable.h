// StateTable: which controls of a page are to be seen, and which can be pressed, in each of its
// states.
#pragma once

#include <cstdint>
#include <initializer_list>
#include <vector>

class QWidget;

namespace orrinvale {

/// What a state says of one control.
enum class Look : std::uint8_t {
    Kept,    ///< nothing: other facts decide, such as whether there is something to tell
    Hidden,  ///< not to be seen; whether it could be pressed is left as it was
    Off,     ///< to be seen and greyed
    On,      ///< to be seen, and can be pressed
    Shown    ///< to be seen; whether it can be pressed is decided by other facts
};

/// A page fills it once, as data, and applies it whenever its state changes; a control that stands
/// in the table is shown, hidden and greyed by nothing else, but for what the table leaves open.
/// Main thread only.
class StateTable final {
public:
    struct Row {
        QWidget* control;         ///< not owned; outlives the table's last use
        std::vector<Look> looks;  ///< one for each state, in the order of the page's states
    };
    StateTable(std::initializer_list<Row> rows) : m_rows(rows) {}

    /// `State` is an enumeration that counts from 0.
    template <class State> void apply(State state) const {
        applyNumber(static_cast<std::size_t>(state));
    }

private:
    void applyNumber(std::size_t state) const;

    std::vector<Row> m_rows;
};

}  // namespace orrinvale
