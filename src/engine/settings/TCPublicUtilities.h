// TCPublicUtilities: the program's small read-write dictionary, and whether the network can be
// used.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "engine/settings/PropertyList.h"
#include "platform/error.h"

namespace orrinvale {

class NetworkProbe;

/// The dictionary is the resource "StringMessage". The program's own files can not be written to by
/// a user, so the first write makes a copy in the user's data folder, which is read from then on.
/// What tells of the program itself, "VersionCheck", always comes from the program: a copy written
/// by an older one must not hide that it was replaced. A damaged copy is put aside.
class TCPublicUtilities final {
public:
    /// The whole dictionary; nothing when the resource is missing. Any thread.
    [[nodiscard]] static std::optional<PropertyList> stringMessage();

    /// The time of the last data update, or nothing when none was written.
    [[nodiscard]] static std::optional<std::string> getUpDataTimeStr();

    /// Success means that it is on the disk; with the resource missing nothing is stored, and that
    /// is no error. Any thread.
    [[nodiscard]] static Result<void> writeUpDataTimeStr(std::string_view time);

    /// The program's own version number, for comparison with the newest one.
    [[nodiscard]] static std::optional<std::int64_t> versionCheck();

    /// True when the vendor's web site answers, whatever it answers. Blocks the caller for up to 5
    /// seconds, or until `isStopped` says so. False when no probe was handed over.
    [[nodiscard]] static bool isCanBeUseNetWork(const std::function<bool()>& isStopped = {});

    /// Not owned; null takes it back. Hand it over before other threads start.
    static void setNetworkProbe(const NetworkProbe* probe);
};

}  // namespace orrinvale
