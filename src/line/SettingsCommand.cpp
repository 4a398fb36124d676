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
#include <vector>

namespace glintar::line {

namespace {

using namespace std::chrono_literals;
using settings::coinsSettingsViewModel;

constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;
constexpr auto kBetweenLooks = 20ms;  // at the key ring, which may be asking the user for its password

/// What can be asked for, in the words of the command line: subject, verb, how many arguments, whether it prints.
struct Form {
    std::string_view subject;
    std::string_view verb;
    std::size_t arguments;
    bool prints;
};
constexpr std::array<Form, 9> kForms{{{"coins", "list", 0, true},
                                      {"coins", "search", 1, true},
                                      {"coins", "add", 1, false},
                                      {"coins", "remove", 1, false},
                                      {"source", "list", 0, true},
                                      {"source", "use", 1, false},
                                      {"source", "key", 1, false},
                                      {"display", "list", 0, true},
                                      {"display", "set", 2, false}}};

}  // namespace

struct SettingsCommand::Request {
    std::string name;  ///< subject and verb
    std::vector<std::string> arguments;
    std::string price;
    bool isJson = false;

    static std::expected<Request, std::string> parse(std::span<const std::string_view> words);
};

std::expected<SettingsCommand::Request, std::string> SettingsCommand::Request::parse(
    std::span<const std::string_view> words) {
    const auto verb = words.size() < 2 ? std::string_view() : words[1];
    const auto* const form = std::ranges::find_if(
        kForms, [&](const Form& known) { return known.subject == words.front() && known.verb == verb; });
    if (form == kForms.end()) {
        return std::unexpected(fmt::format("there is no command \"{} {}\"", words.front(), text::oneLine(verb)));
    }
    Request request{.name = fmt::format("{} {}", form->subject, form->verb)};
    for (std::size_t i = 2; i < words.size(); ++i) {
        const bool hasNext = i + 1 < words.size();
        if (words[i] == "--format" && form->prints && hasNext && (words[i + 1] == "json" || words[i + 1] == "text")) {
            request.isJson = words[++i] == "json";
        } else if (words[i] == "--ref" && form->verb == "add" && hasNext) {
            request.price = words[++i];
        } else if (words[i].starts_with("--")) {
            return std::unexpected(fmt::format("\"{}\" does not take \"{}\"", request.name, text::oneLine(words[i])));
        } else {
            request.arguments.emplace_back(words[i]);
        }
    }
    if (request.arguments.size() != form->arguments) {
        return std::unexpected(fmt::format("\"{}\" wants {} words after it", request.name, form->arguments));
    }
    const auto number = text::parseDecimal(request.price);
    if (!request.price.empty() && (!number || *number < 0)) {
        return std::unexpected(fmt::format("\"{}\" is no price", text::oneLine(request.price)));
    }
    return request;
}

void SettingsCommand::start(std::span<const std::string_view> words) {
    const auto request = Request::parse(words);
    if (!request) {
        machine_.finish(complain(request.error() + "\nTry \"glintar --help\".", kWrongUsage));
    } else if (request->name == "source key") {
        setKey(request->arguments[0]);
    } else {
        machine_.finish(run(*request));
    }
}

int SettingsCommand::run(const Request& request) {
    const auto& [name, words, price, isJson] = request;
    if (name == "coins list") {
        return listCoins(isJson);
    }
    if (name == "coins search") {
        return searchCoins(words[0], isJson);
    }
    if (name == "coins add") {
        return addCoin(words[0], price);
    }
    if (name == "coins remove") {
        return removeCoin(words[0]);
    }
    if (name == "source list") {
        return listSources(isJson);
    }
    if (name == "source use") {
        return useSource(words[0]);
    }
    return name == "display list" ? listDisplay(isJson) : setDisplay(words[0], words[1]);
}

int SettingsCommand::listCoins(bool isJson) {
    coinsSettingsViewModel model(machine_.platform);
    model.loadCoins();
    if (isJson) {
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

int SettingsCommand::searchCoins(const std::string& text, bool isJson) {
    coinsSettingsViewModel model(machine_.platform);
    model.setName(text);
    json::Writer writer;
    writer.beginArray();
    for (const auto& suggestion : model.filteredCoins) {
        if (isJson) {
            writer.string(suggestion);
        } else {
            machine_.output.printLine(text::oneLine(suggestion));
        }
    }
    if (isJson) {
        machine_.output.printLine(writer.endArray().text());
    }
    return kDone;
}

int SettingsCommand::addCoin(const std::string& text, const std::string& price) {
    coinsSettingsViewModel model(machine_.platform);
    model.loadCoins();
    if (!model.canAddCoin) {
        return complain(model.limitText(), kFailed);
    }
    model.newCoinDisplayName = text;
    model.newCoinRefPrice = price;
    model.addCoin();
    return model.isSaved ? kDone : complain(model.errorMessage.value_or("Nothing was added."), kFailed);
}

int SettingsCommand::removeCoin(const std::string& id) {
    coinsSettingsViewModel model(machine_.platform);
    model.loadCoins();
    const auto found = std::ranges::find(model.coins, id, &config::Coin::apiId);
    if (found == model.coins.end()) {
        return complain("This crypto coin is not on the list.", kFailed);
    }
    model.removeCoins({static_cast<std::size_t>(found - model.coins.begin())});
    return model.isSaved ? kDone : complain(*model.errorMessage, kFailed);
}

int SettingsCommand::listSources(bool isJson) {
    const settings::APISettingsViewModel model(machine_.platform);
    if (!model.config) {
        return complain("There is no source configuration.", kFailed);
    }
    json::Writer writer;
    writer.beginArray();
    for (const auto& source : model.config->sources) {
        const bool isSelected = source.id == model.selectedSourceID;
        if (isJson) {
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
    if (isJson) {
        machine_.output.printLine(writer.endArray().text());
    }
    return kDone;
}

int SettingsCommand::useSource(const std::string& id) {
    settings::APISettingsViewModel model(machine_.platform);
    const auto* const source = model.config ? model.config->source(id) : nullptr;
    if (source == nullptr) {
        return complain(fmt::format("There is no data source \"{}\".", text::oneLine(id)), kFailed);
    }
    model.selectSource(*source);
    const auto note = model.sourceNote();
    return note.empty() ? kDone : complain(note, kFailed);
}

void SettingsCommand::setKey(const std::string& id) {
    sources_.emplace(machine_.platform);
    if (!sources_->config || sources_->config->source(id) == nullptr) {
        return machine_.finish(complain(fmt::format("There is no data source \"{}\".", text::oneLine(id)), kFailed));
    }
    const auto key = machine_.readKey();
    if (!key) {
        return machine_.finish(kFailed);
    }
    if (!key->empty() && !keystore::KeychainHelper::canBeSent(*key)) {
        complain(settings::kCannotBeSent, kDone);
    }
    const auto status = sources_->storeKey(id, *key);
    if (status != platform::SecretStatus::Done && status != platform::SecretStatus::NotFound) {
        return machine_.finish(complain(settings::APISettingsViewModel::noteOf(status, true), kFailed));
    }
    keyTimer_ = machine_.platform.runLoop.every(kBetweenLooks, [this, id, key = *key] { finishKey(id, key); });
}

void SettingsCommand::finishKey(const std::string& id, const std::string& key) {
    using platform::SecretStatus;
    const keystore::KeychainHelper keys(machine_.platform);
    auto now = keys.peek(keystore::KeychainHelper::keyNameOf(id));
    if (machine_.platform.secrets.isWriting() || now.status == SecretStatus::Pending) {
        return;
    }
    if (now.status == SecretStatus::Done && now.bytes != key) {
        now.status = SecretStatus::Failed;
    }
    const auto note = settings::APISettingsViewModel::noteOf(now.status, !key.empty());
    const auto finish = machine_.finish;
    const int status = note.empty() ? kDone : complain(note, kFailed);
    keyTimer_.reset();  // and with it id and key
    finish(status);
}

int SettingsCommand::complain(const std::string& text, int status) {
    machine_.platform.console.print("glintar: " + text);
    return status;
}

}  // namespace glintar::line
