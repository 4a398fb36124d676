// A preference file of any content: read, written to, and read again.

#include "Fuzz.h"
#include "platform/qtcore/QtPreferences.h"
#include "platform/virtual/VirtualStores.h"

#include <unistd.h>

#include <filesystem>
#include <fstream>

using namespace glintar;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const auto folder = std::filesystem::temp_directory_path() / ("glintar-fuzz-" + std::to_string(::getpid()));
    std::filesystem::create_directories(folder);
    const auto file = folder / "glintar.conf";
    std::ofstream(file, std::ios::binary | std::ios::trunc) << inputText(data, size);
    platform::VirtualConsole console;
    {
        platform::QtPreferences preferences(file, console);
        static_cast<void>(preferences.data("savedCoins"));
        static_cast<void>(preferences.string("selectedSourceID"));
        static_cast<void>(preferences.integer("gasSource") + preferences.boolean("showGasFee"));
        preferences.setString("probe", "written");
    }
    const platform::QtPreferences again(file, console);
    require(again.string("probe") == "written");
    std::filesystem::remove_all(folder);
    return 0;
}
