#pragma once

#include "platform/Directories.h"

#include <fmt/format.h>

#include <filesystem>

namespace glintar::test {

/// What is shipped, in any folder; where nothing is said, as it lies in the source tree.
class FolderBundle final : public platform::Bundle {
public:
    explicit FolderBundle(std::filesystem::path folder = GLINTAR_RESOURCES) : folder_(std::move(folder)) {}

    std::optional<std::filesystem::path> resource(std::string_view name, std::string_view extension) const override {
        auto path = folder_ / fmt::format("{}.{}", name, extension);
        return std::filesystem::exists(path) ? std::optional(path) : std::nullopt;
    }
    std::string version() const override { return "1"; }
    std::string configServer() const override { return {}; }

private:
    std::filesystem::path folder_;
};

}  // namespace glintar::test
