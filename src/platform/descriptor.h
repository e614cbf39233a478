// An owned file descriptor. Read platform/files.h next.
#pragma once

#include <unistd.h>

#include <utility>

namespace orrinvale {

/// Owns one descriptor and closes it; -1 owns nothing. Movable, not copyable.
class Descriptor final {
public:
    Descriptor() = default;
    explicit Descriptor(int number) : m_number(number) {}
    Descriptor(Descriptor&& other) noexcept : m_number(std::exchange(other.m_number, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        if (this != &other) {
            reset();
            m_number = std::exchange(other.m_number, -1);
        }
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { reset(); }

    [[nodiscard]] int get() const { return m_number; }
    [[nodiscard]] bool isOpen() const { return m_number >= 0; }
    [[nodiscard]] int release() { return std::exchange(m_number, -1); }
    void reset() {
        if (m_number >= 0) ::close(m_number);
        m_number = -1;
    }

private:
    int m_number = -1;
};

}  // namespace orrinvale
