// The line goes out by one write(2), so that lines of several threads and processes never mix.
#include "engine/base/Log.h"

#include <unistd.h>

#include <atomic>
#include <mutex>
#include <utility>

#include "engine/base/LogHush.h"

namespace orrinvale {
namespace {

std::atomic<bool> s_enabled{true};
thread_local unsigned s_hushed = 0;
std::atomic<bool> s_engineEnabled{true};

struct SinkHolder {
    std::mutex mutex;
    Log::Sink sink;  // guarded by mutex
};

SinkHolder& holder() {
    static SinkHolder* const instance =
        new SinkHolder;  // outlives every thread that may still log at exit
    return *instance;
}

void writeAll(std::string_view text) {
    while (!text.empty()) {
        const ssize_t count = ::write(STDERR_FILENO, text.data(), text.size());
        if (count <= 0) return;
        text.remove_prefix(static_cast<std::size_t>(count));
    }
}

}  // namespace

LogHush::LogHush() { ++s_hushed; }
LogHush::~LogHush() { --s_hushed; }

bool Log::isEnabled() { return s_enabled.load(std::memory_order_relaxed); }

void Log::setEnabled(bool enabled) { s_enabled.store(enabled, std::memory_order_relaxed); }

bool Log::isEngineEnabled() {
    return isEnabled() && s_engineEnabled.load(std::memory_order_relaxed);
}

void Log::setEngineEnabled(bool enabled) {
    s_engineEnabled.store(enabled, std::memory_order_relaxed);
}

void Log::setSink(Sink sink) {
    const std::lock_guard lock(holder().mutex);
    holder().sink = std::move(sink);
}

void Log::line(std::string_view text) {
    if (!isEnabled() || (s_hushed > 0 && !isEngineEnabled())) return;
    std::string out = escapeControls(text);
    const std::lock_guard lock(holder().mutex);
    if (holder().sink) {
        holder().sink(out);
        return;
    }
    out.push_back('\n');
    writeAll(out);
}

std::string escapeControls(std::string_view text) {
    std::string out;
    out.reserve(text.size() + 1);
    for (const char c : text) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '\\') out += "\\\\";
        else if (c == '\n') out += "\\n";
        else if (c == '\t') out += "\\t";
        else if (byte < 32 || byte == 127) out += fmt::format("\\x{:02x}", byte);
        else out.push_back(c);
    }
    return out;
}

}  // namespace orrinvale
