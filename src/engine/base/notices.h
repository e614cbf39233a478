// notices.h: every notice of the program, each with its name and what it carries. Whoever posts or
// observes one does it through these; NotificationCenter.h delivers them.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

#include "engine/base/NotificationCenter.h"

namespace orrinvale {

/// A row of a left list that was chosen.
struct ChosenRow {
    std::int32_t row = 0;
};

/// The row that the main window's left table shall select, and the selection of the sender, empty
/// when the sender is no table.
struct RowSelection {
    std::vector<std::int32_t> selection;
    std::int32_t row = 0;
};

/// A volume that came or went: its name as people read it, and where it stands, in exact bytes.
/// Either may be empty, when the notice does not tell it.
struct ChangedVolume {
    std::string name;
    std::string path;
};

/// Keys of user infos, all values being std::string, but for the row, a std::int32_t.
inline constexpr const char* NSWorkspaceVolumeLocalizedNameKey =
    "NSWorkspaceVolumeLocalizedNameKey";
inline constexpr const char* NSDevicePath = "NSDevicePath";
inline constexpr const char* rowNumberKey = "rowNum";

/// How a payload travels in a notice. In general it is the notice's object.
template <class Payload> struct NoticeForm {
    static Notification write(std::string name, Payload payload) {
        return {std::move(name), std::move(payload), {}};
    }
    static std::optional<Payload> read(const Notification& notice) {
        const auto* const payload = std::any_cast<Payload>(&notice.object);
        return payload != nullptr ? std::optional(*payload) : std::nullopt;
    }
};

/// A table with the row in it is the object.
template <> struct NoticeForm<ChosenRow> {
    static Notification write(std::string name, ChosenRow payload) {
        return {std::move(name), UserInfo{{rowNumberKey, payload.row}}, {}};
    }
    static std::optional<ChosenRow> read(const Notification& notice);
};

/// The user info has both texts. It can always be read: what a notice lacks is empty.
template <> struct NoticeForm<ChangedVolume> {
    static Notification write(std::string name, const ChangedVolume& payload) {
        return {std::move(name),
                {},
                {{NSWorkspaceVolumeLocalizedNameKey, payload.name}, {NSDevicePath, payload.path}}};
    }
    static std::optional<ChangedVolume> read(const Notification& notice);
};

/// One kind of notice. The name on the wire is fixed.
template <class Payload = void> struct Notice {
    const char* name;

    void post(const NotificationCenter& center, Payload payload) const {
        Notification notice = NoticeForm<Payload>::write(name, std::move(payload));
        center.post(notice.name, std::move(notice.object), std::move(notice.userInfo));
    }

    [[nodiscard]] static std::optional<Payload> read(const Notification& notice) {
        return NoticeForm<Payload>::read(notice);
    }

    /// The handler takes the payload, and is then not called for a notice that carries none; or the
    /// notice as it came; or nothing.
    template <class Handler>
    [[nodiscard]] NotificationCenter::Observation observe(NotificationCenter& center,
                                                          Handler handler) const {
        return center.addObserver(name, [handler](const Notification& notice) mutable {
            if constexpr (std::is_invocable_v<Handler&, Payload>) {
                if (auto payload = read(notice)) handler(*std::move(payload));
            } else if constexpr (std::is_invocable_v<Handler&, const Notification&>) {
                handler(notice);
            } else {
                handler();
            }
        });
    }
};

/// A kind of notice that carries nothing.
template <> struct Notice<void> {
    const char* name;

    void post(const NotificationCenter& center) const { center.post(name); }

    template <class Handler>
    [[nodiscard]] NotificationCenter::Observation observe(NotificationCenter& center,
                                                          Handler handler) const {
        return center.addObserver(name,
                                  [handler](const Notification& /*notice*/) mutable { handler(); });
    }
};

/// All of them. Posted on the main thread, and so heard there.
namespace notice {

/// The desktop's, on the centre of WorkspaceMounts.
inline constexpr Notice<ChangedVolume> NSWorkspaceDidMount{"NSWorkspaceDidMountNotification"};
inline constexpr Notice<ChangedVolume> NSWorkspaceDidUnmount{"NSWorkspaceDidUnmountNotification"};

/// The program's own of the same, with a `WatchMountUnmount*` as the object.
inline constexpr Notice<ChangedVolume> ZvVolumeMount{"ZvVolumeMount"};
inline constexpr Notice<ChangedVolume> ZvVolumeUnmount{"ZvVolumeUnmount"};

/// What lists volumes is to be made anew.
inline constexpr Notice<> refMenuItemWhenDeleteAndAdd{"refMenuItemWhenDeleteAndAdd"};
/// What shows the sizes of volumes is to be made anew.
inline constexpr Notice<> updateSizeView{"updateSizeView"};
/// The root of a volume is to be opened in the file manager.
inline constexpr Notice<std::string> openFinderWhenClickItems{"openFinderWhenClickItems"};

/// UtilityObject::isOpenLocked may have changed: every padlock looks again.
inline constexpr Notice<> changeLockState{"changeLockState"};

/// A type of file was chosen on the duplicate page.
inline constexpr Notice<ChosenRow> refViewBgColor{"refViewBgColor"};
/// The first duplicate search has ended.
inline constexpr Notice<> changeViewActionForDuplicate{"changeViewActionForDuplicate"};
/// A progress strip is full.
inline constexpr Notice<> allThreadFinishCallBack{"allThreadFinishCallBack"};
/// The main window is to select a row on its left.
inline constexpr Notice<RowSelection> shouldSelectRow{"shouldSelectRow"};

}  // namespace notice

}  // namespace orrinvale
