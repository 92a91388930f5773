# Everything the products stand on, found once, with a compile check for each: what is missing or
# does not fit shows at configuration and not in the middle of a build.

find_package(Qt5 5.15 REQUIRED COMPONENTS Core Gui Widgets Concurrent Svg Test LinguistTools)
find_package(PkgConfig REQUIRED)
find_package(Threads REQUIRED)
find_package(GIF REQUIRED)
find_package(ZLIB REQUIRED)
find_package(SFML 2.5 REQUIRED COMPONENTS audio)
find_package(QuaZip-Qt5 REQUIRED)
pkg_check_modules(UCHARDET REQUIRED IMPORTED_TARGET uchardet)
pkg_check_modules(SAMPLERATE REQUIRED IMPORTED_TARGET samplerate)
pkg_check_modules(MPG123 REQUIRED IMPORTED_TARGET libmpg123)
pkg_check_modules(FLAC REQUIRED IMPORTED_TARGET flac)
pkg_check_modules(VORBIS REQUIRED IMPORTED_TARGET vorbis vorbisenc vorbisfile ogg)
pkg_check_modules(LUA REQUIRED IMPORTED_TARGET lua5.3)

find_path(SOL2_INCLUDE_DIR sol/sol.hpp REQUIRED)
add_library(Vela::sol2 INTERFACE IMPORTED)
target_include_directories(Vela::sol2 INTERFACE ${SOL2_INCLUDE_DIR})
target_link_libraries(Vela::sol2 INTERFACE PkgConfig::LUA)

# Compiles and links cmake/checks/NAME.cpp against the libraries given.
function(vela_check_dependency name)
    set(result VELA_CHECKED_${name})
    if(${result})
        return()
    endif()
    message(CHECK_START "Compiling against ${name}")
    try_compile(${result}
        ${CMAKE_BINARY_DIR}/checks/${name}
        SOURCES ${CMAKE_SOURCE_DIR}/cmake/checks/${name}.cpp
        LINK_LIBRARIES ${ARGN}
        CXX_STANDARD 17
        CXX_STANDARD_REQUIRED ON
        OUTPUT_VARIABLE output)
    if(NOT ${result})
        message(CHECK_FAIL "failed")
        message(FATAL_ERROR "${name} is installed but cannot be used; run scripts/setup.sh.\n${output}")
    endif()
    message(CHECK_PASS "works")
endfunction()

vela_check_dependency(uchardet PkgConfig::UCHARDET)
vela_check_dependency(giflib GIF::GIF)
vela_check_dependency(sfml sfml-audio)
vela_check_dependency(samplerate PkgConfig::SAMPLERATE)
vela_check_dependency(mpg123 PkgConfig::MPG123)
vela_check_dependency(flac PkgConfig::FLAC)
vela_check_dependency(vorbis PkgConfig::VORBIS)
vela_check_dependency(sol2 Vela::sol2)
vela_check_dependency(quazip QuaZip::QuaZip)
