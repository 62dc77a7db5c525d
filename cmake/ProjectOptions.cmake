# Settings that every target shares. Targets take them by linking to project_options.
set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_BUILD_RPATH_USE_ORIGIN ON)
set(CMAKE_INSTALL_RPATH $ORIGIN)

option(ROTOR_TRIM_SANITIZE "Build with the address and undefined-behaviour sanitizers" OFF)
option(ROTOR_TRIM_LIBFUZZER "Build the fuzz targets with libFuzzer (needs clang) instead of the replay main" OFF)
option(ROTOR_TRIM_PCH "Use precompiled headers" ON)

find_program(CCACHE_PROGRAM ccache)
if(CCACHE_PROGRAM)
    # base_dir and no hash of the working directory: clones in other folders share the cache.
    set(CMAKE_CXX_COMPILER_LAUNCHER
        ${CMAKE_COMMAND} -E env CCACHE_BASEDIR=${CMAKE_SOURCE_DIR} CCACHE_NOHASHDIR=1
        CCACHE_SLOPPINESS=pch_defines,time_macros,include_file_mtime,include_file_ctime ${CCACHE_PROGRAM})
endif()

add_library(project_options INTERFACE)
target_include_directories(project_options INTERFACE ${CMAKE_SOURCE_DIR})
target_compile_options(project_options INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Werror
    # Figures are the same bits on every machine: no fused multiply-add behind our back.
    -ffp-contract=off)
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # g++ 12 sees overlaps in std::string's operator+ that aren't there (GCC bug 105651).
    target_compile_options(project_options INTERFACE -Wno-restrict)
endif()
if(ROTOR_TRIM_SANITIZE)
    target_compile_options(project_options INTERFACE
        -fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    target_link_options(project_options INTERFACE -fsanitize=address,undefined)
    add_library(leaks OBJECT ${CMAKE_CURRENT_LIST_DIR}/leaks.cpp)
    target_link_libraries(project_options INTERFACE
        $<$<STREQUAL:$<TARGET_PROPERTY:TYPE>,EXECUTABLE>:$<TARGET_OBJECTS:leaks>>)
    if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
        # With the sanitizers' instrumentation g++ 12 takes members of std::regex for uninitialized.
        target_compile_options(project_options INTERFACE -Wno-maybe-uninitialized)
    endif()
endif()
if(ROTOR_TRIM_LIBFUZZER)
    # Coverage of the code under test, not of the fuzz target alone: it is what the search goes by.
    target_compile_options(project_options INTERFACE -fsanitize=fuzzer-no-link)
endif()

find_program(LLD_PROGRAM ld.lld)
if(LLD_PROGRAM)
    target_link_options(project_options INTERFACE -fuse-ld=lld)
endif()
