// Size texts against an own computation, and the road from text back to bytes.
#include <clocale>
#include <cmath>
#include <cstdio>
#include <limits>
#include <stdexcept>

#include "engine/text/UtilityFunction.h"
#include "support/test.h"

namespace orrinvale {
namespace {

constexpr std::uint64_t kLargest = std::numeric_limits<std::uint64_t>::max();

class CLocale {
public:
    CLocale() : m_locale(::newlocale(LC_ALL_MASK, "C", nullptr)), m_old(::uselocale(m_locale)) {}
    ~CLocale() {
        ::uselocale(m_old);
        ::freelocale(m_locale);
    }
    CLocale(const CLocale&) = delete;
    CLocale& operator=(const CLocale&) = delete;

private:
    ::locale_t m_locale;
    ::locale_t m_old;
};

/// Rounds to 24 bits by hand, so that nothing here leans on the compiler's single precision.
long double rounded(long double value) {
    if (value == 0) return 0;
    int exponent = 0;
    const long double mantissa = std::frexp(value, &exponent);
    return std::ldexp(std::nearbyint(std::ldexp(mantissa, 24)), exponent - 24);
}

struct Unit {
    std::uint64_t below;  // the first count that takes the next unit
    long double bytes;
    const char* name;
};
constexpr Unit kDecimal[] = {{1'000'000, 1e3L, "KB"}, {1'000'000'000, 1e6L, "MB"}, {0, 1e9L, "GB"}};
constexpr Unit kBinary[] = {
    {1ULL << 20, 1024.0L, "KB"}, {1ULL << 30, 1048576.0L, "MB"}, {0, 1073741824.0L, "GB"}};

const Unit& unitOf(const Unit (&units)[3], std::uint64_t bytes) {
    return bytes < units[0].below ? units[0] : bytes < units[1].below ? units[1] : units[2];
}

/// The text by long arithmetic and the C library's printing, which is in the C locale for the
/// test's duration.
std::string expectedText(const Unit (&units)[3], std::uint64_t bytes) {
    const Unit& unit = unitOf(units, bytes);
    char text[64];
    const long double quotient = rounded(rounded(static_cast<long double>(bytes)) / unit.bytes);
    std::snprintf(text, sizeof text, "%0.2Lf %s", quotient, unit.name);
    return text;
}

/// Counts of all magnitudes: powers of two and ten with their neighbours, then random ones of
/// random length.
template <class Visit> void visitCounts(std::size_t number, Visit visit) {
    for (int bit = 0; bit < 64; ++bit)
        for (std::uint64_t offset : {kLargest, std::uint64_t{0}, std::uint64_t{1}})
            visit((1ULL << bit) + offset);
    for (std::uint64_t power = 1; power < kLargest / 10; power *= 10)
        for (std::uint64_t offset : {kLargest, std::uint64_t{0}, std::uint64_t{1}})
            visit(power + offset);
    std::mt19937_64 random(20130409);
    for (std::size_t i = 0; i < number; ++i) visit(random() >> (random() % 64));
}

TEST(SizeText, NamedCounts) {
    const struct {
        std::uint64_t bytes;
        const char* decimal;
        const char* binary;
    } cases[] = {
        {0, "0.00 KB", "0.00 KB"},
        {4, "0.00 KB", "0.00 KB"},
        {5, "0.00 KB", "0.00 KB"},  // a five lies below its half in single precision
        {6, "0.01 KB", "0.01 KB"},
        {999999, "1000.00 KB", "976.56 KB"},
        {1000000, "1.00 MB", "976.56 KB"},
        {1048575, "1.05 MB", "1024.00 KB"},
        {1048576, "1.05 MB", "1.00 MB"},
        {999999999, "1000.00 MB", "953.67 MB"},
        {1000000000, "1.00 GB", "953.67 MB"},
        {1073741823, "1.07 GB", "1024.00 MB"},
        {1073741824, "1.07 GB", "1.00 GB"},
        {5000000000000, "5000.00 GB", "4656.61 GB"},
        {kLargest, "18446743552.00 GB", "17179869184.00 GB"},
    };
    for (const auto& each : cases) {
        EXPECT_EQ(UtilityFunction::convertVolSpace(each.bytes), each.decimal) << each.bytes;
        EXPECT_EQ(UtilityFunction::covertCleanMemory(each.bytes), each.binary) << each.bytes;
    }
}

TEST(SizeText, AgreesWithLongArithmetic) {
    const CLocale locale;
    visitCounts(1'000'000, [](std::uint64_t bytes) {
        ASSERT_EQ(UtilityFunction::convertVolSpace(bytes), expectedText(kDecimal, bytes)) << bytes;
        ASSERT_EQ(UtilityFunction::covertCleanMemory(bytes), expectedText(kBinary, bytes)) << bytes;
    });
}

TEST(SizeText, ReadsBackWithinItsTwoDecimalsAndItsRounding) {
    visitCounts(1'000'000, [](std::uint64_t bytes) {
        const auto read =
            UtilityFunction::getVolSpaceFromString(UtilityFunction::convertVolSpace(bytes));
        const auto count = static_cast<long double>(bytes);
        const long double difference = std::fabs(static_cast<long double>(read) - count);
        // Half a hundredth of the unit, four roundings of 2^-24 (count, quotient, text, product),
        // and the cut to bytes.
        const long double bound =
            unitOf(kDecimal, bytes).bytes * 0.005L + count * std::ldexp(4.0L, -24) + 1;
        ASSERT_LE(difference, bound) << bytes << " came back as " << read;
    });
}

TEST(SizeText, WholeUnitsTruncate) {
    const struct {
        std::uint64_t value;
        std::int32_t base;
        const char* text;
    } cases[] = {
        {0, 1024, "0.00 KB"},
        {1023, 1024, "0.00 KB"},
        {1048575, 1024, "1023.00 KB"},
        {1048576, 1024, "1.00 MB"},
        {1073741823, 1024, "1023.00 MB"},
        {4294967295, 1024, "3.00 GB"},
        {3'900'000'000, 1000, "3.00 GB"},
        {kLargest, 1024, "17179869184.00 GB"},
        {2'500'000'000, 46341, "1.00 MB"},  // the square is past 2^31, and stays positive
        {2'500'000'000'000, 1300,
         "1479289.00 MB"},          // the cube is past 2^31: a divisor too large to reach
        {70000, 65536, "0.00 GB"},  // square and cube wrap to nothing
        {70000, 0, "0.00 GB"},
        {70000, -1000, "0.00 KB"},  // the base itself becomes a very large divisor
    };
    for (const auto& each : cases)
        EXPECT_EQ(UtilityFunction::formatValue(each.value, each.base), each.text)
            << each.value << " by " << each.base;
}

TEST(SizeText, BytesOfAText) {
    const struct {
        const char* text;
        std::uint64_t bytes;
    } cases[] = {
        {"1.50 GB", 1500000000},
        {"1.50GB", 1500000000},
        {"  1.5 KB", 1500},
        {"\t+2 MB", 2000000},
        {"1 TB", 999999995904},
        {"1e3 KB", 1000000},
        {"1,5 KB", 1000},  // a comma ends the number, whatever the locale
        {"12abc KB", 12000},
        {"18446742 TB", 18446741874686296064ULL},  // two floats below 2^64
        {"18446744 TB", kLargest},                 // rounds up to 2^64
        {"18446745 TB", kLargest},
        {"1e30 TB", kLargest},
        {"1e60 KB", kLargest},
        {"1e99999999999999999999 KB", kLargest},
    };
    for (const auto& each : cases)
        EXPECT_EQ(UtilityFunction::getVolSpaceFromString(each.text), each.bytes) << each.text;
    for (const char* text :
         {"0.00 KB", "-5 KB", "-5 GB", "1234", "12 kb", "12 B", "KB", ". KB", "+-3 KB", "0x10 KB",
          "nan KB", "inf KB", "1e-60 TB", "-1e60 TB", "1e-99999999999999999999 KB"})
        EXPECT_EQ(UtilityFunction::getVolSpaceFromString(text), 0U) << text;
    const std::string zeros(400, '0');
    EXPECT_EQ(UtilityFunction::getVolSpaceFromString("1" + zeros + " KB"), kLargest);
    EXPECT_EQ(UtilityFunction::getVolSpaceFromString("0." + zeros + "1 KB"), 0U);
    EXPECT_EQ(UtilityFunction::getVolSpaceFromString("0." + zeros + "1e410 KB"), 999999995904U);
    for (const char* text : {"", "B"})
        EXPECT_THROW((void)UtilityFunction::getVolSpaceFromString(text), std::out_of_range);
}

TEST(SizeText, GigabytesOfAText) {
    const struct {
        const char* text;
        float gigabytes;
    } cases[] = {
        {"2.00 T", 2000.0F},
        {"2.00 TB", 0.0F},
        {"1.50 GB", 1.5F},
        {"1500.00 MB", 1.5F},
        {"1500000.00 KB", 1.5F},
        {"-1.50 GB", -1.5F},
        {"1.50 GB free", 1.5F},
        {"1.50  GB", 0.0F},  // the second piece is the nothing between the
                             // blanks
        {"1.50 ", 0.0F},
    };
    for (const auto& each : cases)
        EXPECT_EQ(UtilityFunction::returnParserFromVolSpace(each.text), each.gigabytes)
            << each.text;
    for (const char* text : {"", "1.50GB"})
        EXPECT_THROW((void)UtilityFunction::returnParserFromVolSpace(text), std::out_of_range);
}

}  // namespace
}  // namespace orrinvale
