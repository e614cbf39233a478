// Desktop: what the engine asks of the desktop around it: whether there is a network, and where the
// main screen is.
#pragma once

#include "platform/workspace.h"
#include "services/settings/HttpsProbe.h"

namespace orrinvale {

/// Answers the engine's shared instances while it lives. One at a time; on the main thread, after
/// the application object.
class Desktop final : public Workspace {
public:
    Desktop();
    ~Desktop() override;
    Desktop(const Desktop&) = delete;
    Desktop& operator=(const Desktop&) = delete;

    [[nodiscard]] std::optional<Rect> mainScreenFrame() const override;

private:
    const HttpsProbe m_networkProbe;
};

}  // namespace orrinvale
