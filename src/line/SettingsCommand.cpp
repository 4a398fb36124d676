#include "line/SettingsCommand.h"

#include "json/JsonWriter.h"
#include "platform/Console.h"
#include "platform/Platform.h"
#include "platform/Preferences.h"
#include "platform/SecretStore.h"
#include "platform/TextOutput.h"
#include "settings/coinsSettingsViewModel.h"
#include "text/Number.h"
#include "text/Unicode.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <expected>
#include <optional>
#include <vector>

namespace glintar::line {

namespace {

using namespace std::chrono_literals;
using platform::SecretStatus;
using settings::coinsSettingsViewModel;

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;
constexpr auto kBetweenLooks = 20ms;  // at the key ring, which may be asking the user for its password

constexpr auto kPatience = 1s;  // before it is said what is waited for
constexpr auto kLongestWait = 30s;

constexpr std::array<std::string_view, 3> kCounts{"no word", "one word", "two words"};

/// The value of the option at `at`, which then stands at its last word; none when it is another option, or lacks one.
std::optional<std::string_view> valueOf(std::string_view option, std::span<const std::string_view> words,
                                        std::size_t& at) {
    const auto word = words[at];
    if (word.starts_with(option) && word.substr(option.size()).starts_with('=')) {
        return word.substr(option.size() + 1);
    }
    return word == option && at + 1 < words.size() ? std::optional(words[++at]) : std::nullopt;
}

}  // namespace

/// What can be asked for, in the words of the command line.
struct SettingsCommand::Form {
    std::string_view subject;
    std::string_view verb;
    std::size_t words;  ///< how many follow it
    bool prints;
    std::optional<int> (SettingsCommand::*run)(const Request&);  ///< the status; none when it ends later

