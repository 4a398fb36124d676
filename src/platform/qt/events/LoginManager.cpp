#include "platform/qt/events/LoginManager.h"

#include "platform/DesktopEvents.h"
#include "platform/NotificationCenter.h"

#include <fmt/format.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <array>
#include <cstdlib>
#include <cstring>

namespace glintar::platform {

namespace {

constexpr const char* kWellKnownSocket = "/run/dbus/system_bus_socket";

// The start of the program has better things to do.
constexpr Duration kFirstWait = std::chrono::seconds{1};
constexpr Duration kLongestWait = std::chrono::minutes{5};

/// The path of the first "unix:path=" in an address ("Server Addresses" in freedesktop.org's description of D-Bus);
/// empty where there is none.
std::string socketPath(std::string_view address) {
    constexpr std::string_view kPrefix = "unix:path=";
    const auto found = address.find(kPrefix);
    if (found == std::string_view::npos) {
        return {};
    }
    address.remove_prefix(found + kPrefix.size());
    const auto escaped = address.substr(0, address.find_first_of(",;"));
    return QByteArray::fromPercentEncoding(QByteArray(escaped.data(), static_cast<qsizetype>(escaped.size())))
        .toStdString();
}

/// Connected to the socket, without having waited for anything.
Descriptor connectTo(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        return Descriptor();
    }
    std::memcpy(address.sun_path, path.data(), path.size());
    Descriptor opened(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (opened.number() < 0 ||
        ::connect(opened.number(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0) {
        return Descriptor();
    }
    return opened;
}

/// The first words of every client ("Authentication Protocol", ibid.): who it is, as the socket proves.
std::string greeting() {
    std::string text(1, '\0');
    text += "AUTH EXTERNAL ";
    for (const char digit : fmt::format("{}", ::getuid())) {
        text += fmt::format("{:02x}", static_cast<unsigned char>(digit));
    }
    return text + "\r\n";
}

}  // namespace

std::optional<std::string> systemBusAddress() {
    if (const char* const named = std::getenv("DBUS_SYSTEM_BUS_ADDRESS"); named != nullptr && *named != '\0') {
        return named;
    }
    return ::access(kWellKnownSocket, F_OK) == 0 ? std::optional(fmt::format("unix:path={}", kWellKnownSocket))
                                                 : std::nullopt;
}

LoginManager::LoginManager(RunLoop& loop, NotificationCenter& notifications, std::string busAddress)
    : loop_(loop), notifications_(notifications), busAddress_(std::move(busAddress)), nextWait_(kFirstWait) {
    if (!socketPath(busAddress_).empty()) {
        retry();
    }
}

LoginManager::~LoginManager() {
    if (bus_) {
        QDBusConnection::disconnectFromBus(busName_);
    }
}

void LoginManager::retry() {
    timer_ = loop_.after(nextWait_, [this] { knock(); });
    nextWait_ = std::min(nextWait_ * 2, kLongestWait);
}

void LoginManager::knock() {
    door_ = connectTo(socketPath(busAddress_));
    const auto words = greeting();
    if (door_.number() < 0 ||
        ::send(door_.number(), words.data(), words.size(), MSG_NOSIGNAL) != static_cast<ssize_t>(words.size())) {
        retry();
        return;
    }
    doorNotifier_.emplace(door_.number(), QSocketNotifier::Read);
    connect(&*doorNotifier_, &QSocketNotifier::activated, this, [this] { onAnswer(); }, Qt::QueuedConnection);
}

void LoginManager::onAnswer() {
    std::array<char, 64> answer{};
    const ssize_t got = ::recv(door_.number(), answer.data(), answer.size(), 0);
    doorNotifier_.reset();
    door_ = Descriptor();
    constexpr std::string_view kAccepted = "OK ";
    const bool isAccepted =
        got > 0 && std::string_view(answer.data(), static_cast<std::size_t>(got)).starts_with(kAccepted);
    if (!isAccepted || !connectToBus()) {
        retry();
    }
}

bool LoginManager::connectToBus() {
    static int count = 0;  // Qt keeps connections by name, for the whole process
    busName_ = QStringLiteral("glintar-login-%1").arg(++count);
    auto bus = QDBusConnection::connectToBus(QString::fromStdString(busAddress_), busName_);
    if (!bus.isConnected()) {
        QDBusConnection::disconnectFromBus(busName_);
        return false;
    }
    bus.connect(QStringLiteral("org.freedesktop.login1"), QStringLiteral("/org/freedesktop/login1"),
                QStringLiteral("org.freedesktop.login1.Manager"), QStringLiteral("PrepareForSleep"), this,
                SLOT(onPrepareForSleep(bool)));
    bus.connect(QString(), QStringLiteral("/org/freedesktop/DBus/Local"), QStringLiteral("org.freedesktop.DBus.Local"),
                QStringLiteral("Disconnected"), this, SLOT(onDisconnected()));
    bus_ = std::move(bus);
    nextWait_ = kFirstWait;
    return true;
}

void LoginManager::onDisconnected() {
    if (bus_) {
        bus_.reset();
        QDBusConnection::disconnectFromBus(busName_);
        retry();
    }
}

void LoginManager::onPrepareForSleep(bool isBeginning) {
    if (!isBeginning) {
        notifications_.post(kMachineResumed);
    }
}

}  // namespace glintar::platform
