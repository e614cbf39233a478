// FlatpakLibrary: removal of a flatpak by its own library, loaded when it is first wanted.
#pragma once

#include <atomic>
#include <string>
#include <string_view>
#include <tl/expected.hpp>

namespace orrinvale {

[[nodiscard]] bool hasFlatpakLibrary();

/// Why something was not done, of what the library says.
[[nodiscard]] std::string flatpakReason(std::string_view words);

/// Removes "app/ID/ARCH/BRANCH" from the installation in a folder. Of a shared installation the
/// system asks the person for a password if need be. Why not, in the library's words. A raised flag
/// ends it, and the wait for the password, as long as the library lets itself be stopped. For a
/// thread that may wait.
[[nodiscard]] tl::expected<void, std::string> removeFlatpak(const std::string& installation,
                                                            bool isPersons, const std::string& ref,
                                                            const std::atomic<bool>& stop);

}  // namespace orrinvale
