#pragma once

#include "platform/RunLoop.h"
#include "settings/APISettingsViewModel.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace glintar::platform {
class LoginItem;
struct Platform;
class TextOutput;
}  // namespace glintar::platform

namespace glintar::line {

/// `glintar coins`, `source` and `display`: the settings, from a terminal or a script, through the models of their
/// window. Results go to the output, errors to the console. Main thread only.
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
    /// usage. A key is waited for until the key ring has taken or refused it.
    void start(std::span<const std::string_view> words);

private:
    struct Request;
    [[nodiscard]] int run(const Request& request);
    [[nodiscard]] int listCoins(bool isJson);
    [[nodiscard]] int searchCoins(const std::string& text, bool isJson);
    [[nodiscard]] int addCoin(const std::string& text, const std::string& price);
    [[nodiscard]] int removeCoin(const std::string& id);
    [[nodiscard]] int listSources(bool isJson);
    [[nodiscard]] int useSource(const std::string& id);
    void setKey(const std::string& id);
    void finishKey(const std::string& id, const std::string& key);
    [[nodiscard]] int listDisplay(bool isJson);
    [[nodiscard]] int setDisplay(std::string_view name, std::string_view value);

    int complain(const std::string& text, int status);

    Machine machine_;
    std::optional<settings::APISettingsViewModel> sources_;
    platform::TimerHandle keyTimer_;
};

}  // namespace glintar::line
