#include "line/LineCommand.h"

#include "config/APIConfigUpdater.h"
#include "config/CoinListUpdater.h"
#include "line/BarFormat.h"
#include "platform/Console.h"
#include "platform/Platform.h"
#include "platform/TextOutput.h"
#include "presenter/RefreshState.h"

namespace glintar::line {

namespace {

constexpr int kDone = 0;
constexpr int kNoQuotes = 1;
constexpr int kFailed = 1;

constexpr std::int64_t kLeftButton = 1;
constexpr std::int64_t kMiddleButton = 2;

int passedPercentage(platform::Platform& platform) {
    const auto& state = presenter::RefreshState::shared(platform);
    const platform::Seconds remaining = state.nextFetchTime - platform.runLoop.now();
    return static_cast<int>(std::clamp(100 * (1 - remaining / state.currentInterval), 0.0, 100.0));
}

TextStatusBar::Options barOptions(const app::Arguments& arguments, const platform::TextOutput& output,
                                  platform::Platform& platform) {
    return {.format = arguments.format,
            .isLive = output.isTerminal() && arguments.format == app::Format::Text && !arguments.once,
            .prefix = arguments.demo ? app::kSimulatedMark : "",
            .fields = arguments.fields,
            .coin = arguments.coin,
            .percentage = [&platform] { return passedPercentage(platform); }};
}

}  // namespace

LineCommand::LineCommand(platform::Platform& platform, platform::TextOutput& output, const app::Arguments& arguments,
                         Environment environment)
    : platform_(platform),
      once_(arguments.once),
      environment_(std::move(environment)),
      statusBar_(output, platform.localTime, barOptions(arguments, output, platform)),
      controller_(platform, statusBar_, {.displayMode = 0, .board = environment_.board}) {
    output.onClosed = [this](const std::string& failure) {
        if (failure.empty()) {
            interrupt();
        } else {
            platform_.console.print("⚠️ [Line] " + failure);
            environment_.finish(kFailed);
        }
    };
    if (arguments.once || arguments.demo) {
        // A single refresh is over before a new document could serve it, and the market that is simulated must not be
        // exchanged for the real one.
        config::APIConfigUpdater::shared(platform).skipCheck();
        config::CoinListUpdater::shared(platform).skipCheck();
    }
    if (once_) {
        statusBar_.onRefreshed = [this](bool hasQuotes) { environment_.finish(hasQuotes ? kDone : kNoQuotes); };
    }
}

void LineCommand::start() {
    statusBar_.start();
    if (once_) {
        controller_.refreshOnce();
    } else {
        controller_.start();
        config::CoinListUpdater::shared(platform_).checkForNewVersion();
    }
}

void LineCommand::onSignal(int number) {
    if (number == kStopSignal) {
        controller_.pause();
    } else if (number == kContSignal) {
        controller_.resume();
    } else if (!once_) {
        controller_.refreshForUser();
    }
}

void LineCommand::onInput(std::string_view line) {
    const auto button = clickedButton(line);
    if (button == kLeftButton) {
        environment_.openDashboard();
    } else if (button == kMiddleButton) {
        controller_.refreshForUser();
    }
}

void LineCommand::interrupt() {
    environment_.finish(once_ ? kNoQuotes : kDone);
}

}  // namespace glintar::line
