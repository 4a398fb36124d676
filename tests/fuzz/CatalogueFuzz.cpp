#include "Fuzz.h"
#include "config/CoinCatalogue.h"
#include "json/Json.h"

// The packed catalogue must hold what the document holds.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace glintar;
    const auto catalogue = config::CoinCatalogue::decode(inputText(data, size));
    if (!catalogue) {
        require(!catalogue.error().empty());
        return 0;
    }
    const auto document = json::Document::parse(inputText(data, size));
    require(document && document->root().size() == catalogue->size());
    for (std::size_t i = 0; i < catalogue->size(); ++i) {
        const json::View element = document->root().at(i);
        const config::CoinEntry entry = (*catalogue)[i];
        require(element.member("id")->string() == entry.id);
        require(element.member("symbol")->string() == entry.symbol);
        require(element.member("name")->string() == entry.name);
    }
    return 0;
}
