#include "platform/terminal/TerminalPlatform.h"

namespace glintar::platform {

namespace {

// Joining quotes and waiting for a retry is all the background work there is.
constexpr std::size_t kWorkThreads = 1;

// Without a home directory preferences read as absent; a folder that cannot even be made holds them.
constexpr const char* kNowhere = "/dev/null";

}  // namespace

TerminalPlatform::TerminalPlatform(int& argc, char** argv, std::string configServer)
    : application_(argc, argv),
      termination_([this] {
          if (onTerminate) {
              onTerminate();
          }
      }),
      bundle_(std::move(configServer)),
      preferences_(XdgDirectories::configuration().value_or(kNowhere) / "glintar.conf", console_),
      workQueue_(runLoop_, kWorkThreads),
      platform_{runLoop_, workQueue_, http_,    preferences_, secrets_,   notifications_, directories_,
                bundle_,  files_,     console_, entropy_,     localTime_, registry_} {}

TerminalPlatform::~TerminalPlatform() = default;

int TerminalPlatform::exec() {
    return exitStatus_ ? *exitStatus_ : QCoreApplication::exec();
}

void TerminalPlatform::exit(int status) {
    if (!exitStatus_) {
        exitStatus_ = status;
        termination_.announceEnd();
        QCoreApplication::exit(status);
    }
}

}  // namespace glintar::platform
