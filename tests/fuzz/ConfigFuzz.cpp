#include "Fuzz.h"
#include "config/AppConfig.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace glintar;
    const auto config = config::decodeAppConfig(inputText(data, size));
    if (config) {
        for (const auto& source : config->sources) {
            require(config->source(source.id) != nullptr);
        }
    } else {
        require(!config.error().empty());
    }
    return 0;
}
