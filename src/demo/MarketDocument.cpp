#include "demo/MarketDocument.h"

#include "config/AppConfig.h"
#include "json/JsonWriter.h"

#include <fmt/format.h>

#include <optional>

namespace glintar::demo {

namespace {

std::string movedTo(std::string_view address, std::string_view service, std::string_view original) {
    const auto host = original.find("//");
    const auto path = host == std::string_view::npos ? host : original.find('/', host + 2);
    return fmt::format("{}/{}{}", address, service, original.substr(std::min(path, original.size())));
}

std::string simulated(std::string_view name) {
    return fmt::format("{} (simulated)", name);
}

void writeSource(json::Writer& writer, const config::SourceConfig& source, std::string_view address) {
    const auto text = [&](std::string_view key, const std::optional<std::string>& value) {
        if (value) {
            writer.key(key).string(*value);
        }
    };
    writer.beginObject();
    text("id", source.id);
    text("name", simulated(source.name));
    writer.key("supports_batch").boolean(source.supports_batch);
    text("batch_separator", source.batch_separator);
    text("batch_param_type", source.batch_param_type);
    text("url_template", movedTo(address, source.id, source.url_template));
    text("response_type", source.response_type);
    text("id_mapping_path", source.id_mapping_path);
    text("image_path", source.image_path);
    text("price_path", source.price_path);
    text("change_path", source.change_path);
    text("high_path", source.high_path);
    text("low_path", source.low_path);
    text("sparkline_path", source.sparkline_path);
    text("offical_URL", source.offical_URL);
    text("API_intro", source.API_intro);
    writer.key("api_key_available").boolean(source.api_key_available.value_or(false));
    text("header", source.header);
    writer.endObject();
}

void writeFeeService(json::Writer& writer, const config::GasConfig& service, std::string_view address) {
    const auto name = std::string_view(service.id).substr(0, service.id.find('_'));
    writer.beginObject().key("id").string(service.id).key("name").string(simulated(service.name));
    writer.key("url").string(movedTo(address, name, service.url));
    writer.key("price_path").string(service.pricePath).key("divider").number(service.divider).endObject();
}

}  // namespace

std::expected<std::string, std::string> marketDocument(std::string shipped, std::string_view address) {
    const auto config = config::decodeAppConfig(std::move(shipped));
    if (!config) {
        return std::unexpected(config.error());
    }
    json::Writer writer;
    writer.beginObject().key("sources").beginArray();
    for (const auto& source : config->sources) {
        writeSource(writer, source, address);
    }
    writer.endArray().key("gas_configs").beginArray();
    for (const auto& service : config->gasConfigs.value_or(std::vector<config::GasConfig>())) {
        writeFeeService(writer, service, address);
    }
    writer.endArray().endObject();
    return std::string(writer.text());
}

}  // namespace glintar::demo
