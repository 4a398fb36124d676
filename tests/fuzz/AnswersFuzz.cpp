// Answers of services, each read in all four shapes, with the names of members that the real ones have.

#include "Fuzz.h"
#include "config/AppConfig.h"
#include "config/Coin.h"
#include "market/Extraction.h"
#include "platform/virtual/VirtualStores.h"

#include <array>

using namespace glintar;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    struct Shape {
        const char* type;
        const char* price;
    };
    static constexpr std::array kShapes{Shape{"array", "current_price"}, Shape{"dictionary", "usd"},
                                        Shape{"array_first", "last"}, Shape{"object", "data.last"}};
    const auto body = inputText(data, size);
    const std::vector<config::Coin> coins{{.apiId = "bitcoin"}, {.apiId = "ethereum"}};
    platform::VirtualConsole console;
    for (const auto& [type, price] : kShapes) {
        const config::SourceConfig source{.id = "s",
                                          .response_type = type,
                                          .id_mapping_path = "id",
                                          .image_path = "image",
                                          .price_path = price,
                                          .change_path = "price_change_percentage_24h",
                                          .high_path = "high_24h",
                                          .low_path = "low_24h",
                                          .sparkline_path = "sparkline_in_7d.price"};
        // Both readers must bear any configuration, whatever shape it names.
        for (const auto& [id, quote] : market::parseBatchResponse(body, source, coins, console)) {
            require(quote.price == quote.price && (!quote.sparkline || quote.sparkline->size() <= 24));
        }
        if (const auto quote = market::parseSingleResponse(body, source, "bitcoin", console)) {
            require(quote->price == quote->price);
        }
    }
    return 0;
}
