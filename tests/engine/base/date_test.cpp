// The two texts of a date, in several time zones, and their way back.
#include <rapidcheck.h>

#include <ctime>
#include <limits>

#include "engine/base/Date.h"
#include "support/test.h"

namespace orrinvale {
namespace {

constexpr std::int64_t kSecond = 1'000'000'000;
using Limits = std::numeric_limits<std::int64_t>;

class ZoneGuard {
public:
    explicit ZoneGuard(const char* zone) {
        if (const char* const old = std::getenv("TZ")) m_old = old;
        ::setenv("TZ", zone, 1);
        ::tzset();
    }
    ~ZoneGuard() {
        if (m_old) ::setenv("TZ", m_old->c_str(), 1);
        else ::unsetenv("TZ");
        ::tzset();
    }
    ZoneGuard(const ZoneGuard&) = delete;
    ZoneGuard& operator=(const ZoneGuard&) = delete;

private:
    std::optional<std::string> m_old;
};

TEST(Date, DescriptionIsUtcInWholeSecondsRoundedDown) {
    const ZoneGuard zone("Asia/Kathmandu");
    const struct {
        std::int64_t nanoseconds;
        const char* text;
    } cases[] = {
        {0, "1970-01-01 00:00:00 +0000"},
        {1365502830 * kSecond + 999'999'999, "2013-04-09 10:20:30 +0000"},
        {-1, "1969-12-31 23:59:59 +0000"},
        {-kSecond, "1969-12-31 23:59:59 +0000"},
        {951782400 * kSecond, "2000-02-29 00:00:00 +0000"},
        {Limits::max(), "2262-04-11 23:47:16 +0000"},
        {Limits::min(), "1677-09-21 00:12:43 +0000"},
    };
    for (const auto& each : cases) EXPECT_EQ(dateDescription(Date{each.nanoseconds}), each.text);
}

TEST(Date, LocalTextShowsTheOffsetOfThatMoment) {
    const struct {
        const char* zone;
        std::int64_t seconds;
        const char* text;
    } cases[] = {
        {"UTC", 1795255200, "2026-11-21T10:00:00+00:00"},
        {"Europe/Berlin", 1795255200, "2026-11-21T11:00:00+01:00"},
        {"Europe/Berlin", 1774745999,
         "2026-03-29T01:59:59+01:00"},  // one second before the clocks go forward
        {"Europe/Berlin", 1774746000, "2026-03-29T03:00:00+02:00"},
        {"America/St_Johns", 1268537459,
         "2010-03-14T00:00:59-03:30"},  // the change came a minute past midnight
        {"America/St_Johns", 1268537460, "2010-03-14T01:01:00-02:30"},
        {"Asia/Kathmandu", 0, "1970-01-01T05:30:00+05:30"},
        {"Africa/Monrovia", 0, "1969-12-31T23:16:00-00:44"},  // the zone had -00:44:30
    };
    for (const auto& each : cases) {
        const ZoneGuard zone(each.zone);
        EXPECT_EQ(iso8601(Date{each.seconds * kSecond}), each.text) << each.zone;
    }
}

TEST(Date, BothTextsReadBackInAllZones) {
    for (const char* name :
         {"UTC", "Europe/Berlin", "America/St_Johns", "Australia/Lord_Howe", "Africa/Monrovia"}) {
        const ZoneGuard zone(name);
        rc::check(name, [] {
            const auto second = *rc::gen::inRange<std::int64_t>(-9'223'372'036, 9'223'372'036);
            const auto part = *rc::gen::inRange<std::int64_t>(0, kSecond);
            const Date whole{second * kSecond};
            const Date date{second * kSecond + (second < 9'223'372'035 ? part : 0)};
            RC_ASSERT(parseDate(dateDescription(date)) == whole);
            RC_ASSERT(parseDate(iso8601(date)) == whole);
        });
    }
}

TEST(Date, ReadsOnlyWholeAndPossibleTexts) {
    EXPECT_EQ(parseDate("2013-04-09 12:20:30 +0200"), Date{1365502830 * kSecond});
    EXPECT_EQ(parseDate("2013-04-09T04:50:30-05:30"), Date{1365502830 * kSecond});
    const auto expectRefused = [](const std::string& text) {
        EXPECT_EQ(parseDate(text), std::nullopt) << text;
    };
    for (const char* text :
         {"", "2013", "2013-04-09", "2013-04-09T10:20:30+0000", "2013-04-09T10:20:30 +00:00",
          "0001-01-01T00:00:00+00:00", "2262-04-12 00:00:00 +0000"})
        expectRefused(text);
    for (const char* day : {"2013-04-31", "2013-02-29", "2013-00-09", "2013-13-09", "-013-04-09",
                            " 2013-04-09", "9999-12-31"})
        expectRefused(std::string(day) + " 10:20:30 +0000");
    for (const char* time : {"24:20:30", "10:60:30", "10:20:60", "1a:20:30"})
        expectRefused(std::string("2013-04-09 ") + time + " +0000");
    for (const char* zone : {"", " +000", " +00000", " +00:00", " +2400", " +0060", " *0000"})
        expectRefused(std::string("2013-04-09 10:20:30") + zone);
}

TEST(Date, TimeStampsOutsideTheRangeBecomeItsEnds) {
    EXPECT_EQ(Date::fromSeconds(1365502830, 5), Date{1365502830 * kSecond + 5});
    EXPECT_EQ(Date::fromSeconds(-2, 500'000'000), Date{-1'500'000'000});
    EXPECT_EQ(Date::fromSeconds(253402300800), Date{Limits::max()});  // year 10000
    EXPECT_EQ(Date::fromSeconds(9'223'372'036, 999'999'999), Date{Limits::max()});
    EXPECT_EQ(Date::fromSeconds(Limits::max()), Date{Limits::max()});
    EXPECT_EQ(Date::fromSeconds(Limits::min()), Date{Limits::min()});
}

}  // namespace
}  // namespace orrinvale
