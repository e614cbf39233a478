// System over the Linux kernel's own account of itself. Read platform/system.h first.
#pragma once

#include "platform/system.h"

namespace orrinvale {

/// Knows one selector, "sysv": 0x1050 for kernels older than 4.11, 0x1060 for all others. The line
/// is drawn there because the walk reads every entry's attributes by statx(2), which came with
/// Linux 4.11 (its man page): on an older kernel each folder would list and then fail entry by
/// entry, so the program had better not start.
class LinuxSystem final : public System {
public:
    [[nodiscard]] std::uint32_t gestalt(std::string_view selector) const override;

    /// The "sysv" figure for a release as uname(2) gives it, such as "6.1.0-18-amd64". A text that
    /// does not begin with two numbers counts as new enough: a renamed kernel is likelier than an
    /// ancient one.
    [[nodiscard]] static std::uint32_t versionOfRelease(std::string_view release);
};

}  // namespace orrinvale
