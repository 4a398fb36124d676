#pragma once

#include <cstddef>
#include <cstdint>
#include <expected>
#include <string>
#include <string_view>
#include <vector>

namespace glintar::platform {
struct Platform;
}

namespace glintar::config {

/// One entry of the coin catalogue; texts belong to the catalogue.
struct CoinEntry {
    std::string_view id;      ///< becomes `Coin::apiId`
    std::string_view symbol;  ///< in upper case it becomes `Coin::displayName`
    std::string_view name;
};

/// Every coin the user can choose, in the order of the document, packed into one block of memory. It is read by events,
/// since a document tree would take several times as much.
class CoinCatalogue {
public:
    /// Reads a JSON array of objects with the texts "id", "symbol" and "name"; other keys are ignored. An element that
    /// lacks one of them, or has it in another type, refuses the document.
    [[nodiscard]] static std::expected<CoinCatalogue, std::string> decode(std::string text);

    [[nodiscard]] std::size_t size() const;
    [[nodiscard]] bool empty() const { return size() == 0; }
    [[nodiscard]] CoinEntry operator[](std::size_t index) const;

private:
    std::string arena_;                   ///< entries one after the other, texts with their lengths before them
    std::vector<std::uint32_t> entries_;  ///< where each begins
};

/// The user's downloaded copy when it can be read, else the shipped one; says on the console which. Empty when neither
/// can be read or the chosen one does not decode. Blocks while it reads. Main thread.
[[nodiscard]] CoinCatalogue loadCoinCatalogue(platform::Platform& platform);

}  // namespace glintar::config
