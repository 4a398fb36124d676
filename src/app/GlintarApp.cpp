#include "app/GlintarApp.h"

#include "app/Arguments.h"
#include "platform/qt/DesktopPlatform.h"

namespace glintar::app {

namespace {

constexpr const char* kIdentifier = "org.glintar.Glintar";
constexpr const char* kDemoIdentifier = "org.glintar.Glintar.Demo";

}  // namespace

GlintarApp::GlintarApp(platform::DesktopPlatform& machine, const Arguments& arguments)
    : machine_(machine),
      instance_(arguments.demo ? kDemoIdentifier : kIdentifier),
      _appDelegate(machine.platform(), machine.desktop(),
                   {.checksForDocuments = !arguments.demo,
                    .mark = arguments.demo ? kSimulatedMark : "",
                    .terminate = [&machine] { machine.exit(0); }}) {
    machine.onTerminate([&machine] { machine.exit(0); });
    instance_.onSecondStart = [this] { _appDelegate.applicationWasReopened(); };
}

int GlintarApp::run() {
    if (!instance_.claim()) {
        return 0;
    }
    machine_.watch();
    machine_.platform().runLoop.post([this] { _appDelegate.applicationDidFinishLaunching(); });
    return machine_.exec();
}

}  // namespace glintar::app
