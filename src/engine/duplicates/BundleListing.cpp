// Taking goes through a bundle once and puts names, kinds, sizes and links into the number.
#include "engine/duplicates/BundleListing.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <optional>

#include "engine/base/saturating.h"
#include "engine/duplicates/crc.h"
#include "engine/files/FolderNode.h"
#include "engine/files/TreeLister.h"
#include "engine/files/TreeSize.h"
#include "platform/files.h"
#include "platform/linkText.h"

namespace orrinvale {
namespace {

// Every piece goes in with its length in front, so that no two lists of pieces give one row of
// bytes.
class Digest {
public:
    void add(std::string_view bytes) {
        add(std::uint64_t{bytes.size()});
        m_value = crc::crc64Buffer(bytes.data(), static_cast<std::uint32_t>(bytes.size()), false,
                                   m_value);
    }
    void add(std::uint64_t number) {
        std::array<unsigned char, sizeof number> bytes;
        for (unsigned char& byte : bytes) {
            byte = static_cast<unsigned char>(number & 0xFFU);
            number >>= 8U;
        }
        m_value = crc::crc64Buffer(bytes.data(), bytes.size(), false, m_value);
    }
    [[nodiscard]] std::uint64_t value() const { return m_value; }

private:
    std::uint64_t m_value = ~std::uint64_t{0};
};

bool isAmong(std::span<const std::uint64_t> devices, std::uint64_t device) {
    return std::find(devices.begin(), devices.end(), device) != devices.end();
}

class Taking {
public:
    Taking(const FileSystem& files, const std::string& shown, const BundleQuery& query)
        : m_files(files), m_shown(shown), m_query(query) {}

    Result<BundleListing> take(int folder, const std::atomic<bool>& stop) {
        std::atomic<bool> end{false};  // set by the first failure too: nobody wants the rest then
        TreeListing listing;
        listing.order = TreeListing::Order::SortedByBytes;
        listing.foldersFirst = true;
        listing.failed = [&](std::string_view relative, int error) {
            fail("list", relative, error);
            end = true;
        };
        listing.entry = [&](const TreeEntry& entry) { end = !addEntry(entry) || stop; };
        listing.enter = [&](std::string_view) { end = stop.load(); };
        const auto listed = listTree(m_files, folder, listing, end);
        if (!listed) fail("list", {}, listed.error());
        if (!m_error && stop) fail("list", {}, ECANCELED);
        if (m_error) return tl::unexpected(std::move(*m_error));
        m_listing.digest = m_digest.value();
        return std::move(m_listing);
    }

private:
    bool addEntry(const TreeEntry& entry) {
        const auto attributes = m_files.attributes(entry.folder, entry.name.data(), Links::Keep);
        if (!attributes) return fail("attributes", entry.relative, attributes.error());
        BundleEntry one{
            .path = std::string(entry.relative), .attributes = *attributes, .linkText = {}};
        if (attributes->type == FileType::SymbolicLink && !lookThrough(entry, one)) return false;
        addSaturating(m_listing.bytes, countedSize(one.attributes));
        addToDigest(one);
        m_listing.entries.push_back(std::move(one));
        return true;
    }

    bool lookThrough(const TreeEntry& entry, BundleEntry& link) {
        auto text = linkText(entry.folder, entry.name.data());
        if (!text) return fail("read the link", entry.relative, text.error());
        link.linkText = std::move(*text);
        if (!m_query.followLinks) return true;
        const auto target = m_files.attributes(entry.folder, entry.name.data(), Links::Follow);
        if (target) link.leadsTo = target->type;
        return true;
    }

    void addToDigest(const BundleEntry& entry) {
        const FileAttributes& seen = entry.attributes;
        m_digest.add(entry.path);
        m_digest.add(static_cast<std::uint64_t>(seen.type));
        m_digest.add(seen.size);
        m_digest.add(static_cast<std::uint64_t>(seen.modified));
        m_digest.add(isAmong(m_query.passingInodes, seen.device) ? 0 : seen.inode);
        m_digest.add(entry.linkText);
    }

    bool fail(std::string_view operation, std::string_view relative, int error) {
        if (!m_error)
            m_error = systemError(operation,
                                  relative.empty() ? m_shown : joinPath(m_shown, relative), error);
        return false;
    }

    const FileSystem& m_files;
    const std::string& m_shown;
    const BundleQuery& m_query;
    BundleListing m_listing;
    Digest m_digest;
    std::optional<Error> m_error;
};

}  // namespace

Result<BundleListing> listBundleAt(const FileSystem& files, int folder, const std::string& shown,
                                   const BundleQuery& query, const std::atomic<bool>& stop) {
    return Taking(files, shown, query).take(folder, stop);
}

Result<BundleListing> listBundle(const FileSystem& files, const std::string& path,
                                 const BundleQuery& query, const std::atomic<bool>& stop) {
    const auto folder = openFolderByPath(files, path, Links::Follow);
    if (!folder) return tl::unexpected(systemError("open", path, folder.error()));
    return listBundleAt(files, folder->get(), path, query, stop);
}

}  // namespace orrinvale
