#include "demo/MarketScene.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace glintar::demo {

namespace {

Answer mempool(const Scene& scene) {
    if (scene.question.path != "/api/v1/fees/recommended") {
        return refusal(404, "error", "Not found");
    }
    const double fee = scene.market.fees(scene.step).bitcoin;
    json::Writer writer;
    writer.beginObject();
    const auto whole = [&](std::string_view key, double part) {
        writer.key(key).number(std::max(std::round(fee * part), 1.0));
    };
    whole("fastestFee", 1.5);
    whole("halfHourFee", 1);
    whole("hourFee", 0.8);
    whole("economyFee", 0.4);
    whole("minimumFee", 0.2);
    writer.endObject();
    return {200, std::string(writer.text())};
}

Answer blockscout(const Scene& scene) {
    if (scene.question.path != "/api/v2/stats") {
        return refusal(404, "message", "Not found");
    }
    const double fee = scene.market.fees(scene.step).ethereum;
    const double price = scene.market.byId("ethereum", scene.step).price;
    const auto hundredths = [](double value) { return std::round(value * 100) / 100; };
    json::Writer writer;
    writer.beginObject().key("average_block_time").integer(12000).key("coin_price").string(plain(price));
    writer.key("gas_price_updated_at").string(scene.timestamp()).key("gas_prices").beginObject();
    writer.key("slow").number(hundredths(fee * 0.6)).key("average").number(hundredths(fee));
    writer.key("fast").number(hundredths(fee * 2.6)).endObject();
    writer.key("gas_prices_update_in").integer(18461).key("gas_used_today").string("216713915844");
    writer.key("market_cap").string(fmt::format("{:.2f}", price * 120'000'000));
    writer.key("network_utilization_percentage").number(56.6).key("total_addresses").string("738505157");
    writer.key("total_blocks").string("26156417").key("total_transactions").string("3793417199");
    writer.key("transactions_today").string("1836071").key("tvl").null().endObject();
    return {200, std::string(writer.text())};
}

Answer blockchainInfo(const Scene& scene) {
    if (scene.question.path != "/mempool/fees") {
        return refusal(404, "error", "Not found");
    }
    const double fee = scene.market.fees(scene.step).bitcoin;
    json::Writer writer;
    writer.beginObject().key("limits").beginObject().key("min").integer(2).key("max").integer(79).endObject();
    writer.key("regular").number(std::max(std::round(fee), 1.0));
    writer.key("priority").number(std::max(std::round(fee * 1.6), 1.0)).endObject();
    return {200, std::string(writer.text())};
}

Answer beaconchain(const Scene& scene) {
    if (scene.question.path != "/api/v1/execution/gasnow") {
        return refusal(404, "status", "ERROR: not found");
    }
    const double fee = scene.market.fees(scene.step).ethereum;
    json::Writer writer;
    writer.beginObject().key("code").integer(200).key("data").beginObject();
    for (const auto& [key, part] : {std::pair{"rapid", 2.6}, {"fast", 1.4}, {"standard", 1.0}, {"slow", 0.6}}) {
        writer.key(key).number(std::round(fee * part * 1e9));
    }
    writer.endObject().endObject();
    return {200, std::string(writer.text())};
}

}  // namespace

std::optional<Answer> feeAnswer(const Scene& scene) {
    const std::string& service = scene.question.service;
    if (service == "mempool") {
        return mempool(scene);
    }
    if (service == "blockscout") {
        return blockscout(scene);
    }
    if (service == "blockchain") {
        return blockchainInfo(scene);
    }
    if (service == "beaconchain") {
        return beaconchain(scene);
    }
    return std::nullopt;
}

}  // namespace glintar::demo
