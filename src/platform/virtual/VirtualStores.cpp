#include "platform/virtual/VirtualStores.h"

#include <fmt/chrono.h>

#include <algorithm>

namespace glintar::platform {

std::optional<std::string> VirtualPreferences::data(std::string_view key) const {
    const auto bytes = get<Bytes>(key);
    return bytes ? std::optional(bytes->bytes) : std::nullopt;
}

SecretLookup VirtualSecretStore::find(std::string_view service, std::string_view account) {
    ++reads;
    if (failure) {
        return {*failure, {}};
    }
    const auto found = items_.find({std::string(service), std::string(account)});
    return found == items_.end() ? SecretLookup{SecretStatus::NotFound, {}}
                                 : SecretLookup{SecretStatus::Done, found->second};
}

SecretStatus VirtualSecretStore::add(std::string_view service, std::string_view account, std::string_view bytes) {
    if (failure && *failure != SecretStatus::Pending) {
        return *failure;
    }
    items_.insert_or_assign({std::string(service), std::string(account)}, std::string(bytes));
    return SecretStatus::Done;
}

SecretStatus VirtualSecretStore::remove(std::string_view service, std::string_view account) {
    if (failure && *failure != SecretStatus::Pending) {
        return *failure;
    }
    return items_.erase({std::string(service), std::string(account)}) > 0 ? SecretStatus::Done : SecretStatus::NotFound;
}

bool VirtualFiles::exists(const std::filesystem::path& path) const {
    return contents.contains(path) || unreadable.contains(path) || folders.contains(path);
}

std::expected<std::string, std::string> VirtualFiles::read(const std::filesystem::path& path) const {
    if (const auto failure = unreadable.find(path); failure != unreadable.end()) {
        return std::unexpected(failure->second);
    }
    const auto found = contents.find(path);
    return found == contents.end()
               ? std::expected<std::string, std::string>(std::unexpected("No such file or directory"))
               : found->second;
}

Files::Outcome VirtualFiles::replace(const std::filesystem::path& path, std::string_view bytes) {
    if (!writeFailure.empty()) {
        return std::unexpected(writeFailure);
    }
    if (!folders.contains(path.parent_path())) {
        return std::unexpected("No such file or directory");
    }
    contents.insert_or_assign(path, std::string(bytes));
    return {};
}

Files::Outcome VirtualFiles::remove(const std::filesystem::path& path) {
    return contents.erase(path) > 0 ? Outcome{} : std::unexpected("No such file or directory");
}

Files::Outcome VirtualFiles::removeAll(const std::filesystem::path& path) {
    if (!writeFailure.empty()) {
        return std::unexpected(writeFailure);
    }
    std::erase_if(contents, [&](const auto& file) { return file.first == path || file.first.parent_path() == path; });
    folders.erase(path);
    return {};
}

Files::Outcome VirtualFiles::makeDirectories(const std::filesystem::path& path) {
    if (!writeFailure.empty()) {
        return std::unexpected(writeFailure);
    }
    folders.insert(path);
    return {};
}

std::optional<std::filesystem::path> VirtualBundle::resource(std::string_view name, std::string_view extension) const {
    std::filesystem::path path = fmt::format("/bundle/{}.{}", name, extension);
    return files_.exists(path) ? std::optional(std::move(path)) : std::nullopt;
}

bool VirtualConsole::printed(std::string_view text) const {
    return std::ranges::any_of(lines, [&](const Line& line) { return line.text == text; });
}

int VirtualConsole::count(std::string_view part) const {
    return static_cast<int>(std::ranges::count_if(lines, [&](const Line& line) { return line.text.contains(part); }));
}

void VirtualEntropy::fill(std::span<std::byte> bytes) {
    ++next_;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        bytes[i] = static_cast<std::byte>(std::size_t{next_} * 31 + i);
    }
}

std::string VirtualLocalTime::clockText(WallTime time) const {
    return fmt::format("{:%T}", fmt::gmtime(std::chrono::system_clock::to_time_t(time)));
}

std::string VirtualLocalTime::timestamp(WallTime time) const {
    return fmt::format("{:%FT%T}+00:00", fmt::gmtime(std::chrono::system_clock::to_time_t(time)));
}

}  // namespace glintar::platform
