#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace glintar::test {

/// A whole file of the test data or of the shipped resources; fails the test when it is not there.
inline std::string readFile(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    EXPECT_TRUE(file) << path;
    return {std::istreambuf_iterator<char>(file), {}};
}

inline std::filesystem::path testData(const std::string& relative) {
    return std::filesystem::path(GLINTAR_TEST_DATA) / relative;
}

inline std::filesystem::path shippedResource(const std::string& relative) {
    return std::filesystem::path(GLINTAR_RESOURCES) / relative;
}

}  // namespace glintar::test
