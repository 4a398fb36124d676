#pragma once

#include "platform/Preferences.h"

#include <QSettings>

#include <filesystem>
#include <memory>
#include <optional>
#include <string_view>

class QFileSystemWatcher;
class QTimer;

namespace glintar::platform {

class Console;

/// The preference file, in the INI form of QSettings. A file that cannot be read as such reads as far as it can be;
/// before the first write to it, a copy is put beside it under its name and ".damaged". One of more than 1 MB, or no
/// regular file, is not read at all: what was read before holds until it has been put right. Waits 100 ms at most.
class QtPreferences final : public Preferences {
public:
    QtPreferences(const std::filesystem::path& file, Console& console);
    ~QtPreferences() override;

    bool boolean(std::string_view key) const override;
    std::int64_t integer(std::string_view key) const override { return value(key).toLongLong(); }
    double real(std::string_view key) const override { return value(key).toDouble(); }
    std::optional<std::string> string(std::string_view key) const override;
    std::optional<std::string> data(std::string_view key) const override;

    bool setBoolean(std::string_view key, bool value) override { return set(key, value); }
    bool setInteger(std::string_view key, std::int64_t value) override { return set(key, qlonglong{value}); }
    bool setReal(std::string_view key, double value) override { return set(key, value); }
    bool setString(std::string_view key, std::string_view value) override;
    bool setData(std::string_view key, std::string_view bytes) override;
    bool remove(std::string_view key) override { return set(key, QVariant()); }

    /// From now on `onExternalChange` runs when the file changes.
    void watch();

private:
    QVariant value(std::string_view key) const;
    /// Removes the key when the value is invalid. False when it could not be stored: it reads as before then.
    bool set(std::string_view key, const QVariant& value);
    bool refresh() const;
    bool prepareWrite();
    void watchPaths();

    std::filesystem::path file_;
    Console& console_;
    mutable std::optional<QSettings> settings_;  ///< none until the file could be looked into
    mutable std::string_view reported_;          ///< the problem that was said last
    std::unique_ptr<QFileSystemWatcher> watcher_;
    std::unique_ptr<QTimer> settled_;  ///< fires when the file has been left alone for a moment
};

}  // namespace glintar::platform
