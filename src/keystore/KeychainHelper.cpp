#include "keystore/KeychainHelper.h"

#include "platform/Platform.h"
#include "platform/Registry.h"
#include "text/Unicode.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace glintar::keystore {

namespace {
constexpr std::string_view kAccount = "GlintarUser";

struct HeldKey {
    std::optional<std::string> sourceId;
    std::string key;
};

HeldKey& heldKey(platform::Platform& platform) {
    return platform.registry.shared<HeldKey>([] { return std::make_shared<HeldKey>(); });
}

}  // namespace

platform::SecretStatus KeychainHelper::save(std::string_view bytes, std::string_view keyName) const {
    return platform_.secrets.add(keyName, kAccount, bytes);
}

std::optional<std::string> KeychainHelper::read(std::string_view keyName) const {
    auto found = platform_.secrets.find(keyName, kAccount);
    if (found.status != platform::SecretStatus::Done) {
        return std::nullopt;
    }
    return std::move(found.bytes);
}

platform::SecretStatus KeychainHelper::delete_(std::string_view keyName) const {
    return platform_.secrets.remove(keyName, kAccount);
}

platform::SecretLookup KeychainHelper::peek(std::string_view keyName) const {
    return platform_.secrets.peek(keyName, kAccount);
}

std::string KeychainHelper::keyNameOf(std::string_view sourceId) {
    return "apiKey_" + std::string(sourceId);
}

void KeychainHelper::hold(std::string_view sourceId) const {
    heldKey(platform_) = {std::string(sourceId), peek(keyNameOf(sourceId)).bytes};
}

void KeychainHelper::release() const {
    heldKey(platform_) = {};
}

std::string KeychainHelper::apiKeyOf(std::string_view sourceId) const {
    const auto& held = heldKey(platform_);
    auto bytes = held.sourceId == sourceId ? std::optional(held.key) : read(keyNameOf(sourceId));
    return bytes && text::isValidUtf8(*bytes) ? std::move(*bytes) : std::string();
}

bool KeychainHelper::canBeSent(std::string_view key) {
    constexpr auto isPrintable = [](char c) { return c >= 0x20 && c <= 0x7e; };
    return !key.empty() && std::ranges::all_of(key, isPrintable) && key.front() != ' ' && key.back() != ' ';
}

}  // namespace glintar::keystore
