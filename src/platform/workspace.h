// Workspace: what the engine asks of the desktop's screens. Implemented where a screen can be
// reached; tests use a fake.
#pragma once

#include <optional>

namespace orrinvale {

/// A rectangle in points; the origin is its corner nearest to the screen's origin.
struct Rect {
    double x = 0.0;
    double y = 0.0;
    double width = 0.0;
    double height = 0.0;
    friend bool operator==(const Rect&, const Rect&) = default;
};

class Workspace {
public:
    virtual ~Workspace() = default;

    /// The frame of the main screen, or nothing when there is no screen. Main thread only.
    [[nodiscard]] virtual std::optional<Rect> mainScreenFrame() const = 0;

protected:
    Workspace() = default;
    Workspace(const Workspace&) = default;
    Workspace& operator=(const Workspace&) = default;
};

}  // namespace orrinvale
