#pragma once

#include <sys/types.h>

#include <chrono>
#include <functional>
#include <map>
#include <optional>
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

using Environment = std::map<std::string, std::optional<std::string>>;  ///< none: the variable is removed

/// The real program, started as a user would, with its output in pipes or on a terminal of its own.
class Program {
public:
    enum class Output {
        Pipe,
        FullPipe,    ///< one that nobody has read from for long
        FullErrors,  ///< that for standard error, and a pipe
        Terminal     ///< which the program is in the foreground of
    };

    Program(const std::vector<std::string>& command, const Environment& environment, Output output = Output::Pipe);
    Program(const Program&) = delete;
    Program& operator=(const Program&) = delete;
    ~Program();  // ends it the hard way when it is still there

    /// Reads until the standard output holds the text; false when that takes too long or the program ends before.
    [[nodiscard]] bool waitForOutput(const std::string& text) { return waitFor(output_, text); }
    [[nodiscard]] bool waitForErrors(const std::string& text) { return waitFor(errors_, text); }

    /// Waits for the end: the exit status, or none when it was killed by a signal or takes longer than 15 seconds.
    [[nodiscard]] std::optional<int> wait();
    [[nodiscard]] std::optional<int> waitUnread();  ///< the same, while nobody reads what it writes

    void signal(int number);
    void type(const std::string& keys) const;  ///< on the terminal
    void stopTerminal() const;                 ///< as Ctrl-S does
    void closeOutput();                        ///< as a reader that goes away

    [[nodiscard]] bool isRunning();
    [[nodiscard]] pid_t id() const { return child_; }
    [[nodiscard]] const std::string& output() const { return output_; }
    [[nodiscard]] const std::string& errors() const { return errors_; }

private:
    bool waitFor(const std::string& where, const std::string& text);
    bool readSome(std::chrono::milliseconds wait);
    [[nodiscard]] std::optional<int> exitStatus() const;

    pid_t child_ = -1;
    int outputFd_ = -1;
    int errorFd_ = -1;
    std::string output_;
    std::string errors_;
    std::optional<int> status_;  ///< as waitpid tells it
};

}  // namespace glintar::test
