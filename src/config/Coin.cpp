#include "config/Coin.h"

#include "config/JsonMembers.h"
#include "json/JsonWriter.h"
#include "platform/Console.h"
#include "platform/Machine.h"
#include "platform/Platform.h"
#include "platform/Preferences.h"
#include "platform/Registry.h"

#include <array>
#include <cstddef>
#include <utility>

namespace glintar::config {

namespace {

constexpr std::size_t kUuidLength = 36;

bool isHyphenPlace(std::size_t index) {
    return index == 8 || index == 13 || index == 18 || index == 23;
}

/// The UUID in upper case, as it is kept and written; none when the text is none.
std::optional<std::string> canonicalUuid(std::string_view text) {
    if (text.size() != kUuidLength) {
        return std::nullopt;
    }
    std::string result(text);
    for (std::size_t i = 0; i < kUuidLength; ++i) {
        char& c = result[i];
        if (c >= 'a' && c <= 'f') {
            c = static_cast<char>(c - 'a' + 'A');
        }
        const bool isHexDigit = (c >= '0' && c <= '9') || (c >= 'A' && c <= 'F');
        if (isHyphenPlace(i) ? c != '-' : !isHexDigit) {
            return std::nullopt;
        }
    }
    return result;
}

/// What was said last of the saved coins, which are read all the time.
struct SaidOfCoins {
    std::string problem;
};

}  // namespace

std::string randomUuid(platform::Entropy& entropy) {
    std::array<std::byte, 16> bytes{};
    entropy.fill(bytes);
    bytes[6] = (bytes[6] & std::byte{0x0f}) | std::byte{0x40};
    bytes[8] = (bytes[8] & std::byte{0x3f}) | std::byte{0x80};
    constexpr std::string_view kDigits = "0123456789ABCDEF";
    std::string result;
    result.reserve(kUuidLength);
    for (const std::byte byte : bytes) {
        if (isHyphenPlace(result.size())) {
            result += '-';
        }
        result += kDigits[std::to_integer<std::size_t>(byte >> 4)];
        result += kDigits[std::to_integer<std::size_t>(byte & std::byte{0x0f})];
    }
    return result;
}

Coin makeCoin(platform::Entropy& entropy, std::string displayName, std::string apiId,
              std::optional<double> referencePrice) {
    return {.id = randomUuid(entropy),
            .displayName = std::move(displayName),
            .apiId = std::move(apiId),
            .referencePrice = referencePrice};
}

std::vector<Coin> defaultCoinList(platform::Entropy& entropy) {
    return {makeCoin(entropy, "BTC", "bitcoin", 0)};
}

std::string encodeCoins(const std::vector<Coin>& coins) {
    json::Writer writer;
    writer.beginArray();
    for (const Coin& coin : coins) {
        writer.beginObject();
        writer.key("id").string(canonicalUuid(coin.id).value_or(coin.id));
        writer.key("displayName").string(coin.displayName);
        writer.key("apiId").string(coin.apiId);
        if (coin.referencePrice) {
            writer.key("referencePrice").number(*coin.referencePrice);
        }
        writer.endObject();
    }
    writer.endArray();
    return std::string(writer.text());
}

std::expected<std::vector<Coin>, std::string> decodeCoins(std::string text) {
    const auto document = json::Document::parse(std::move(text));
    if (!document) {
        return std::unexpected(document.error().text());
    }
    const json::View root = document->root();
    if (!root.isArray()) {
        return std::unexpected("The list is not an array.");
    }
    std::vector<Coin> coins(root.size());
    for (std::size_t i = 0; i < coins.size(); ++i) {
        Coin& coin = coins[i];
        JsonMembers members(root.at(i), fmt::format("[{}]", i));
        members.required("id", coin.id)
            .required("displayName", coin.displayName)
            .required("apiId", coin.apiId)
            .optional("referencePrice", coin.referencePrice);
        if (members.error()) {
            return std::unexpected(*members.error());
        }
        auto id = canonicalUuid(coin.id);
        if (!id) {
            return std::unexpected(fmt::format("[{}].id: not a UUID", i));
        }
        coin.id = std::move(*id);
    }
    return coins;
}

std::vector<Coin> loadSavedCoins(platform::Platform& platform) {
    if (auto saved = platform.preferences.data(kSavedCoinsKey)) {
        auto coins = decodeCoins(std::move(*saved));
        auto& said = platform.registry.shared<SaidOfCoins>([] { return std::make_shared<SaidOfCoins>(); });
        const auto problem = coins ? std::string() : coins.error();
        if (std::exchange(said.problem, problem) != problem && !problem.empty()) {
            platform.console.print("⚠️ [Coins] savedCoins cannot be read, Bitcoin is shown instead: " + problem);
        }
        if (coins) {
            return std::move(*coins);
        }
    }
    return defaultCoinList(platform.entropy);
}

}  // namespace glintar::config
