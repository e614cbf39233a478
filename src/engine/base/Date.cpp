// The calendar is that of <chrono>; only the local offset comes from the C library.
#include "engine/base/Date.h"

#include <chrono>
#include <ctime>
#include <limits>

namespace orrinvale {
namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;
constexpr std::int64_t kSecondsPerDay = 86'400;

struct Clock {
    std::chrono::year_month_day day;
    int hour;
    int minute;
    int second;
};

std::int64_t floorDivide(std::int64_t value, std::int64_t divisor) {
    return value / divisor - (value % divisor < 0 ? 1 : 0);
}

std::int64_t wholeSeconds(Date date) {
    return floorDivide(date.nanoseconds, kNanosecondsPerSecond);
}

Clock clockAt(std::int64_t seconds) {
    const std::int64_t days = floorDivide(seconds, kSecondsPerDay);
    const auto rest = static_cast<int>(seconds - days * kSecondsPerDay);
    const std::chrono::sys_days day{std::chrono::days{static_cast<int>(days)}};
    return {day, rest / 3600, rest / 60 % 60, rest % 60};
}

int localOffsetMinutes(std::int64_t seconds) {
    const std::time_t moment = seconds;
    std::tm local{};
    if (::localtime_r(&moment, &local) == nullptr) return 0;
    return static_cast<int>(local.tm_gmtoff / 60);
}

// Digits by hand: a result of a search prints a hundred thousand dates, and a format call costs ten
// times as much.
void appendDigits(std::string& out, int value, int digits) {
    const std::size_t end = out.size() + static_cast<std::size_t>(digits);
    out.resize(end);
    for (std::size_t at = end; digits > 0; --digits, value /= 10)
        out[--at] = static_cast<char>('0' + value % 10);
}

std::string clockText(std::int64_t seconds, char between) {
    const Clock clock = clockAt(seconds);
    std::string out;
    out.reserve(32);
    appendDigits(out, static_cast<int>(clock.day.year()), 4);  // a Date lies between 1677 and 2262
    out += '-';
    appendDigits(out, static_cast<int>(static_cast<unsigned>(clock.day.month())), 2);
    out += '-';
    appendDigits(out, static_cast<int>(static_cast<unsigned>(clock.day.day())), 2);
    out += between;
    appendDigits(out, clock.hour, 2);
    out += ':';
    appendDigits(out, clock.minute, 2);
    out += ':';
    appendDigits(out, clock.second, 2);
    return out;
}

/// Takes texts apart from the left: digits of a fixed count, and single marks. Once a piece is
/// missing all further fail.
class Reader {
public:
    explicit Reader(std::string_view text) : m_rest(text) {}

    int number(std::size_t digits) {
        int value = 0;
        for (std::size_t i = 0; i < digits; ++i) {
            const char digit = take();
            if (digit < '0' || digit > '9') m_good = false;
            value = value * 10 + (m_good ? digit - '0' : 0);
        }
        return value;
    }
    char mark(std::string_view allowed) {
        const char c = take();
        if (allowed.find(c) == std::string_view::npos) m_good = false;
        return c;
    }
    bool isDone() const { return m_good && m_rest.empty(); }

private:
    char take() {
        if (m_rest.empty()) {
            m_good = false;
            return '\0';
        }
        const char c = m_rest.front();
        m_rest.remove_prefix(1);
        return c;
    }

    std::string_view m_rest;
    bool m_good = true;
};

std::optional<Date> dateOf(std::int64_t seconds) {
    constexpr std::int64_t kLast = std::numeric_limits<std::int64_t>::max() / kNanosecondsPerSecond;
    if (seconds < -kLast || seconds > kLast) return std::nullopt;
    return Date{seconds * kNanosecondsPerSecond};
}

}  // namespace

Date Date::fromSeconds(std::int64_t seconds, std::uint32_t nanoseconds) {
    using Limits = std::numeric_limits<std::int64_t>;
    std::int64_t product = 0;
    std::int64_t sum = 0;
    if (__builtin_mul_overflow(seconds, kNanosecondsPerSecond, &product) ||
        __builtin_add_overflow(product, std::int64_t{nanoseconds}, &sum))
        return Date{seconds < 0 ? Limits::min() : Limits::max()};
    return Date{sum};
}

std::string dateDescription(Date date) { return clockText(wholeSeconds(date), ' ') + " +0000"; }

std::string iso8601(Date date) {
    const std::int64_t seconds = wholeSeconds(date);
    const int offset = localOffsetMinutes(seconds);
    const int distance = offset < 0 ? -offset : offset;
    std::string out = clockText(seconds + offset * 60, 'T');
    out += offset < 0 ? '-' : '+';
    appendDigits(out, distance / 60, 2);
    out += ':';
    appendDigits(out, distance % 60, 2);
    return out;
}

std::optional<Date> parseDate(std::string_view text) {
    Reader reader(text);
    const std::chrono::year year{reader.number(4)};
    reader.mark("-");
    const std::chrono::month month{static_cast<unsigned>(reader.number(2))};
    reader.mark("-");
    const std::chrono::day day{static_cast<unsigned>(reader.number(2))};
    const bool isIso = reader.mark(" T") == 'T';
    const int hour = reader.number(2);
    reader.mark(":");
    const int minute = reader.number(2);
    reader.mark(":");
    const int second = reader.number(2);
    if (!isIso) reader.mark(" ");
    const int sign = reader.mark("+-") == '-' ? -1 : 1;
    const int offsetHours = reader.number(2);
    if (isIso) reader.mark(":");
    const int offsetMinutes = reader.number(2);

    const std::chrono::year_month_day date{year, month, day};
    if (!reader.isDone() || !date.ok() || hour > 23 || minute > 59 || second > 59 ||
        offsetHours > 23 || offsetMinutes > 59)
        return std::nullopt;
    const std::int64_t days = std::chrono::sys_days{date}.time_since_epoch().count();
    const std::int64_t local = days * kSecondsPerDay + hour * 3600 + minute * 60 + second;
    return dateOf(local - sign * (offsetHours * 3600 + offsetMinutes * 60));
}

}  // namespace orrinvale
