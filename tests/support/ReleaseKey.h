// ReleaseKey: a pair of keys that openssl makes for one test, and what its holder signs.
#pragma once

#include <fmt/format.h>

#include <cstdlib>
#include <string>
#include <string_view>

#include "support/TestTree.h"

namespace orrinvale::testing {

class ReleaseKey final {
public:
    ReleaseKey() {
        if (!run("genpkey -algorithm ed25519 -out {0}/key") ||
            !run("pkey -in {0}/key -pubout -outform DER -out {0}/public"))
            return;
        const std::string encoded = contentOf(m_tree.at("public"));  // the key stands at its end
        for (std::size_t i = encoded.size() - 32; i < encoded.size(); ++i)
            publicKey += fmt::format("{:02x}", static_cast<unsigned char>(encoded[i]));
    }

    [[nodiscard]] std::string sign(std::string_view bytes) {
        if (!m_tree.write("bytes", bytes) ||
            !run("pkeyutl -sign -rawin -inkey {0}/key -in {0}/bytes -out {0}/signature"))
            return {};
        return contentOf(m_tree.at("signature"));
    }

    std::string publicKey;  ///< hexadecimal; empty where openssl is missing

private:
    [[nodiscard]] bool run(std::string_view command) const {
        return std::system(("openssl " + fmt::format(fmt::runtime(command), m_tree.path()) +
                            " >/dev/null 2>&1")
                               .c_str()) == 0;
    }
    TestTree m_tree;
};

/// A description with that number and these further keys and texts.
inline std::string description(const std::string& number, const std::string& further) {
    return "<plist version=\"1.0\"><dict><key>VersionCheck</key><string>" + number +
           "</string><key>Version</key><string>2.0</string>" + further + "</dict></plist>";
}

}  // namespace orrinvale::testing