    static const std::array<Form, 9> kAll;
    static std::expected<const Form*, std::string> find(std::span<const std::string_view> words);
    [[nodiscard]] std::expected<Request, std::string> parse(std::span<const std::string_view> following) const;
};

const std::array<SettingsCommand::Form, 9> SettingsCommand::Form::kAll{
    {{"coins", "list", 0, true, &SettingsCommand::listCoins},
     {"coins", "search", 1, true, &SettingsCommand::searchCoins},
     {"coins", "add", 1, false, &SettingsCommand::addCoin},
     {"coins", "remove", 1, false, &SettingsCommand::removeCoin},
     {"source", "list", 0, true, &SettingsCommand::listSources},
     {"source", "use", 1, false, &SettingsCommand::useSource},
     {"source", "key", 1, false, &SettingsCommand::setKey},
     {"display", "list", 0, true, &SettingsCommand::listDisplay},
     {"display", "set", 2, false, &SettingsCommand::setDisplay}}};

std::expected<const SettingsCommand::Form*, std::string> SettingsCommand::Form::find(
    std::span<const std::string_view> words) {
    const auto subject = words.front();
    std::string verbs;
    for (const auto& form : kAll) {
        if (form.subject != subject) {
            continue;
        }
        if (words.size() > 1 && form.verb == words[1]) {
            return &form;
        }
        verbs += fmt::format("{}{}", verbs.empty() ? "" : ", ", form.verb);
    }
    return std::unexpected(words.size() < 2 ? fmt::format("\"{}\" wants one of these after it: {}", subject, verbs)
                                            : fmt::format("there is no command \"{} {}\"; there are {}", subject,
                                                          text::oneLine(words[1]), verbs));
}

std::expected<SettingsCommand::Request, std::string> SettingsCommand::Form::parse(
    std::span<const std::string_view> following) const {
    Request request;
    bool hasOptions = true;
    for (std::size_t i = 0; i < following.size(); ++i) {
        const auto word = following[i];
        if (!hasOptions || !word.starts_with("--")) {
            request.words.emplace_back(word);
        } else if (word == "--") {
            hasOptions = false;
        } else if (const auto format = prints ? valueOf("--format", following, i) : std::nullopt) {
            request.isJson = *format == "json";
            if (!request.isJson && format != "text") {
                return std::unexpected(
                    fmt::format("there is no format \"{}\"; there are text and json", text::oneLine(*format)));
            }
        } else if (const auto price = verb == "add" ? valueOf("--ref", following, i) : std::nullopt) {
            request.price = *price;
            if (!text::parseDecimal(*price) || price->find_first_not_of("0123456789.") != std::string_view::npos) {
                return std::unexpected(fmt::format("\"{}\" is no price", text::oneLine(*price)));
            }
        } else if ((prints && word == "--format") || (verb == "add" && word == "--ref")) {
            return std::unexpected(prints ? "--format wants a format: text or json" : "--ref wants a price");
        } else {
            return std::unexpected(fmt::format("\"{} {}\" does not take \"{}\"", subject, verb, text::oneLine(word)));
        }
    }
    if (request.words.size() != words) {
        return std::unexpected(
            fmt::format("\"{} {}\" {} {} after it", subject, verb, words == 0 ? "takes" : "wants", kCounts.at(words)));
    }
    return request;
}

void SettingsCommand::start(std::span<const std::string_view> words) {
    const auto form = Form::find(words);
    const auto request = form ? (*form)->parse(words.subspan(2)) : std::unexpected(form.error());
    if (!request) {
        machine_.finish(complain(request.error() + "\nTry \"glintar --help\".", kWrongUsage));
    } else if (const auto status = (this->*(*form)->run)(*request)) {
        machine_.finish(*status);
    }
}

std::optional<int> SettingsCommand::listCoins(const Request& request) {
    coinsSettingsViewModel model(machine_.platform);
    model.loadCoins();
    if (request.isJson) {
        machine_.output.printLine(config::encodeCoins(model.coins));
        return kDone;
    }
    for (const auto& coin : model.coins) {
        const auto badge = coinsSettingsViewModel::badgeText(coin);
        machine_.output.printLine(
            text::oneLine(coinsSettingsViewModel::rowText(coin) + (badge ? "  " + *badge : std::string())));
    }
    return kDone;
}

std::optional<int> SettingsCommand::searchCoins(const Request& request) {
    coinsSettingsViewModel model(machine_.platform);
    model.setName(request.words[0]);
    json::Writer writer;
    writer.beginArray();
    for (const auto& suggestion : model.filteredCoins) {
        if (request.isJson) {
            writer.string(suggestion);
        } else {
            machine_.output.printLine(text::oneLine(suggestion));
        }
    }
    if (request.isJson) {
        machine_.output.printLine(writer.endArray().text());
    }
    return kDone;
}

std::optional<int> SettingsCommand::addCoin(const Request& request) {
    coinsSettingsViewModel model(machine_.platform);
    model.loadCoins();
    if (!model.canAddCoin) {
        return complain(model.limitText(), kFailed);
    }
    model.newCoinDisplayName = request.words[0];
    model.newCoinRefPrice = request.price;
    model.addCoin();
    return model.isSaved ? kDone : complain(model.errorMessage.value_or("Nothing was added."), kFailed);
}

std::optional<int> SettingsCommand::removeCoin(const Request& request) {
    coinsSettingsViewModel model(machine_.platform);
    model.loadCoins();
    const auto found = std::ranges::find(model.coins, request.words[0], &config::Coin::apiId);
    if (found == model.coins.end()) {
        return complain("This crypto coin is not on the list.", kFailed);
    }
    model.removeCoins({static_cast<std::size_t>(found - model.coins.begin())});
    return model.isSaved ? kDone : complain(*model.errorMessage, kFailed);
}

std::optional<int> SettingsCommand::listSources(const Request& request) {
    const settings::APISettingsViewModel model(machine_.platform);
    if (!model.config) {
        return complain("There is no source configuration.", kFailed);
    }
    json::Writer writer;
    writer.beginArray();
    for (const auto& source : model.config->sources) {
        const bool isSelected = source.id == model.selectedSourceID;
        if (request.isJson) {
            writer.beginObject().key("id").string(source.id).key("name").string(source.name);
            writer.key("selected")
                .boolean(isSelected)
                .key("takesKey")
                .boolean(source.api_key_available.value_or(false));
            writer.endObject();
        } else {
            machine_.output.printLine(
                text::oneLine(fmt::format("{} {}  {}", isSelected ? '*' : ' ', source.id, source.name)));
        }
    }
    if (request.isJson) {
        machine_.output.printLine(writer.endArray().text());
    }
    return kDone;
}

std::optional<int> SettingsCommand::useSource(const Request& request) {
    const auto& id = request.words[0];
    settings::APISettingsViewModel model(machine_.platform);
    const auto* const source = model.config ? model.config->source(id) : nullptr;
    if (source == nullptr) {
        return complain(fmt::format("There is no data source \"{}\".", text::oneLine(id)), kFailed);
    }
    model.selectSource(*source);
    const auto note = model.sourceNote();
    return note.empty() ? kDone : complain(note, kFailed);
}

std::optional<int> SettingsCommand::setKey(const Request& request) {
    const auto& id = request.words[0];
    sources_.emplace(machine_.platform);
    if (!sources_->config || sources_->config->source(id) == nullptr) {
        return complain(fmt::format("There is no data source \"{}\".", text::oneLine(id)), kFailed);
    }
    const auto key = machine_.readKey();
    if (!key) {
        return kFailed;
    }
    if (!key->empty() && !keystore::KeychainHelper::canBeSent(*key)) {
        complain(settings::kCannotBeSent, kDone);
    }
    const auto status = sources_->storeKey(id, *key);
    if (status != SecretStatus::Done && status != SecretStatus::NotFound) {
        return complain(settings::APISettingsViewModel::noteOf(status, key), kFailed);
    }
    keyTimer_ = machine_.platform.runLoop.every(kBetweenLooks, [this, id, key = *key] { finishKey(id, key); });
    patience_ = machine_.platform.runLoop.after(
        kPatience, [this] { complain(settings::APISettingsViewModel::noteOf(SecretStatus::Pending, {}), kDone); });
    longestWait_ = machine_.platform.runLoop.after(kLongestWait, [this] {
        keyTimer_.reset();
        machine_.finish(complain("The key ring did not answer.", kFailed));
    });
    return std::nullopt;
}

void SettingsCommand::finishKey(const std::string& id, const std::string& key) {
    const keystore::KeychainHelper keys(machine_.platform);
    auto now = keys.peek(keystore::KeychainHelper::keyNameOf(id));
    if (machine_.platform.secrets.isWriting() || now.status == SecretStatus::Pending) {
        return;
    }
    if (now.status == SecretStatus::Done && now.bytes != key) {
        now.status = SecretStatus::Failed;
    }
    const auto note = settings::APISettingsViewModel::noteOf(now.status, key);
    const auto finish = machine_.finish;
    const int status = note.empty() ? kDone : complain(note, kFailed);
    patience_.reset();
    longestWait_.reset();
    keyTimer_.reset();  // and with it id and key
    finish(status);
}

int SettingsCommand::complain(const std::string& text, int status) {
    machine_.platform.console.print("glintar: " + text);
    return status;
}

}  // namespace glintar::line
