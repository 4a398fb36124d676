#include "config/AppConfig.h"

#include "config/JsonMembers.h"

#include <algorithm>

namespace glintar::config {

namespace {

std::optional<std::string> decode(JsonMembers members, SourceConfig& source) {
    return members.required("id", source.id)
        .required("name", source.name)
        .required("supports_batch", source.supports_batch)
        .optional("batch_separator", source.batch_separator)
        .optional("batch_param_type", source.batch_param_type)
        .required("url_template", source.url_template)
        .required("response_type", source.response_type)
        .optional("id_mapping_path", source.id_mapping_path)
        .optional("image_path", source.image_path)
        .required("price_path", source.price_path)
        .optional("change_path", source.change_path)
        .optional("high_path", source.high_path)
        .optional("low_path", source.low_path)
        .optional("sparkline_path", source.sparkline_path)
        .optional("offical_URL", source.offical_URL)
        .optional("API_intro", source.API_intro)
        .optional("api_key_available", source.api_key_available)
        .optional("header", source.header)
        .error();
}

std::optional<std::string> decode(JsonMembers members, GasConfig& gas) {
    return members.required("id", gas.id)
        .required("name", gas.name)
        .required("url", gas.url)
        .required("price_path", gas.pricePath)
        .required("divider", gas.divider)
        .error();
}

template <class T>
std::optional<std::string> decodeList(std::optional<json::View> list, std::string_view key, std::vector<T>& into) {
    if (!list) {
        return fmt::format("{}: missing", key);
    }
    if (!list->isArray()) {
        return fmt::format("{}: of the wrong type", key);
    }
    into.resize(list->size());
    for (std::size_t i = 0; i < into.size(); ++i) {
        if (auto error = decode(JsonMembers(list->at(i), fmt::format("{}[{}]", key, i)), into[i])) {
            return error;
        }
    }
    return std::nullopt;
}

}  // namespace

const SourceConfig* AppConfig::source(std::string_view id) const {
    const auto found = std::ranges::find(sources, id, &SourceConfig::id);
    return found == sources.end() ? nullptr : &*found;
}

std::expected<AppConfig, std::string> decodeAppConfig(std::string text) {
    const auto document = json::Document::parse(std::move(text));
    if (!document) {
        return std::unexpected(document.error().text());
    }
    const json::View root = document->root();
    if (!root.isObject()) {
        return std::unexpected("The document is not an object.");
    }
    AppConfig config;
    if (auto error = decodeList(root.member("sources"), "sources", config.sources)) {
        return std::unexpected(std::move(*error));
    }
    const auto gasConfigs = root.member("gas_configs");
    if (gasConfigs && !gasConfigs->isNull()) {
        if (auto error = decodeList(gasConfigs, "gas_configs", config.gasConfigs.emplace())) {
            return std::unexpected(std::move(*error));
        }
    }
    return config;
}

}  // namespace glintar::config
