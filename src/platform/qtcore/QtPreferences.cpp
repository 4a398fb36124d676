#include "platform/qtcore/QtPreferences.h"

#include "platform/Console.h"

#include <QFileSystemWatcher>
#include <QLockFile>
#include <QTimer>

#include <chrono>
#include <system_error>
#include <utility>

namespace glintar::platform {

namespace {

// A writer may write several times in a row, and in place. QSettings would read a file that is half there, and would
// take a second writing within the file system's four milliseconds for the first.
constexpr auto kSettleTime = std::chrono::milliseconds{50};

QString keyOf(std::string_view key) {
    return QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size()));
}

constexpr std::uintmax_t kMaxBytes = 1'000'000;

/// What keeps QSettings from looking into it; it would wait for a pipe's writer. Empty when nothing does.
std::string_view obstacleIn(const std::filesystem::path& file) {
    std::error_code ignored;
    const auto status = std::filesystem::status(file, ignored);
    if (!std::filesystem::exists(status)) {
        return {};
    }
    if (!std::filesystem::is_regular_file(status)) {
        return "not a regular file";
    }
    const auto size = std::filesystem::file_size(file, ignored);
    return !ignored && size > kMaxBytes ? "damaged, not read (more than 1 MB)" : std::string_view();
}

/// Whether QSettings gets its lock at once. It would wait half a minute for one that a killed run has left, and without
/// end for a folder of that name.
bool isLockFree(std::filesystem::path lock) {
    constexpr int kPatience = 100;  // milliseconds
    lock += ".lock";
    std::error_code ignored;
    if (std::filesystem::is_directory(lock, ignored)) {
        std::filesystem::remove(lock, ignored);  // unless there is something in it
    }
    if (std::filesystem::exists(lock, ignored) && !std::filesystem::is_regular_file(lock, ignored)) {
        return false;
    }
    QLockFile trial(QString::fromStdString(lock.string()));
    trial.setStaleLockTime(kPatience);  // that of a live process is held by the kernel too, and stays
    return trial.tryLock(kPatience) || trial.error() != QLockFile::LockFailedError;
}

}  // namespace

QtPreferences::QtPreferences(const std::filesystem::path& file, Console& console) : file_(file), console_(console) {}

QtPreferences::~QtPreferences() = default;

/// Another process may have written the file; costs two looks at its date. False when it could not be looked into: then
/// what was read last stays.
bool QtPreferences::refresh() const {
    auto problem = obstacleIn(file_);
    const bool isReadable = problem.empty();
    if (isReadable) {
        if (settings_) {
            settings_->sync();
        } else {
            settings_.emplace(QString::fromStdString(file_.string()), QSettings::NativeFormat);
            settings_->setFallbacksEnabled(false);
        }
        if (settings_->status() == QSettings::FormatError) {
            problem = "damaged, read as far as possible";
        }
    }
    if (std::exchange(reported_, problem) != problem && !problem.empty()) {
        console_.print("⚠️ [Preferences] " + std::string(problem) + ": " + file_.string());
    }
    return isReadable;
}

QVariant QtPreferences::value(std::string_view key) const {
    refresh();
    return settings_ ? settings_->value(keyOf(key)) : QVariant();
}

bool QtPreferences::boolean(std::string_view key) const {
    const QVariant stored = value(key);
    const QString word = stored.toString().toLower();
    return stored.toBool() && word != u"no" && word != u"off";  // people write these into the file, and mean them
}

std::optional<std::string> QtPreferences::string(std::string_view key) const {
    const auto found = value(key);
    return found.canConvert<QString>() ? std::optional(found.toString().toStdString()) : std::nullopt;
}

std::optional<std::string> QtPreferences::data(std::string_view key) const {
    const auto found = value(key);
    return found.canConvert<QByteArray>() ? std::optional(found.toByteArray().toStdString()) : std::nullopt;
}

bool QtPreferences::setString(std::string_view key, std::string_view value) {
    return set(key, keyOf(value));
}

bool QtPreferences::setData(std::string_view key, std::string_view bytes) {
    return set(key, QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size())));
}

bool QtPreferences::set(std::string_view key, const QVariant& value) {
    bool isWritten = prepareWrite();
    if (isWritten) {
        const auto put = [this, name = keyOf(key)](const QVariant& one) {
            one.isValid() ? settings_->setValue(name, one) : settings_->remove(name);
        };
        const QVariant before = settings_->value(keyOf(key));
        put(value);
        settings_->sync();
        isWritten = settings_->status() != QSettings::AccessError;
        if (!isWritten) {
            put(before);  // or it would be kept in memory
        }
    }
    if (!isWritten) {
        console_.print("⚠️ [Preferences] could not be written: " + file_.string());
    }
    return isWritten;
}

bool QtPreferences::prepareWrite() {
    if (settings_ && settings_->status() == QSettings::AccessError) {
        settings_.reset();  // it never forgets that it failed
    }
    auto kept = file_;
    kept += ".damaged";
    std::error_code ignored;
    bool isReady = refresh();
    if (!isReady && std::filesystem::is_regular_file(file_, ignored) && !std::filesystem::exists(kept, ignored)) {
        std::filesystem::rename(file_, kept, ignored);
        isReady = refresh();
    } else if (isReady && settings_->status() == QSettings::FormatError) {
        std::filesystem::copy_file(file_, kept, std::filesystem::copy_options::skip_existing, ignored);
    }
    return isReady && isLockFree(file_);
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
