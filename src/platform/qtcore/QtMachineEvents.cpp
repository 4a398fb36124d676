#include "platform/qtcore/QtMachineEvents.h"

namespace glintar::platform {

QtMachineEvents::QtMachineEvents(RunLoop& loop, NotificationCenter& notifications)
    : wake_(loop, notifications), network_(loop, notifications) {
    if (wake_.descriptor() >= 0) {
        wakeNotifier_.emplace(wake_.descriptor(), QSocketNotifier::Read);
        QObject::connect(&*wakeNotifier_, &QSocketNotifier::activated, [this] { wake_.onReadable(); });
    }
    if (network_.descriptor() >= 0) {
        networkNotifier_.emplace(network_.descriptor(), QSocketNotifier::Read);
        QObject::connect(&*networkNotifier_, &QSocketNotifier::activated,
                         [this] { networkNotifier_->setEnabled(network_.onReadable()); });
    }
}

}  // namespace glintar::platform
