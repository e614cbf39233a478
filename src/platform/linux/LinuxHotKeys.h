// No hot keys: what grabs an arrow key takes it from every other program, whose cursor then stands
// still. Wayland lets nobody grab keys at all.
#pragma once

#include "platform/hotKeys.h"

namespace orrinvale {

/// Refuses every registration and never calls a handler.
class LinuxHotKeys final : public HotKeys {
public:
    void InstallEventHandler(Handler /*handler*/) override {}
    std::int32_t RegisterEventHotKey(std::uint32_t /*keyCode*/, std::uint32_t /*modifiers*/,
                                     HotKeyID /*id*/, std::uint32_t& /*reference*/) override {
        return eventNotHandledErr;
    }
    std::int32_t UnregisterEventHotKey(std::uint32_t /*reference*/) override {
        return eventNotHandledErr;
    }
};

}  // namespace orrinvale
