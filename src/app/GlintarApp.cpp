#include "app/GlintarApp.h"

#include "app/Deployment.h"
#include "app/Start.h"
#include "arbiter/DashboardView.h"
#include "diagnostics/NetworkDiagnosticView.h"
#include "platform/qt/DesktopPlatform.h"
#include "settings/settingsView.h"

#include <utility>

namespace glintar::app {

namespace {

constexpr const char* kIdentifier = "org.glintar.Glintar";
constexpr const char* kDemoIdentifier = "org.glintar.Glintar.Demo";

settings::Contacts contacts() {
    auto decided = deployment();
    return {.support = std::move(decided.supportAddress),
            .website = std::move(decided.website),
            .faqPage = std::move(decided.faqPage)};
}

AppDelegate::Views views(platform::Platform& platform, platform::Desktop& desktop) {
    return {
        .dashboard = [&](auto& model) { return arbiter::makeDashboardView(platform, desktop, model); },
        .diagnostics = [&](auto& model) { return diagnostics::makeNetworkDiagnosticView(platform, desktop, model); },
        .settings = [&](auto& model) { return settings::makeSettingsView(model, desktop.graphics); }};
}

}  // namespace

GlintarApp::GlintarApp(platform::DesktopPlatform& machine, const Arguments& arguments)
    : machine_(machine),
      opens_(arguments.opens),
      instance_(arguments.demo ? kDemoIdentifier : kIdentifier),
      board_(noticeboard(arguments)),
      _appDelegate(machine.platform(), machine.desktop(),
                   {.isDemo = arguments.demo,
                    .opensSettings = arguments.opens == Opens::Settings,
                    .mark = arguments.demo ? kSimulatedMark : "",
                    .contacts = contacts(),
                    .releaseFeed = deployment().releaseFeed,
                    .views = views(machine.platform(), machine.desktop()),
                    .terminate = [&machine] { machine.exit(0); },
                    .board = board_.get()}),
      refreshes_([this](int) { _appDelegate.refresh(); }) {
    machine.onTerminate([&machine] { machine.exit(0); });
    instance_.onSecondStart = [this](Opens opens) { _appDelegate.applicationWasReopened(opens); };
}

int GlintarApp::run() {
    if (opens_ == Opens::Dashboard) {
        instance_.ask(opens_);
        return 0;
    }
    if (!instance_.claim(opens_)) {
        return 0;
    }
    machine_.watch();
    machine_.platform().runLoop.post([this] { _appDelegate.applicationDidFinishLaunching(); });
    return machine_.exec();
}

}  // namespace glintar::app
