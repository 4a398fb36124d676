#include "app/AppDelegate.h"

#include "config/APIConfigUpdater.h"
#include "config/CoinListUpdater.h"
#include "platform/Console.h"
#include "platform/Platform.h"

#include <utility>

namespace glintar::app {

namespace {

constexpr std::chrono::milliseconds kTimeToPaint{20};

}  // namespace

AppDelegate::AppDelegate(platform::Platform& platform, platform::Desktop& desktop, Options options)
    : platform_(platform), desktop_(desktop), options_(std::move(options)), settingsWatch_(platform) {
    if (!options_.checksForDocuments) {
        config::APIConfigUpdater::shared(platform_).skipCheck();
        config::CoinListUpdater::shared(platform_).skipCheck();
    }
}

void AppDelegate::applicationDidFinishLaunching() {
    surface_.emplace(
        platform_, desktop_,
        DesktopSurface::Requests{.redisplay = [this] { redisplay(); }, .menu = {.quitApp = [this] { quitApp(); }}},
        options_.mark);
    statusBarController_.emplace(platform_, *surface_, presenter::StatusBarController::Options{});
    statusBarController_->show();
    // The first look for an API key loads the key ring's code and waits for it: "Loading..." is painted before that.
    start_ = platform_.runLoop.after(kTimeToPaint, [this] {
        statusBarController_->start();
        config::CoinListUpdater::shared(platform_).checkForNewVersion();
    });
}

void AppDelegate::applicationWasReopened() {
    if (surface_) {
        surface_->openMenu();
    }
}

void AppDelegate::redisplay() {
    if (statusBarController_) {
        statusBarController_->redisplayFromCache();
    }
}

void AppDelegate::quitApp() {
    platform_.console.log({"Quit App clicked"});
    options_.terminate();
}

}  // namespace glintar::app
