#pragma once

#include "platform/Console.h"
#include "platform/Directories.h"
#include "platform/Files.h"
#include "platform/Machine.h"
#include "platform/Preferences.h"
#include "platform/SecretStore.h"

#include <filesystem>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <variant>
#include <vector>

namespace glintar::platform {

/// Preferences in memory. A value read as another type than it was written with is absent.
class VirtualPreferences final : public Preferences {
public:
    bool boolean(std::string_view key) const override { return get<bool>(key).value_or(false); }
    std::int64_t integer(std::string_view key) const override { return get<std::int64_t>(key).value_or(0); }
    double real(std::string_view key) const override { return get<double>(key).value_or(0); }
    std::optional<std::string> string(std::string_view key) const override { return get<std::string>(key); }
    std::optional<std::string> data(std::string_view key) const override;

    bool setBoolean(std::string_view key, bool value) override { return set(key, value); }
    bool setInteger(std::string_view key, std::int64_t value) override { return set(key, value); }
    bool setReal(std::string_view key, double value) override { return set(key, value); }
    bool setString(std::string_view key, std::string_view value) override { return set(key, std::string(value)); }
    bool setData(std::string_view key, std::string_view bytes) override { return set(key, Bytes{std::string(bytes)}); }
    bool remove(std::string_view key) override {
        if (isWritable) {
            values_.erase(std::string(key));
        }
        return isWritable;
    }

    bool isWritable = true;

private:
    struct Bytes {
        std::string bytes;
    };
    using Value = std::variant<bool, std::int64_t, double, std::string, Bytes>;

    template <class T>
    std::optional<T> get(std::string_view key) const {
        const auto found = values_.find(std::string(key));
        if (found == values_.end() || !std::holds_alternative<T>(found->second)) {
            return std::nullopt;
        }
        return std::get<T>(found->second);
    }
    bool set(std::string_view key, Value value) {
        if (isWritable) {
            values_.insert_or_assign(std::string(key), std::move(value));
        }
        return isWritable;
    }

    std::map<std::string, Value> values_;
};

/// Secrets in memory; `failure`, when set, is what every call answers, but that `Pending` keeps nobody from writing.
class VirtualSecretStore final : public SecretStore {
public:
    SecretLookup find(std::string_view service, std::string_view account) override;
    SecretStatus add(std::string_view service, std::string_view account, std::string_view bytes) override;
    SecretStatus remove(std::string_view service, std::string_view account) override;

    std::optional<SecretStatus> failure;
    int reads = 0;

private:
    std::map<std::pair<std::string, std::string>, std::string> items_;
};

/// Files in memory. A file that is written needs its folder.
class VirtualFiles final : public Files {
public:
    bool exists(const std::filesystem::path& path) const override;
    std::expected<std::string, std::string> read(const std::filesystem::path& path) const override;
    Outcome replace(const std::filesystem::path& path, std::string_view bytes) override;
    Outcome remove(const std::filesystem::path& path) override;
    Outcome removeAll(const std::filesystem::path& path) override;
    Outcome makeDirectories(const std::filesystem::path& path) override;

    std::map<std::filesystem::path, std::string> contents;
    std::map<std::filesystem::path, std::string> unreadable;  ///< there, but reading fails with this text
    std::set<std::filesystem::path> folders{"/home/u/data", "/home/u/documents", "/home/u/cache"};
    std::string writeFailure;  ///< when not empty, no write succeeds
};

class VirtualDirectories final : public Directories {
public:
    std::optional<std::filesystem::path> applicationSupport() const override { return support; }
    std::optional<std::filesystem::path> documents() const override { return documentsFolder; }
    std::optional<std::filesystem::path> caches() const override { return cachesFolder; }

    std::optional<std::filesystem::path> support = "/home/u/data";
    std::optional<std::filesystem::path> documentsFolder = "/home/u/documents";
    std::optional<std::filesystem::path> cachesFolder = "/home/u/cache";
};

/// Resources lie under /bundle in the virtual files.
class VirtualBundle final : public Bundle {
public:
    explicit VirtualBundle(const Files& files) : files_(files) {}
    std::optional<std::filesystem::path> resource(std::string_view name, std::string_view extension) const override;
    std::string version() const override { return "1.2.3"; }
    std::string configServer() const override { return server; }

    std::string server;

private:
    const Files& files_;
};

/// Keeps every line, without the line break that `write` adds.
class VirtualConsole final : public Console {
public:
    struct Line {
        Path path;
        std::string text;
    };
    std::vector<Line> lines;

    [[nodiscard]] bool printed(std::string_view text) const;  ///< a whole line, on any path
    [[nodiscard]] int count(std::string_view part) const;     ///< lines that contain the text

protected:
    void write(Path path, std::string_view text) override { lines.push_back({path, std::string(text)}); }
};

/// Counts instead of rolling dice.
class VirtualEntropy final : public Entropy {
public:
    void fill(std::span<std::byte> bytes) override;

private:
    unsigned next_ = 0;
};

class VirtualLocalTime final : public LocalTime {
public:
    std::string clockText(WallTime time) const override;  ///< in UTC
    std::string timestamp(WallTime time) const override;
};

}  // namespace glintar::platform
