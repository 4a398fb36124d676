#include "line/CompareCommand.h"

#include "arbiter/ArbitrageService.h"
#include "config/APIConfigUpdater.h"
#include "config/Settings.h"
#include "market/CryptoService.h"
#include "platform/Console.h"
#include "platform/Machine.h"
#include "platform/Platform.h"
#include "platform/RunLoop.h"
#include "platform/TextOutput.h"
#include "text/Unicode.h"

#include <algorithm>
#include <utility>

namespace glintar::line {

CompareCommand::CompareCommand(platform::Platform& platform, platform::TextOutput& output,
                               const app::Arguments& arguments, std::function<void(int status)> finish)
    : platform_(platform), output_(output), arguments_(arguments), finish_(std::move(finish)) {
    output.onClosed = [this](const std::string& failure) {
        if (!failure.empty()) {
            platform_.console.print("⚠️ [Line] " + failure);
        }
        finish_(1);
    };
    config::APIConfigUpdater::shared(platform).skipCheck();  // it is over before a new document could serve it
}

void CompareCommand::start() {
    if (const auto& config = market::CryptoService::shared(platform_).loadedConfig()) {
        for (const auto& source : config->sources) {
            if (std::ranges::find(sources_, source.name) == sources_.end()) {
                sources_.push_back(source.name);
            }
        }
    }
    platform::DispatchGroup requests;
    coins_ = arbiter::ArbitrageService::shared(platform_).fetchArbitrageData(
        config::loadSavedCoins(platform_), {}, config::Settings::load(platform_.preferences).selectedSourceID,
        requests);
    if (output_.isTerminal() && arguments_.format == app::Format::Text) {
        for (const auto& row : coins_) {
            row->onChange = lifetime_.guard([this] { priceArrived(); });
        }
        output_.redrawLine(table());
    }
    requests.notify(platform_.runLoop, lifetime_.guard([this] { finished(); }));
}

void CompareCommand::interrupt() {
    finish_(1);
}

std::string CompareCommand::table() const {
    return compareText(sources_, coins_, arguments_.demo ? text::trimmed(app::kSimulatedMark) : "");
}

void CompareCommand::priceArrived() {
    if (std::exchange(isDrawn_, false)) {  // what arrives in one turn of the loop is drawn once
        platform_.runLoop.post(lifetime_.guard([this] {
            if (!std::exchange(isDrawn_, true)) {
                output_.redrawLine(table());
            }
        }));
    }
}

void CompareCommand::finished() {
    isDrawn_ = true;  // nothing is redrawn behind the whole table
    if (arguments_.format == app::Format::Json) {
        output_.printLine(compareJson(platform_.localTime.clockText(platform_.runLoop.wallNow()), coins_));
    } else {
        if (output_.isTerminal()) {
            output_.redrawLine("");
        }
        output_.printLine(table());
    }
    finish_(std::ranges::any_of(coins_, [](const auto& row) { return !row->prices.empty(); }) ? 0 : 1);
}

}  // namespace glintar::line
