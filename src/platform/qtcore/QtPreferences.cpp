#include "platform/qtcore/QtPreferences.h"

#include "platform/Console.h"

#include <QFileSystemWatcher>
#include <QTimer>

#include <chrono>
#include <system_error>

namespace glintar::platform {

namespace {

// A writer may write several times in a row, and in place. QSettings would read a file that is half there, and would
// take a second writing within the file system's four milliseconds for the first.
constexpr auto kSettleTime = std::chrono::milliseconds{50};

QString keyOf(std::string_view key) {
    return QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size()));
}

/// The file, or one that cannot be when something else stands in its place: QSettings would wait for a pipe's writer.
std::filesystem::path orNothing(const std::filesystem::path& file, Console& console) {
    std::error_code ignored;
    if (!std::filesystem::exists(file, ignored) || std::filesystem::is_regular_file(file, ignored)) {
        return file;
    }
    console.print("⚠️ [Preferences] not a regular file: " + file.string());
    return "/dev/null/glintar.conf";
}

}  // namespace

QtPreferences::QtPreferences(const std::filesystem::path& file, Console& console)
    : file_(orNothing(file, console)), console_(console) {
    open();
}

void QtPreferences::open() {
    settings_.emplace(QString::fromStdString(file_.string()), QSettings::NativeFormat);
    settings_->setFallbacksEnabled(false);
}

QtPreferences::~QtPreferences() = default;

QVariant QtPreferences::value(std::string_view key) const {
    settings_->sync();  // another process may have written the file; costs a look at its date
    if (settings_->status() == QSettings::FormatError && !isDamageReported_) {
        isDamageReported_ = true;
        console_.print("⚠️ [Preferences] damaged, read as far as possible: " + file_.string());
    }
    return settings_->value(keyOf(key));
}

bool QtPreferences::boolean(std::string_view key) const {
    const QVariant stored = value(key);
    const QString word = stored.toString().toLower();
    return stored.toBool() && word != u"no" && word != u"off";  // people write these into the file, and mean them
}

std::int64_t QtPreferences::integer(std::string_view key) const {
    return value(key).toLongLong();
}

double QtPreferences::real(std::string_view key) const {
    return value(key).toDouble();
}

std::optional<std::string> QtPreferences::string(std::string_view key) const {
    const auto found = value(key);
    return found.canConvert<QString>() ? std::optional(found.toString().toStdString()) : std::nullopt;
}

std::optional<std::string> QtPreferences::data(std::string_view key) const {
    const auto found = value(key);
    return found.canConvert<QByteArray>() ? std::optional(found.toByteArray().toStdString()) : std::nullopt;
}

bool QtPreferences::setBoolean(std::string_view key, bool value) {
    return set(key, value);
}

bool QtPreferences::setInteger(std::string_view key, std::int64_t value) {
    return set(key, static_cast<qlonglong>(value));
}

bool QtPreferences::setReal(std::string_view key, double value) {
    return set(key, value);
}

bool QtPreferences::setString(std::string_view key, std::string_view value) {
    return set(key, keyOf(value));
}

bool QtPreferences::setData(std::string_view key, std::string_view bytes) {
    return set(key, QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size())));
}

bool QtPreferences::remove(std::string_view key) {
    return set(key, QVariant());
}

bool QtPreferences::set(std::string_view key, const QVariant& value) {
    const auto put = [this, name = keyOf(key)](const QVariant& one) {
        one.isValid() ? settings_->setValue(name, one) : settings_->remove(name);
    };
    prepareWrite();
    const QVariant before = settings_->value(keyOf(key));
    put(value);
    settings_->sync();
    const bool isWritten = settings_->status() != QSettings::AccessError;
    if (!isWritten) {
        console_.print("⚠️ [Preferences] could not be written: " + file_.string());
        put(before);  // or it would be kept in memory
    }
    return isWritten;
}

void QtPreferences::prepareWrite() {
    if (settings_->status() == QSettings::AccessError) {
        open();  // it never forgets that it failed
    }
    settings_->sync();
    if (settings_->status() == QSettings::FormatError) {
        auto copy = file_;
        copy += ".damaged";
        std::error_code ignored;
        std::filesystem::copy_file(file_, copy, std::filesystem::copy_options::skip_existing, ignored);
    }
}

void QtPreferences::watch() {
    std::error_code ignored;
    std::filesystem::create_directories(file_.parent_path(), ignored);  // a folder that is not there cannot be watched
    watcher_ = std::make_unique<QFileSystemWatcher>();
    settled_ = std::make_unique<QTimer>();
    settled_->setSingleShot(true);
    settled_->setInterval(kSettleTime);
    watchPaths();
    QObject::connect(watcher_.get(), &QFileSystemWatcher::fileChanged, settled_.get(), qOverload<>(&QTimer::start));
    QObject::connect(watcher_.get(), &QFileSystemWatcher::directoryChanged, settled_.get(),
                     qOverload<>(&QTimer::start));
    QObject::connect(settled_.get(), &QTimer::timeout, settled_.get(), [this] {
        watchPaths();  // a file or folder that was replaced is watched no more
        if (onExternalChange) {
            onExternalChange();
        }
    });
}

void QtPreferences::watchPaths() {
    if (const auto watched = watcher_->files() + watcher_->directories(); !watched.isEmpty()) {
        watcher_->removePaths(watched);
    }
    std::error_code ignored;
    if (std::filesystem::exists(file_, ignored)) {
        watcher_->addPath(QString::fromStdString(file_.string()));
    }
    // The folder, or what is left above it: it may come back.
    auto folder = file_.parent_path();
    while (!std::filesystem::exists(folder, ignored) && folder != folder.root_path()) {
        folder = folder.parent_path();
    }
    watcher_->addPath(QString::fromStdString(folder.string()));
}

}  // namespace glintar::platform
