#include "Fuzz.h"
#include "config/Coin.h"

// What was read and written once reads and writes the same for ever.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace glintar;
    const auto coins = config::decodeCoins(inputText(data, size));
    if (!coins) {
        return 0;
    }
    const std::string written = config::encodeCoins(*coins);
    const auto again = config::decodeCoins(written);
    require(again && again->size() == coins->size());
    for (std::size_t i = 0; i < coins->size(); ++i) {
        const config::Coin& before = coins->at(i);
        const config::Coin& after = again->at(i);
        require(before.id == after.id && before.displayName == after.displayName && before.apiId == after.apiId);
        require(before.referencePrice == after.referencePrice);
    }
    require(config::encodeCoins(*again) == written);
    return 0;
}
