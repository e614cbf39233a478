// TCImageWindow puts these rectangles on the screen.
#include "ui/kit/chrome/frameGeometry.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>

namespace orrinvale {
namespace {

// The new start and length of one axis. `pullsLow` is the left or top edge, `pullsHigh` the right
// or bottom one.
struct Span {
    int start;
    int length;
};

Span pulledSpan(Span span, bool pullsLow, bool pullsHigh, int delta, int least, int most) {
    const int change = pullsLow ? -delta : pullsHigh ? delta : 0;
    const int length = std::max(least, std::min(most, span.length + change));
    if (!pullsLow && !pullsHigh) return span;
    return {pullsLow ? span.start + span.length - length : span.start, length};
}

std::int64_t area(const QRect& rect) {
    return rect.isEmpty() ? 0 : std::int64_t{rect.width()} * std::int64_t{rect.height()};
}

}  // namespace

QSize boundedSize(QSize size, QSize least, QSize most) {
    return size.boundedTo(most).expandedTo(least);
}

QRect pulledRect(const QRect& start, Qt::Edges edges, QPoint delta, QSize least, QSize most) {
    const Span across =
        pulledSpan({start.x(), start.width()}, edges.testFlag(Qt::LeftEdge),
                   edges.testFlag(Qt::RightEdge), delta.x(), least.width(), most.width());
    const Span down =
        pulledSpan({start.y(), start.height()}, edges.testFlag(Qt::TopEdge),
                   edges.testFlag(Qt::BottomEdge), delta.y(), least.height(), most.height());
    return {across.start, down.start, across.length, down.length};
}

QRect zoomedRect(const QRect& available, QSize least, QSize most) {
    QRect out(QPoint(), boundedSize(available.size(), least, most));
    out.moveCenter(available.center());
    // A window larger than the screen keeps its title bar in sight.
    out.moveTo(std::max(out.x(), available.x()), std::max(out.y(), available.y()));
    return out;
}

QRect rectInView(const QRect& frame, const QList<QRect>& screens, QSize least) {
    if (screens.isEmpty()) return frame;
    const auto shown = [&](const QRect& screen) { return area(screen.intersected(frame)); };
    const QRect screen =
        *std::max_element(screens.begin(), screens.end(),
                          [&](const QRect& a, const QRect& b) { return shown(a) < shown(b); });
    const QSize size = boundedSize(frame.size(), least, screen.size().expandedTo(least));
    const int x =
        std::max(screen.x(), std::min(frame.x(), screen.x() + screen.width() - size.width()));
    const int y =
        std::max(screen.y(), std::min(frame.y(), screen.y() + screen.height() - size.height()));
    return {QPoint(x, y), size};
}

std::string SavedFrame::text() const {
    return fmt::format("{} {} {} {} {}", frame.x(), frame.y(), frame.width(), frame.height(),
                       isZoomed ? 1 : 0);
}

std::optional<SavedFrame> SavedFrame::fromText(std::string_view text) {
    // Screens are nowhere near that far away; it keeps sums of positions and sizes within an int.
    constexpr int farthest = 1'000'000;
    std::array<int, 5> numbers{};
    const char* at = text.data();
    const char* const end = at + text.size();
    for (std::size_t i = 0; i < numbers.size(); ++i) {
        if (i != 0 && (at == end || *at++ != ' ')) return std::nullopt;
        const auto [next, error] = std::from_chars(at, end, numbers.at(i));
        if (error != std::errc() || numbers.at(i) > farthest || numbers.at(i) < -farthest)
            return std::nullopt;
        at = next;
    }
    const auto [x, y, width, height, zoomed] = numbers;
    if (at != end || width <= 0 || height <= 0 || zoomed < 0 || zoomed > 1) return std::nullopt;
    return SavedFrame{QRect(x, y, width, height), zoomed == 1};
}

}  // namespace orrinvale
