// The four arrows and E, each with the command key.
#include "ui/tray/ArrowHotKeys.h"

#include <utility>

namespace orrinvale {
namespace {

constexpr std::uint32_t commandKey = 256;
constexpr std::uint32_t signature = fourLetters("Arow");
constexpr std::array<std::uint32_t, 5> keyCodes{124, 123, 126, 125,
                                                14};  // right, left, up, down, E

}  // namespace

void ArrowHotKeys::Runloop() {
    m_keys.InstallEventHandler(
        [this](const HotKeyEvent& event) { return HotKeyEventHandlerProc(event); });
    RegisterHotKeys(true);
}

void ArrowHotKeys::RegisterHotKeys(bool registers) {
    if (std::exchange(m_isRegistered, registers) == registers) return;
    for (std::size_t i = 0; i < count; ++i) {
        const HotKeyID id{signature, static_cast<std::uint32_t>(i + 1)};
        if (registers)
            m_keys.RegisterEventHotKey(keyCodes.at(i), commandKey, id, m_references.at(i));
        else m_keys.UnregisterEventHotKey(m_references.at(i));
    }
}

std::int32_t ArrowHotKeys::HotKeyEventHandlerProc(const HotKeyEvent& event) {
    const HotKeyID& key = event.hotKey;
    if (event.eventClass == kEventClassKeyboard && event.kind == kEventHotKeyPressed &&
        key.signature == signature && key.id >= 1 && key.id <= count)
        RegisterHotKeys(false);
    return eventNotHandledErr;
}

}  // namespace orrinvale
