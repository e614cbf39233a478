// The digest of a bundle's listing: what changes it, what does not, and how a listing fails.
#include "engine/duplicates/BundleListing.h"

#include "support/realFiles.h"
#include "support/test.h"

namespace orrinvale {
namespace {

const std::atomic<bool> notStopped{false};

class BundleDigest : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(m_tree.write("B.app/in/file", "12345") && m_tree.write("B.app/other", "67890"));
        ASSERT_TRUE(m_tree.symlink("in", "B.app/toFolder") &&
                    m_tree.symlink("other", "B.app/toFile"));
        ASSERT_TRUE(m_tree.folder("B.app/empty") && m_tree.fifo("B.app/pipe"));
    }
    [[nodiscard]] std::string at(const std::string& name) const {
        return m_tree.at("B.app/" + name);
    }
    [[nodiscard]] BundleListing list(const BundleQuery& query = {}) const {
        auto listing = listBundle(files, m_tree.at("B.app"), query, notStopped);
        EXPECT_TRUE(listing.has_value());
        return listing ? std::move(*listing) : BundleListing{};
    }

    TestTree m_tree;
};

TEST_F(BundleDigest, HoldsEverythingInOrder) {
    const auto listing = list({.passingInodes = {}, .followLinks = true});
    std::string text;
    for (const auto& entry : listing.entries)
        text += entry.path + (entry.linkText.empty() ? "" : ">" + entry.linkText) + ' ';
    EXPECT_EQ(text, "empty in in/file other pipe toFile>other toFolder>in ");
    EXPECT_EQ(listing.bytes, 5U + 5U + 5U + 2U);
    EXPECT_EQ(listing.entries[5].leadsTo, FileType::Regular);
    EXPECT_EQ(listing.entries[6].leadsTo, FileType::Folder);
    EXPECT_EQ(list().entries[6].leadsTo, FileType::Unknown);
}

// None of these changes the sum of the bytes.
TEST_F(BundleDigest, TellsEveryChange) {
    const std::vector<std::pair<const char*, std::function<void()>>> changes{
        {"a renamed file",
         [&] { keepTimes(at("."), [&] { ::rename(at("other").c_str(), at("othes").c_str()); }); }},
        {"a link that points elsewhere",
         [&] {
             keepTimes(at("toFolder"), [&] {
                 ::unlink(at("toFolder").c_str());
                 (void)!::symlink("on", at("toFolder").c_str());
             });
         }},
        {"a file put in another's place",
         [&] {
             keepTimes(at("in/file"), [&] {
                 m_tree.write("B.app/in/new", "54321");
                 ::rename(at("in/new").c_str(), at("in/file").c_str());
             });
         }},
        {"a new folder", [&] { m_tree.folder("B.app/new"); }},
        {"a file written over", [&] { m_tree.patch("B.app/in/file", 0, "9"); }},
        {"a socket in place of a pipe",
         [&] {
             ::unlink(at("pipe").c_str());
             m_tree.socket("B.app/pipe");
         }},
    };
    std::uint64_t last = list().digest;
    for (const auto& [what, change] : changes) {
        change();
        const std::uint64_t now = list().digest;
        EXPECT_NE(now, last) << what;
        last = now;
    }
}

TEST_F(BundleDigest, IsTheSameForWhatIsTheSame) {
    const std::uint64_t digest = list().digest;
    ASSERT_EQ(::chmod(at("in/file").c_str(), 0600), 0);  // a new time of the inode
    ASSERT_EQ(::rename(m_tree.at("B.app").c_str(), m_tree.at("C.app").c_str()), 0);
    const auto moved = listBundle(files, m_tree.at("C.app"), {}, notStopped);
    ASSERT_TRUE(moved);
    EXPECT_EQ(moved->digest, digest);
}

TEST_F(BundleDigest, LeavesInodesOutWhereTheyDoNotLast) {
    const std::uint64_t device = list().entries[0].attributes.device;
    const std::vector<std::uint64_t> passing{device};
    const auto with = list().digest;
    const auto without = list({.passingInodes = passing}).digest;
    EXPECT_NE(with, without);
    keepTimes(at("in"), [&] {
        keepTimes(at("in/file"), [&] {
            m_tree.write("B.app/in/new", "12345");
            ::rename(at("in/new").c_str(), at("in/file").c_str());
        });
    });
    EXPECT_NE(list().digest, with);
    EXPECT_EQ(list({.passingInodes = passing}).digest, without);
}

TEST_F(BundleDigest, FailuresAndStopsAreErrors) {
    EXPECT_EQ(listBundle(files, m_tree.at("missing"), {}, notStopped).error().number, ENOENT);
    const std::atomic<bool> stopped{true};
    EXPECT_EQ(listBundle(files, m_tree.at("B.app"), {}, stopped).error().number, ECANCELED);
    m_tree.setMode("B.app/in", 0);
    ::chmod(m_tree.path().c_str(), 0755);
    const std::string text = testing::runInChild({.ordinaryUser = true}, [&]() -> std::string {
        const auto listing = listBundle(files, m_tree.at("B.app"), {}, notStopped);
        if (listing) return "listed";
        return listing.error().number == EACCES && listing.error().path == at("in")
                   ? ""
                   : listing.error().path;
    });
    EXPECT_EQ(text, "");
}

// A folder that is changed while it is listed may give a name twice.
TEST_F(BundleDigest, ANameThatIsListedTwiceCountsOnce) {
    class Repeating final : public ForwardingFiles {
    public:
        using ForwardingFiles::ForwardingFiles;
        SysResult<bool> readFolder(int folder, CatalogBatch& batch) const override {
            auto more = ForwardingFiles::readFolder(folder, batch);
            const std::vector<CatalogEntry> again = batch.entries;
            batch.entries.insert(batch.entries.end(), again.begin(), again.end());
            return more;
        }
    };
    const auto listing = listBundle(Repeating(files), m_tree.at("B.app"), {}, notStopped);
    ASSERT_TRUE(listing);
    EXPECT_EQ(listing->digest, list().digest);
    EXPECT_EQ(listing->bytes, list().bytes);
}

}  // namespace
}  // namespace orrinvale
