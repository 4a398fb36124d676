#pragma once

#include "config/AppConfig.h"
#include "keystore/KeychainHelper.h"
#include "platform/NotificationCenter.h"
#include "platform/RunLoop.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace glintar::platform {
struct Platform;
}

namespace glintar::settings {

inline constexpr const char* kCannotBeSent =
    "This key cannot be sent: it holds a character that no request header may hold, or a blank at an end.";

/// What the "Data Source" tab shows and does: the choice of the service that is asked, and the user's key for it.
///
/// A key is stored at each change, under the source that is selected then, and announced one second after the last: no
/// half key is sent. Nothing waits for the key ring: a key that it has not answered for yet shows as none, is not
/// overwritten by that, and appears when the answer comes. Main thread only.
class APISettingsViewModel {
public:
    explicit APISettingsViewModel(platform::Platform& platform);
    APISettingsViewModel(const APISettingsViewModel&) = delete;
    APISettingsViewModel& operator=(const APISettingsViewModel&) = delete;
    ~APISettingsViewModel();

    void loadConfig();
    void validateSelectedSource();
    void loadApiKey();

    /// Stores the choice and the key, and announces them.
    void saveSourceSettings();
    void selectSource(const config::SourceConfig& source);

    /// The user edited the key. Nothing is trimmed.
    void setApiKey(std::string text);

    /// Stores the key of a source, be it the selected one or not; an empty one removes it. What the store answers at
    /// once; it may refuse later.
    platform::SecretStatus storeKey(const std::string& sourceId, const std::string& key);

    /// What there is to say of a key of which the store says so; `typed`: what it was just to become, empty when it was
    /// to be removed.
    [[nodiscard]] static std::string noteOf(platform::SecretStatus status, const std::optional<std::string>& typed);

    /// Where a link that the configuration names leads; none for what is no address.
    [[nodiscard]] static std::optional<std::string> linkTo(const std::optional<std::string>& address);

    /// The selected one of `config`, or null.
    [[nodiscard]] const config::SourceConfig* selectedSource() const;

    /// That the choice of the source could not be stored; empty when all is well.
    [[nodiscard]] std::string sourceNote() const;

    /// What there is to say under the key field, in plain words: that it cannot be sent, or cannot be kept or read.
    /// Empty when all is well.
    [[nodiscard]] std::string keyNote() const;

    /// Runs after anything that is shown has changed.
    std::function<void()> onChange;

    std::optional<config::AppConfig> config;
    std::string selectedSourceID;
    std::string inputApiKey;

private:
    [[nodiscard]] std::optional<std::string> readConfigText();
    void store();
    void announce();
    void settingsChanged();
    void changed();

    platform::Platform& platform_;
    keystore::KeychainHelper keys_;
    bool isSourceStored_ = true;
    std::optional<std::string> storedSource_;  ///< as the preference was last seen
    platform::SecretStatus keyStatus_ = platform::SecretStatus::NotFound;
    std::optional<std::string> typed_;  ///< what the user made of the selected source's key
    platform::TimerHandle announcement_;
    std::unique_ptr<platform::NotificationCenter::Observation> updates_;
};

}  // namespace glintar::settings
