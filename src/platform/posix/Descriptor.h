#pragma once

#include <string_view>
#include <utility>

namespace glintar::platform {

/// An open file that is closed with its owner.
class Descriptor {
public:
    explicit Descriptor(int number = -1) : number_(number) {}
    Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
    Descriptor& operator=(Descriptor&& other) noexcept {
        std::swap(number_, other.number_);
        return *this;
    }
    ~Descriptor();

    [[nodiscard]] int number() const { return number_; }

private:
    int number_;
};

/// Writes everything. Returns the number of the error (errno), or 0. For places whose reader may have stopped reading:
/// once the descriptor `stop` can be read, it waits no longer and returns ECANCELED.
[[nodiscard]] int writeAll(int descriptor, std::string_view bytes, int stop = -1);

/// Writes to standard error as far as that is possible.
void complain(std::string_view text);

/// Opens /dev/null in place of those of the three standard streams that are closed, so that no other file takes their
/// numbers. First thing in main.
void reserveStandardStreams();

}  // namespace glintar::platform
