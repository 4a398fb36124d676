#pragma once

#include "app/Arguments.h"
#include "platform/posix/Descriptor.h"

#include <QObject>
#include <QSocketNotifier>
#include <QString>
#include <QVariantList>
#include <QVariantMap>

#include <functional>
#include <memory>
#include <string>

namespace glintar::app {

/// One program a user session. It holds the application's name on the message bus, where there is a bus; where there is
/// none, a lock in the runtime directory, and a socket beside it.
class SingleInstance final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.Application")

public:
    explicit SingleInstance(const std::string& busName);
    ~SingleInstance() override;

    /// True when this is the first instance, which then hears of others through the event loop. If there is another
    /// one, it has been asked to open this. Call it once. Blocks for a round trip to the bus.
    [[nodiscard]] bool claim(Opens opens);

    /// Asks an instance that runs to open this, if there is one.
    void ask(Opens opens);

    /// Runs when the program was started a second time.
    std::function<void(Opens opens)> onSecondStart;

public slots:  // the Application interface of the Desktop Entry standard
    // NOLINTBEGIN(readability-identifier-naming): names on the bus
    void Activate(const QVariantMap& platformData);
    void ActivateAction(const QString& name, const QVariantList& parameter, const QVariantMap& platformData);
    // NOLINTEND(readability-identifier-naming)

private:
    [[nodiscard]] static bool hasBus();
    bool claimBusName();
    bool claimLock();
    [[nodiscard]] std::string basePath() const;
    void listen(const std::string& path);
    void tell(Opens opens);

    QString busName_;
    bool hasBusName_ = false;
    platform::Descriptor lock_;
    std::string socketPath_;  ///< other instances without a bus knock here; empty without a lock of ours
    platform::Descriptor socket_;
    std::unique_ptr<QSocketNotifier> knocks_;
};

}  // namespace glintar::app
