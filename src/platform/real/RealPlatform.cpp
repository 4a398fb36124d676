#include "platform/real/RealPlatform.h"

#include <QCoreApplication>

namespace glintar::platform {

namespace {

// One long-lived thread draws pills, reads icons, joins quotes and waits for retries: fonts are cached a thread, and a
// pill takes microseconds.
constexpr std::size_t kWorkThreads = 1;

// Without a home directory preferences read as absent; a folder that cannot even be made holds them.
constexpr const char* kNowhere = "/dev/null";

}  // namespace

RealPlatform::RealPlatform(const Options& options)
    : bundle_(options.configServer, options.replacements),
      preferences_(XdgDirectories::configuration().value_or(kNowhere) / "glintar.conf", screen_),
      workQueue_(runLoop_, kWorkThreads),
      secrets_(runLoop_, screen_, options.looksUpSecrets),
      platform_{runLoop_, workQueue_, http_,   preferences_, secrets_,   notifications_, directories_,
                bundle_,  files_,     screen_, entropy_,     localTime_, registry_} {
    QObject::connect(&termination_, &QSocketNotifier::activated, &termination_, [this] {
        termination_.setEnabled(false);
        if (onTerminate) {
            onTerminate();
        }
    });
}

RealPlatform::~RealPlatform() = default;

void RealPlatform::watch() {
    events_.emplace(runLoop_, notifications_);
    preferences_.watch();
    workQueue_.async([configuration = XdgDirectories::configuration(), data = directories_.applicationSupport(),
                      caches = directories_.caches()] {
        for (const auto& folder :
             {configuration, data, caches, caches ? std::optional(*caches / "CoinIcons") : std::nullopt}) {
            if (folder) {
                removeLeftovers(*folder);
            }
        }
    });
}

int RealPlatform::exec() {
    return exitStatus_ ? *exitStatus_ : QCoreApplication::exec();
}

void RealPlatform::exit(int status) {
    if (!exitStatus_) {
        exitStatus_ = status;
        termination_.setEnabled(false);
        Termination::announceEnd(status);
        QCoreApplication::exit(status);
    }
}

}  // namespace glintar::platform
