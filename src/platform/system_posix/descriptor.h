#pragma once

#include <unistd.h>

#include <cerrno>
#include <utility>

namespace tandolin::platform {

/// An open file, closed at the end of its scope.
class Descriptor {
public:
    Descriptor() = default;

    explicit Descriptor(int number) : number_(number) {}

    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}

    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }

    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    ~Descriptor() { close(); }

    [[nodiscard]] int get() const { return number_; }

    [[nodiscard]] bool isOpen() const { return number_ >= 0; }

    /// The file now belongs to somebody else.
    int release() { return std::exchange(number_, -1); }

    /// False when the system tells of a failure (a network file system may tell only now).
    /// The number is gone even then, so an interrupted close is never repeated.
    bool close() {
        const int number = std::exchange(number_, -1);
        return number < 0 || ::close(number) == 0 || errno == EINTR;
    }

private:
    int number_ = -1;
};

/// Repeats a system call that a signal interrupted.
template <class Call>
auto uninterrupted(Call&& call) {
    for (;;) {
        const auto result = call();
        if (result >= 0 || errno != EINTR) {
            return result;
        }
    }
}

} // namespace tandolin::platform
