#pragma once

#include "platform/RunLoop.h"
#include "settings/APISettingsViewModel.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace glintar::platform {
class LoginItem;
struct Platform;
class TextOutput;
}  // namespace glintar::platform

namespace glintar::line {

/// `glintar coins`, `source` and `display`: the settings, from a terminal or a script, through the models of their
/// window. What was asked for goes to the output, what went wrong to the console. Main thread only.
class SettingsCommand {
public:
    struct Machine {
        platform::Platform& platform;
        platform::LoginItem& loginItem;
        platform::TextOutput& output;
        std::function<std::optional<std::string>()> readKey;  ///< none when the user gave up
        std::function<void(int status)> finish;               ///< once; may run before `start` returns
    };

    explicit SettingsCommand(Machine machine) : machine_(std::move(machine)) {}

    /// `words` are the command and what follows it. Ends with 0, with 1 for what cannot be done, or with 2 for wrong
    /// usage. A key is waited for until the key ring has taken or refused it, 30 s at most.
    void start(std::span<const std::string_view> words);

private:
    struct Request {
        std::vector<std::string> words;
        std::string price;
        bool isJson = false;
    };
    struct Form;
    // Each the status, or none when it ends later.
    [[nodiscard]] std::optional<int> listCoins(const Request& request);
    [[nodiscard]] std::optional<int> searchCoins(const Request& request);
    [[nodiscard]] std::optional<int> addCoin(const Request& request);
    [[nodiscard]] std::optional<int> removeCoin(const Request& request);
    [[nodiscard]] std::optional<int> listSources(const Request& request);
    [[nodiscard]] std::optional<int> useSource(const Request& request);
    [[nodiscard]] std::optional<int> setKey(const Request& request);
    [[nodiscard]] std::optional<int> listDisplay(const Request& request);
    [[nodiscard]] std::optional<int> setDisplay(const Request& request);
    void finishKey(const std::string& id, const std::string& key);

    int complain(const std::string& text, int status);

    Machine machine_;
    std::optional<settings::APISettingsViewModel> sources_;
    platform::TimerHandle keyTimer_, patience_, longestWait_;
};

}  // namespace glintar::line
