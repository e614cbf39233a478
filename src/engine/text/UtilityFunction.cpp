// The numbers of a text are read by readFloat.
#include "engine/text/UtilityFunction.h"

#include <fmt/format.h>

#include <cfloat>
#include <limits>
#include <stdexcept>

#include "engine/base/notices.h"
#include "engine/text/readFloat.h"
#include "platform/system.h"

namespace orrinvale {
namespace {

static_assert(FLT_EVAL_METHOD == 0,
              "the rounding of size texts wants plain single precision at every step");

constexpr std::uint32_t kFirstSupportedSystem = 0x1060;

std::string sizeText(float number, std::string_view unit) {
    return fmt::format("{:.2f} {}", static_cast<double>(number), unit);
}

std::uint64_t wholeBytes(float product) {
    constexpr float kLimit = 18446744073709551616.0F;  // 2^64
    if (!(product > 0.0F)) return 0;
    return product >= kLimit ? std::numeric_limits<std::uint64_t>::max()
                             : static_cast<std::uint64_t>(product);
}

/// The piece of the text with this number, 0 being the first; pieces end at each mark, and may be
/// empty.
std::string_view readPiece(std::string_view text, char mark, std::size_t number) {
    for (; number > 0; --number) {
        const std::size_t end = text.find(mark);
        if (end == std::string_view::npos) throw std::out_of_range("the text has too few pieces");
        text.remove_prefix(end + 1);
    }
    return text.substr(0, text.find(mark));
}

}  // namespace

UtilityFunction& UtilityFunction::getMyFunction() {
    static UtilityFunction* const instance = new UtilityFunction;
    return *instance;
}

std::string UtilityFunction::convertVolSpace(std::uint64_t bytes) {
    const auto value = static_cast<float>(bytes);
    if (bytes < 1'000'000) return sizeText(value / 1000.0F, "KB");
    if (bytes < 1'000'000'000) return sizeText(value / 1000000.0F, "MB");
    return sizeText(value / 1000000000.0F, "GB");
}

std::string UtilityFunction::covertCleanMemory(std::uint64_t bytes) {
    const auto value = static_cast<float>(bytes);
    if (bytes < 0x100000) return sizeText(value * (1.0F / 1024.0F), "KB");
    if (bytes <= 0x3FFFFFFF) return sizeText(value * (1.0F / 1048576.0F), "MB");
    return sizeText(value * (1.0F / 1073741824.0F), "GB");
}

std::string UtilityFunction::formatValue(std::uint64_t value, std::int32_t baseNumber) {
    if (value == 0) return sizeText(0.0F, "KB");
    const auto whole = [value](std::uint64_t divisor) {
        return static_cast<float>(divisor == 0 ? 0 : value / divisor);
    };
    const auto base = static_cast<std::uint32_t>(baseNumber);
    const std::uint32_t square = base * base;
    if (value < square)
        return sizeText(whole(static_cast<std::uint64_t>(std::int64_t{baseNumber})), "KB");
    // The cube alone is taken as a signed number, so that one past 2^31 becomes a very large
    // divisor.
    const auto cube =
        static_cast<std::uint64_t>(std::int64_t{static_cast<std::int32_t>(base * square)});
    return value < cube ? sizeText(whole(square), "MB") : sizeText(whole(cube), "GB");
}

std::uint64_t UtilityFunction::getVolSpaceFromString(std::string_view text) {
    if (text.size() < 2) throw std::out_of_range("a size text has at least two bytes");
    const float number = readFloat(text.substr(0, text.size() - 2));
    if (text.ends_with("KB")) return wholeBytes(number * 1000.0F);
    if (text.ends_with("MB")) return wholeBytes(number * 1000000.0F);
    if (text.ends_with("GB")) return wholeBytes(number * 1000000000.0F);
    if (text.ends_with("TB"))
        return wholeBytes(number * 999999995904.0F);  // the float nearest to 10^12
    return 0;
}

float UtilityFunction::returnParserFromVolSpace(std::string_view text) {
    const std::string_view unit = readPiece(text, ' ', 1);
    const float number = readFloat(text);
    if (unit == "KB") return number / 1000.0F / 1000.0F;
    if (unit == "MB") return number / 1000.0F;
    if (unit == "GB") return number;
    if (unit == "T") return number * 1000.0F;
    return 0.0F;
}

std::string UtilityFunction::parseDateTime(std::string_view text) {
    const std::string_view time = readPiece(text, ' ', 1);
    const std::string_view date = readPiece(text, ' ', 0);
    return fmt::format("{}/{}/{} {}", readPiece(date, '-', 1), readPiece(date, '-', 2),
                       readPiece(date, '-', 0), time);
}

Rect UtilityFunction::returnRectOfWindcenterWithWidht(float width, float height) {
    const Workspace* const workspace = getMyFunction().m_workspace;
    const Rect screen = workspace ? workspace->mainScreenFrame().value_or(Rect{}) : Rect{};
    return {screen.width * 0.5 - static_cast<double>(width * 0.5F),
            screen.height * 0.5 - static_cast<double>(height * 0.5F), static_cast<double>(width),
            static_cast<double>(height)};
}

void UtilityFunction::callSelectNotificationForMainWindowLeft(std::int32_t row) {
    if (const NotificationCenter* const center = getMyFunction().m_center)
        notice::shouldSelectRow.post(*center, {{}, row});
}

bool UtilityFunction::isBelow1050SystemVer() {
    const System* const system = getMyFunction().m_system;
    return system && system->gestalt("sysv") < kFirstSupportedSystem;
}

}  // namespace orrinvale
