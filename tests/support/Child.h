#pragma once

#include <sys/types.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

namespace glintar::test {

/// Starts a program, which finds `files` (ours, and its own number) beside /dev/null, or its standard output on the
/// terminal of that name, in the foreground of which it is then. Throws `std::runtime_error` where it cannot be run.
pid_t spawn(const std::vector<std::string>& command, const std::vector<std::pair<int, int>>& files,
            const char* terminal = nullptr);

/// Another program, which is killed with its owner and with the test. What it prints is dropped.
class Child {
public:
    Child() = default;
    /// The program finds `pipe` as its descriptor 3.
    explicit Child(const std::vector<std::string>& command, int pipe = -1);
    Child(Child&& other) noexcept : id_(std::exchange(other.id_, -1)) {}
    Child& operator=(Child&& other) noexcept {
        std::swap(id_, other.id_);
        return *this;
    }
    ~Child() { stop(); }

    void stop();
    void signal(int number) const;
    void terminate();  ///< lets it clear up behind itself first, for some seconds
    [[nodiscard]] pid_t id() const { return id_; }

private:
    pid_t id_ = -1;
};

/// Starts a program that tells a word of its own through descriptor 3 once it is up. Throws `std::runtime_error` where
/// it does not.
std::pair<Child, std::string> startTelling(const std::vector<std::string>& command);

/// Runs a program to its end; what it wrote to its standard output.
std::string outputOf(const std::vector<std::string>& command);

/// Whether the condition comes true within some seconds. `meanwhile` runs between two looks, and should wait a moment.
[[nodiscard]] bool eventually(const std::function<bool()>& condition, const std::function<void()>& meanwhile = {});

}  // namespace glintar::test
