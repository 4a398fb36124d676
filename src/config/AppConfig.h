#pragma once

#include <expected>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace glintar::config {

/// One market-data service: how it is asked and where each value lies in its answer. Paths are dotted keys.
struct SourceConfig {
    std::string id;                               ///< also keys its cool-down and names its API key
    std::string name;                             ///< shown to the user
    bool supports_batch = false;                  ///< one request for all coins, instead of one for each
    std::optional<std::string> batch_separator;   ///< between identifiers of a batch request; "," when absent
    std::optional<std::string> batch_param_type;  ///< "symbol": a batch lists display names instead of identifiers
    std::string url_template;                     ///< address with the placeholders {ID} and {SYMBOL}
    std::string response_type;                    ///< "array", "dictionary", "array_first"; else one object
    std::optional<std::string> id_mapping_path;   ///< of an array's element: the identifier of its coin
    std::optional<std::string> image_path;
    std::string price_path;
    std::optional<std::string> change_path;
    std::optional<std::string> high_path;
    std::optional<std::string> low_path;
    std::optional<std::string> sparkline_path;
    std::optional<std::string> offical_URL;  ///< the service's own web address
    std::optional<std::string> API_intro;    ///< its API documentation
    std::optional<bool> api_key_available;   ///< it accepts a user's API key
    std::optional<std::string> header;       ///< request header that carries the key; without it none is sent
};

/// One network-fee service.
struct GasConfig {
    std::string id;  ///< holds a word of its network, by which it is chosen
    std::string name;
    std::string url;        ///< complete address
    std::string pricePath;  ///< "price_path"
    double divider = 1;     ///< of the raw value; 0 or less counts as 1
};

/// The source configuration document.
struct AppConfig {
    std::vector<SourceConfig> sources;
    std::optional<std::vector<GasConfig>> gasConfigs;  ///< "gas_configs"

    [[nodiscard]] const SourceConfig* source(std::string_view id) const;  ///< the first with this id, or null
};

/// Decodes a whole document, strictly: a required key that is missing, or any value of the wrong type, refuses it
/// all. Optional keys may be absent or null; unknown keys are ignored. The error says which key was wrong, where.
[[nodiscard]] std::expected<AppConfig, std::string> decodeAppConfig(std::string text);

}  // namespace glintar::config
