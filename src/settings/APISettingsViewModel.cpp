#include "settings/APISettingsViewModel.h"

#include "config/Coin.h"
#include "config/ConfigFiles.h"
#include "config/Settings.h"
#include "platform/Console.h"
#include "platform/Directories.h"
#include "platform/Files.h"
#include "platform/Platform.h"
#include "platform/Preferences.h"
#include "platform/SecretStore.h"
#include "text/Address.h"
#include "text/Unicode.h"

#include <utility>

namespace glintar::settings {

namespace {

using keystore::KeychainHelper;
using platform::SecretStatus;

constexpr std::chrono::seconds kTypingPause{1};

}  // namespace

APISettingsViewModel::APISettingsViewModel(platform::Platform& platform)
    : selectedSourceID(config::Settings::load(platform.preferences).selectedSourceID),
      platform_(platform),
      keys_(platform),
      storedSource_(platform.preferences.string(config::kSelectedSource)),
      updates_(platform.notifications.observe(config::kCoinsUpdated, [this] { settingsChanged(); })) {
    loadConfig();
    loadApiKey();
}

APISettingsViewModel::~APISettingsViewModel() {
    if (announcement_) {
        keys_.release();
    }
}

std::optional<std::string> APISettingsViewModel::readConfigText() {
    const auto cached = config::cachedConfigFileURL(platform_);
    if (cached && platform_.files.exists(*cached)) {
        auto text = platform_.files.read(*cached);
        platform_.console.print("✅ [Settings] 加载了已缓存的 API 配置");
        if (text) {
            return *std::move(text);
        }
    }
    const auto shipped = platform_.bundle.resource("api_endpoints", "json");
    if (!shipped) {
        platform_.console.print("❌ [Fatal] 错误：Bundle 里也找不到 api config！请检查 Build Phases。");
        return std::nullopt;
    }
    auto text = platform_.files.read(*shipped);
    platform_.console.print("📦 [Settings] 缓存为空，加载出厂自带 API 配置");
    return text ? std::optional(*std::move(text)) : std::nullopt;
}

void APISettingsViewModel::loadConfig() {
    auto text = readConfigText();
    if (!text) {
        return;
    }
    auto decoded = config::decodeAppConfig(*std::move(text));
    if (!decoded) {
        platform_.console.print("❌ JSON 解析错误: " + decoded.error());
        return;
    }
    config = *std::move(decoded);
    validateSelectedSource();
}

void APISettingsViewModel::validateSelectedSource() {
    if (config && selectedSource() == nullptr) {
        selectedSourceID = config->sources.empty() ? "coingecko" : config->sources.front().id;
        changed();
    }
}

std::optional<std::string> APISettingsViewModel::linkTo(const std::optional<std::string>& address) {
    return address ? text::webAddress(*address) : std::nullopt;
}

const config::SourceConfig* APISettingsViewModel::selectedSource() const {
    return config ? config->source(selectedSourceID) : nullptr;
}

void APISettingsViewModel::loadApiKey() {
    auto found = keys_.peek(KeychainHelper::keyNameOf(selectedSourceID));
    keyStatus_ = found.status;
    typed_.reset();
    inputApiKey = found.status == SecretStatus::Done && text::isValidUtf8(found.bytes) ? std::move(found.bytes) : "";
    changed();
}

SecretStatus APISettingsViewModel::storeKey(const std::string& sourceId, const std::string& key) {
    const auto name = KeychainHelper::keyNameOf(sourceId);
    const auto status = key.empty() ? keys_.delete_(name) : keys_.save(key, name);
    platform_.console.print((key.empty() ? "🗑️ API Key 已从 Keychain 移除: " : "🔒 API Key 已安全保存到 Keychain: ") +
                            name);
    return status;
}

void APISettingsViewModel::store() {
    isSourceStored_ = platform_.preferences.setString(config::kSelectedSource, selectedSourceID);
    storedSource_ = platform_.preferences.string(config::kSelectedSource);
    // A field that is empty for want of an answer says nothing about the key.
    const bool isKeyKnown = keyStatus_ == SecretStatus::Done || keyStatus_ == SecretStatus::NotFound;
    if (isKeyKnown || typed_) {
        keyStatus_ = storeKey(selectedSourceID, inputApiKey);
    }
}

void APISettingsViewModel::announce() {
    announcement_.reset();
    keys_.release();
    platform_.notifications.post(config::kCoinsUpdated);
}

void APISettingsViewModel::saveSourceSettings() {
    store();
    announce();
}

void APISettingsViewModel::selectSource(const config::SourceConfig& source) {
    selectedSourceID = source.id;
    loadApiKey();
    saveSourceSettings();
    if (!isSourceStored_) {
        selectedSourceID = storedSource_.value_or("coingecko");
        validateSelectedSource();
        loadApiKey();
    }
}

void APISettingsViewModel::setApiKey(std::string text) {
    if (!announcement_) {
        keys_.hold(selectedSourceID);
    }
    inputApiKey = std::move(text);
    typed_ = inputApiKey;
    store();
    announcement_ = platform_.runLoop.after(kTypingPause, [this] { announce(); });
    changed();
}

/// What was stored may come from here, from another program, or from a key ring that has answered only now.
void APISettingsViewModel::settingsChanged() {
    if (auto now = platform_.preferences.string(config::kSelectedSource); now != storedSource_) {
        storedSource_ = std::move(now);
        selectedSourceID = storedSource_.value_or("coingecko");
        validateSelectedSource();
        loadApiKey();
    } else if (!typed_) {
        loadApiKey();
    } else if (!announcement_) {
        const auto found = keys_.peek(KeychainHelper::keyNameOf(selectedSourceID));
        keyStatus_ = found.status;
        if (found.status == SecretStatus::Done && found.bytes != *typed_) {
            keyStatus_ = SecretStatus::Failed;
        } else if (found.status == SecretStatus::Done && !platform_.secrets.isWriting()) {
            typed_.reset();  // it is in the key ring: whatever is there from now on is shown
        }
        changed();
    }
}

std::string APISettingsViewModel::sourceNote() const {
    return isSourceStored_ ? "" : config::kNotSaved;
}

std::string APISettingsViewModel::keyNote() const {
    if (!inputApiKey.empty() && !KeychainHelper::canBeSent(inputApiKey)) {
        return kCannotBeSent;
    }
    return noteOf(keyStatus_, typed_);
}

std::string APISettingsViewModel::noteOf(SecretStatus status, const std::optional<std::string>& typed) {
    switch (status) {
        case SecretStatus::Done:
            return "";
        case SecretStatus::NotFound:
            return typed && !typed->empty() ? "The key ring did not keep this key." : "";
        case SecretStatus::Pending:
            return "Waiting for the key ring...";
        case SecretStatus::Locked:
            return !typed           ? "The key ring is locked, so a stored key cannot be read."
                   : typed->empty() ? "The key ring is locked, so the stored key is not removed."
                                    : "The key ring is locked, so this key is not kept.";
        case SecretStatus::Unavailable:
            return "There is no key ring in this session, so keys cannot be kept.";
        case SecretStatus::Failed:
            return "The key ring refused the change.";
    }
    std::unreachable();
}

void APISettingsViewModel::changed() {
    if (onChange) {
        onChange();
    }
}

}  // namespace glintar::settings
