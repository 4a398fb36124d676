#include "arbiter/ArbitrageAnswers.h"

#include "config/AppConfig.h"
#include "json/Json.h"
#include "market/ValuePath.h"
#include "platform/Console.h"
#include "platform/Platform.h"
#include "text/Address.h"
#include "text/Unicode.h"

#include <algorithm>

namespace glintar::arbiter {

namespace {

void addPriceIn(json::View object, const config::SourceConfig& source, CoinArbitrageData& row,
                platform::Platform& platform) {
    const auto value = market::valueAtPath(text::replaceAll(source.price_path, "{ID}", row.coin.apiId), object);
    if (const auto price = value ? value->number() : std::nullopt) {
        row.addPrice(priceOf(source, *price, platform));
    }
}

std::optional<json::View> objectMember(json::View object, std::string_view key) {
    const auto member = object.member(key);
    return member && member->isObject() ? member : std::nullopt;
}

}  // namespace

ArbiterPrice priceOf(const config::SourceConfig& source, double price, platform::Platform& platform) {
    return {
        .id = config::randomUuid(platform.entropy), .platformName = source.name, .iconName = source.id, .price = price};
}

void parseBatchResult(std::string body, const config::SourceConfig& source,
                      const std::vector<std::shared_ptr<CoinArbitrageData>>& rows, platform::Platform& platform) {
    const auto document = json::parseContainer(std::move(body));
    if (!document) {
        platform.console.log({"❌ [Arbiter] 解析失败: " + text::oneLine(source.name)});
        return;
    }
    const auto top = document->root();
    if (source.response_type == "array" && top.isArray()) {
        for (std::size_t i = 0; source.id_mapping_path && i < top.size(); ++i) {
            const auto mapped = market::valueAtPath(*source.id_mapping_path, top.at(i));
            const auto id = mapped ? mapped->string() : std::nullopt;
            const auto row = std::ranges::find_if(rows, [&](const auto& it) { return it && id == it->coin.apiId; });
            if (row != rows.end()) {
                addPriceIn(top.at(i), source, **row, platform);
            }
        }
        return;
    }
    for (const auto& row : rows) {
        if (!row) {
            continue;
        }
        const auto& key = source.batch_param_type == "symbol" ? row->coin.displayName : row->coin.apiId;
        auto object = objectMember(top, key);
        object = object ? object : objectMember(top, text::upper(key));
        if (object) {
            addPriceIn(*object, source, *row, platform);
        }
    }
}

void parseSingleResult(std::string body, const config::SourceConfig& source, CoinArbitrageData& row,
                       platform::Platform& platform) {
    const auto document = json::parseContainer(std::move(body));
    if (!document) {
        return;
    }
    auto object = document->root();
    if (source.response_type == "array_first" && object.size() > 0) {
        object = object.at(0);
    }
    if (object.isObject()) {
        addPriceIn(object, source, row, platform);
    }
}

}  // namespace glintar::arbiter
