#pragma once

#include "config/RemoteResourceUpdater.h"

namespace glintar::config {

/// Keeps the source configuration up to date: any JSON object or array is stored and announced as `kConfigUpdated`. One
/// that is no configuration is passed over when it is loaded, in favour of the shipped one.
class APIConfigUpdater final : public RemoteResourceUpdater {
public:
    static constexpr std::string_view kVersionKey = "saved_api_config_version";

    /// The one of this process.
    static APIConfigUpdater& shared(platform::Platform& platform);

    explicit APIConfigUpdater(platform::Platform& platform);
};

}  // namespace glintar::config
