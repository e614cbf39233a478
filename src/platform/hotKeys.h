// HotKeys: keys that reach the program wherever the keyboard is. linux/LinuxHotKeys.h implements
// it.
#pragma once

#include <cstdint>
#include <functional>

namespace orrinvale {

/// Four letters as a number, as events and their classes are called.
[[nodiscard]] constexpr std::uint32_t fourLetters(const char (&text)[5]) {
    std::uint32_t number = 0;
    for (int i = 0; i < 4; ++i) number = number << 8U | static_cast<unsigned char>(text[i]);
    return number;
}

inline constexpr std::uint32_t kEventClassKeyboard = fourLetters("keyb");
inline constexpr std::uint32_t kEventHotKeyPressed = 5;
inline constexpr std::uint32_t kEventHotKeyReleased = 6;
inline constexpr std::int32_t eventNotHandledErr = -9874;  ///< the event goes on to the system

struct HotKeyID {
    std::uint32_t signature = 0;
    std::uint32_t id = 0;
};

struct HotKeyEvent {
    std::uint32_t eventClass = 0;
    std::uint32_t kind = 0;
    HotKeyID hotKey;  ///< the event's direct object
};

/// Main thread only.
class HotKeys {
public:
    /// What became of the event; 0 ends its way.
    using Handler = std::function<std::int32_t(const HotKeyEvent& event)>;

    virtual ~HotKeys() = default;

    /// The handler is called for pressed and released keys that are registered, from now on.
    virtual void InstallEventHandler(Handler handler) = 0;

    /// `reference` then stands for the registration, for the next operation. 0 on success.
    virtual std::int32_t RegisterEventHotKey(std::uint32_t keyCode, std::uint32_t modifiers,
                                             HotKeyID id, std::uint32_t& reference) = 0;
    virtual std::int32_t UnregisterEventHotKey(std::uint32_t reference) = 0;

protected:
    HotKeys() = default;
    HotKeys(const HotKeys&) = default;
    HotKeys& operator=(const HotKeys&) = default;
};

}  // namespace orrinvale
