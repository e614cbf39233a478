// The hash against a loop over single bits, for every loop that this machine can run.
#include "engine/duplicates/crc.h"

#include <sys/mman.h>

#include "engine/duplicates/crcKernels.h"
#include "support/test.h"

namespace orrinvale {
namespace {

constexpr std::uint64_t allOnes = ~std::uint64_t{0};

/// One bit of the message at a time, with the polynomial in its usual order and the bits reversed
/// by hand: shares nothing with the code under test.
std::uint64_t bitwise(std::uint64_t value, const unsigned char* bytes, std::size_t size) {
    std::uint64_t straight = 0;
    for (int bit = 0; bit < 64; ++bit) straight |= ((value >> bit) & 1) << (63 - bit);
    for (std::size_t i = 0; i < size; ++i)
        for (int bit = 0; bit < 8; ++bit) {
            const std::uint64_t in = (bytes[i] >> bit) & 1U;
            const bool carry = ((straight >> 63) ^ in) != 0;
            straight = (straight << 1) ^ (carry ? 0xAD93D23594C935A9 : 0);
        }
    std::uint64_t reflected = 0;
    for (int bit = 0; bit < 64; ++bit) reflected |= ((straight >> bit) & 1) << (63 - bit);
    return reflected;
}

std::vector<unsigned char> randomBytes(std::size_t size, std::uint64_t seed) {
    std::mt19937_64 random(seed);
    std::vector<unsigned char> bytes(size);
    std::generate(bytes.begin(), bytes.end(), [&] { return static_cast<unsigned char>(random()); });
    return bytes;
}

/// Memory between two pages that may not be touched, so that a read of a single byte too many ends
/// the test: a masked vector load goes past the address sanitizer unseen.
class GuardedMemory final {
public:
    explicit GuardedMemory(std::size_t pages)
        : m_page(static_cast<std::size_t>(::sysconf(_SC_PAGESIZE))),
          m_size(pages * m_page),
          m_mapping(
              ::mmap(nullptr, m_size + 2 * m_page, PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
        if (m_mapping == MAP_FAILED || ::mprotect(begin(), m_size, PROT_READ | PROT_WRITE) != 0)
            std::abort();
    }
    ~GuardedMemory() { ::munmap(m_mapping, m_size + 2 * m_page); }
    GuardedMemory(const GuardedMemory&) = delete;
    GuardedMemory& operator=(const GuardedMemory&) = delete;

    [[nodiscard]] unsigned char* begin() const {
        return static_cast<unsigned char*>(m_mapping) + m_page;
    }
    [[nodiscard]] unsigned char* end() const { return begin() + m_size; }

private:
    std::size_t m_page;
    std::size_t m_size;
    void* m_mapping;
};

class CrcKernelTest : public ::testing::TestWithParam<CrcKernel> {
protected:
    void SetUp() override {
        if (!GetParam().supported()) GTEST_SKIP() << "this processor has no instructions for it";
    }
    static std::uint64_t update(std::uint64_t value, const void* bytes, std::size_t size) {
        return GetParam().update(value, bytes, size);
    }
};

// The values of every prefix come from the slow loop once, carried from byte to byte.
TEST_P(CrcKernelTest, EveryLengthUpTo4096AtBothEndsOfReadableMemory) {
    constexpr std::size_t longest = 4096;
    const GuardedMemory memory(2);
    const std::vector<unsigned char> bytes = randomBytes(longest, 1);
    for (const std::uint64_t start :
         {allOnes, std::uint64_t{0}, std::uint64_t{0x0123456789ABCDEF}}) {
        std::uint64_t expected = start;
        for (std::size_t size = 0; size <= longest; ++size) {
            std::copy_n(bytes.begin(), size, memory.begin());
            ASSERT_EQ(update(start, memory.begin(), size), expected)
                << size << " bytes at the beginning";
            unsigned char* const last = memory.end() - size;
            std::copy_n(bytes.begin(), size, last);
            ASSERT_EQ(update(start, last, size), expected) << size << " bytes at the end";
            if (size < longest) expected = bitwise(expected, &bytes[size], 1);
        }
    }
}

TEST_P(CrcKernelTest, ValueRunsOnOverAnyCuts) {
    const std::vector<unsigned char> bytes = randomBytes(100'000, 3);
    const std::uint64_t whole = bitwise(allOnes, bytes.data(), bytes.size());
    EXPECT_EQ(update(allOnes, bytes.data(), bytes.size()), whole);
    std::mt19937_64 random(4);
    for (int round = 0; round < 200; ++round) {
        const std::size_t longest = std::size_t{1} << (round % 15);
        std::uint64_t value = allOnes;
        for (std::size_t done = 0; done < bytes.size();) {
            const std::size_t piece =
                std::min<std::size_t>(bytes.size() - done, random() % (longest + 1));
            value = update(value, bytes.data() + done, piece);
            done += piece;
        }
        ASSERT_EQ(value, whole) << "pieces of up to " << longest;
    }
}

INSTANTIATE_TEST_SUITE_P(All, CrcKernelTest, ::testing::ValuesIn(crcKernels()),
                         [](const auto& kernel) {
                             std::string name(kernel.param.name);
                             std::erase(name, '-');
                             return name;
                         });

// The published check value of CRC-64/REDIS, E9C6D914C4B8D9CA, belongs to this polynomial,
// reflected, with a start value of zero and no inversion at the end. The start value carried over
// nine bytes (a message of nine zeros) turns it into the one for all ones.
TEST(Crc, PublishedCheckValue) {
    constexpr std::string_view message = "123456789";
    EXPECT_EQ(crc::crc64Buffer(message.data(), 9, false, 0), 0xE9C6D914C4B8D9CA);
    const std::vector<unsigned char> zeros(9, 0);
    const std::uint64_t fromOnes =
        0xE9C6D914C4B8D9CA ^ bitwise(allOnes, zeros.data(), zeros.size());
    EXPECT_EQ(crc::crc64(message.data(), 9), fromOnes);
    EXPECT_EQ(crc::crc64Buffer(message.data(), 9, true, 42), fromOnes)
        << "the head ignores the value that it is given";
}

TEST(Crc, NoBufferAndNoBytes) {
    const char byte = 'x';
    EXPECT_EQ(crc::crc64(nullptr, 5), 0U);
    EXPECT_EQ(crc::crc64(nullptr, 0), 0U);
    EXPECT_EQ(crc::crc64(&byte, 0), allOnes);
    EXPECT_EQ(crc::crc64Buffer(nullptr, 5, true, 7), 0U);
    EXPECT_EQ(crc::crc64Buffer(nullptr, 5, false, 7), 0U);
    EXPECT_EQ(crc::crc64Buffer(&byte, 0, true, 7), allOnes);
    EXPECT_EQ(crc::crc64Buffer(&byte, 0, false, 7), 7U);
}

TEST(Crc, CombineJoinsPiecesAtAnyCut) {
    const std::vector<unsigned char> bytes = randomBytes(70'001, 5);
    const auto value = [&](std::size_t from, std::size_t to) {
        return crc::crc64(bytes.data() + from, static_cast<std::uint32_t>(to - from));
    };
    const std::uint64_t whole = value(0, bytes.size());
    for (std::size_t cut = 0; cut <= bytes.size();
         cut += cut < 300 || cut > bytes.size() - 300 ? 1U : 97U)
        ASSERT_EQ(crc::combine(value(0, cut), value(cut, bytes.size()), bytes.size() - cut), whole)
            << cut;
    const std::uint64_t front = crc::combine(value(0, 8192), value(8192, 40'000), 40'000 - 8192);
    EXPECT_EQ(crc::combine(front, value(40'000, bytes.size()), bytes.size() - 40'000), whole)
        << "three pieces";
}

// Sizes that no buffer has: 2^k zero bytes are joined from two halves, up to the largest bit of the
// size.
TEST(Crc, CombineWithHugeSizes) {
    const std::vector<unsigned char> zeros(1024, 0);
    std::uint64_t value = crc::crc64(zeros.data(), 1024);
    for (int power = 10; power < 40; ++power)
        value = crc::combine(value, value, std::uint64_t{1} << power);
    // The same 2^40 zeros in 2^10 pieces of 2^30.
    std::uint64_t piece = crc::crc64(zeros.data(), 1024);
    for (int power = 10; power < 30; ++power)
        piece = crc::combine(piece, piece, std::uint64_t{1} << power);
    std::uint64_t joined = piece;
    for (int count = 1; count < 1024; ++count)
        joined = crc::combine(joined, piece, std::uint64_t{1} << 30);
    EXPECT_EQ(joined, value);
    const std::uint64_t start = allOnes ^ 0x5A5A;
    std::uint64_t twice = crc::combine(start, allOnes, std::uint64_t{1} << 62);
    twice = crc::combine(twice, allOnes, std::uint64_t{1} << 62);
    EXPECT_EQ(crc::combine(start, allOnes, std::uint64_t{1} << 63), twice);
}

}  // namespace
}  // namespace orrinvale
