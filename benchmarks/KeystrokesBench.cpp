// What one more letter in the settings' name field takes: a look at the whole catalogue, and the twenty suggestions.

#include "benchmarks/Benches.h"
#include "benchmarks/Measure.h"
#include "platform/posix/PosixFiles.h"
#include "platform/virtual/VirtualPlatform.h"
#include "settings/coinsSettingsViewModel.h"
#include "text/Unicode.h"

#include <fmt/format.h>

#include <algorithm>
#include <set>

namespace glintar::bench {

namespace {

constexpr std::size_t kMany = 50'000;
constexpr std::size_t kLongest = 6;
constexpr std::size_t kTyped = 5'000;  // of all beginnings, evenly spread

/// The shipped catalogue again and again, each time under other identifiers.
std::string enlarged(const config::CoinCatalogue& catalogue) {
    std::string text = "[";
    for (std::size_t i = 0; i < kMany; ++i) {
        const auto entry = catalogue[i % catalogue.size()];
        text += fmt::format(R"({}{{"id":"{}-{}","symbol":"{}","name":"{}"}})", i ? "," : "", entry.id,
                            i / catalogue.size(), entry.id.substr(0, 5), entry.id);
    }
    return text + "]";
}

/// Milliseconds of processor time that 95 of 100 keystrokes take at most.
double keystroke(const std::string& document, const std::vector<std::string>& typed) {
    platform::VirtualPlatform machine;
    machine.files.contents["/bundle/coingecko_coins_list.json"] = document;
    settings::coinsSettingsViewModel model(machine.platform());
    model.loadCoinCatalogue();
    std::vector<double> times;
    for (const auto& text : typed) {
        const double begin = processorSeconds();
        model.setName(text);
        times.push_back((processorSeconds() - begin) * 1e3);
    }
    std::ranges::sort(times);
    return times[times.size() * 95 / 100];
}

}  // namespace

void benchKeystrokes(const std::string& resources) {
    const auto document = platform::PosixFiles().read(resources + "/coingecko_coins_list.json").value();
    const auto catalogue = config::CoinCatalogue::decode(document).value();
    std::set<std::string> beginnings;
    for (std::size_t i = 0; i < catalogue.size(); ++i) {
        const auto entry = catalogue[i];
        for (const auto text : {entry.symbol, entry.id, entry.name}) {
            for (std::size_t letters = 1; letters <= kLongest; ++letters) {
                beginnings.insert(text::lower(text::firstCharacters(text, letters)));
            }
        }
    }
    std::vector<std::string> typed;
    std::size_t at = 0;
    for (const auto& beginning : beginnings) {
        if (at++ % (beginnings.size() / kTyped + 1) == 0) {
            typed.push_back(beginning);
        }
    }
    printRow({fmt::format("a keystroke over {} coins, 95th percentile", catalogue.size()), keystroke(document, typed),
              0, 0.3, "ms", ""});
    printRow({fmt::format("a keystroke over {} coins, 95th percentile", kMany), keystroke(enlarged(catalogue), typed),
              0, 1, "ms", ""});
}

}  // namespace glintar::bench
