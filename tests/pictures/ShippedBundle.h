#pragma once

#include "platform/Directories.h"

#include <fmt/format.h>

#include <filesystem>

namespace glintar::test {

/// The shipped files, where they are in the source tree.
class ShippedBundle final : public platform::Bundle {
public:
    std::optional<std::filesystem::path> resource(std::string_view name, std::string_view extension) const override {
        std::filesystem::path path = fmt::format(GLINTAR_RESOURCES "/{}.{}", name, extension);
        return std::filesystem::exists(path) ? std::optional(path) : std::nullopt;
    }
    std::string version() const override { return {}; }
    std::string configServer() const override { return {}; }
};

}  // namespace glintar::test
