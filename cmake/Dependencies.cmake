find_package(Threads REQUIRED)
find_package(fmt REQUIRED)
find_package(ICU REQUIRED COMPONENTS uc)
find_package(CURL REQUIRED)
find_package(OpenSSL REQUIRED)
find_package(Qt6 6.4 REQUIRED COMPONENTS Core DBus Gui Svg Widgets)
find_package(PkgConfig REQUIRED)
pkg_check_modules(LIBSECRET REQUIRED IMPORTED_TARGET libsecret-1)
pkg_check_modules(XCB REQUIRED IMPORTED_TARGET xcb xcb-shape xcb-xfixes)

# RapidJSON has headers only, and Debian's package brings no target.
find_path(RAPIDJSON_INCLUDE_DIR rapidjson/document.h REQUIRED)
add_library(glintar_rapidjson INTERFACE)
target_include_directories(glintar_rapidjson SYSTEM INTERFACE ${RAPIDJSON_INCLUDE_DIR})
