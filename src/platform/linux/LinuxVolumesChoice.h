// Which mounts are volumes to a person, and which of them a server gives. MountTable.h is where
// they come from.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

#include "platform/linux/MountTable.h"

namespace orrinvale {

/// The mounts that count as volumes, "/" first and the others in the table's order.
///
/// - File systems on block devices count, and those that manage devices themselves, such as btrfs
/// and zfs; so do network mounts.
/// - What programs and memory make (FUSE, tmpfs) counts below /media, /run/media and /mnt only,
/// where people mount things.
/// - Everything that the system makes for itself does not: kernel file systems, images of snaps,
/// containers' overlays.
/// - Of several mounts of one device one counts: "/", else one that shows the whole file system,
/// else the shortest path. Binds and
///   subvolumes share their free space, so two rows would tell it twice. Shares of one server count
///   by their source.
/// - A mount that another one hides does not count.
/// - "/" always counts, whatever it is.
[[nodiscard]] std::vector<MountEntry> chooseVolumes(const std::vector<MountEntry>& table);

/// What all mounts of one volume have in common: the device, and of a share its source too.
using VolumeKey = std::tuple<std::uint32_t, std::uint32_t, std::string, std::string>;
[[nodiscard]] VolumeKey volumeKeyOf(const MountEntry& mount);

/// Whether another mount of the table hides this one, so that its path leads to the other.
[[nodiscard]] bool isHiddenMount(const std::vector<MountEntry>& table, std::size_t index);

/// Whether asking the mount how full it is never waits for a device, a program or a server: it is
/// of a file system that keeps these figures in memory, and so is every mount on the way to it.
[[nodiscard]] bool answersAtOnce(const std::vector<MountEntry>& table, const MountEntry& mount);

/// Not 0 for a mount that a server gives: a number made of the server's name as it stands in the
/// source. Nothing is looked up, and two servers may share a number; only whether it is 0 means
/// something.
[[nodiscard]] std::uint32_t serverAddressOf(const MountEntry& mount);

/// "server" of "user@server:/path", "//server/share", "https://server/path", "[fe80::1]:/path"; the
/// whole source where it has no such form.
[[nodiscard]] std::string_view serverOfSource(std::string_view source);

}  // namespace orrinvale
