#pragma once

#include <cstdint>
#include <cstdlib>
#include <string>

namespace glintar {

inline std::string inputText(const std::uint8_t* data, std::size_t size) {
    return {reinterpret_cast<const char*>(data), size};
}

/// A finding, in every build.
inline void require(bool holds) {
    if (!holds) {
        std::abort();
    }
}

}  // namespace glintar

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);
