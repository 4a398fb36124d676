#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace glintar::bench {

/// One line of the table: what was measured, beside its floor in the same run.
struct Row {
    std::string name;
    double ours = 0;
    double floor = 0;
    std::optional<double> goal;  ///< the most that `ours / floor` may be; with no floor, the most that `ours` may be
    std::string unit;
    std::string floorName;
};

void printHeader();
void printRow(const Row& row);

[[nodiscard]] double median(std::vector<double> values);

/// Processor time of this process so far, in seconds.
double processorSeconds();

/// Processor time of each of two pieces of work, in seconds a round: medians over rounds in which they take turns, so
/// that a noisy machine is noisy for both.
struct Pair {
    double ours = 0;
    double floor = 0;
};
Pair compare(int rounds, const std::function<void()>& ours, const std::function<void()>& floor);

/// Processor time (user and system, children included) of a whole command; -1 when it fails. Its output is dropped.
double commandSeconds(const std::vector<std::string>& command);

/// As `compare`, for commands that take turns. Ends the program when one of them fails.
std::vector<double> compareCommands(int rounds, const std::vector<std::vector<std::string>>& commands);

/// Instructions of a whole command, its start included, as callgrind counts them; they are the same in every run.
double instructionsOf(const std::string& setting, std::vector<std::string> command);

/// Memory that `work` keeps and needed at its peak, in bytes over what there was before, as far as it comes from `new`.
struct Memory {
    double kept = 0;
    double peak = 0;
};
Memory memoryOf(const std::function<std::shared_ptr<void>()>& work);

}  // namespace glintar::bench
