# What holds for every target of the tree: language, warnings, sanitizers, where things are put.

set(CMAKE_CXX_STANDARD 20)
set(CMAKE_CXX_STANDARD_REQUIRED ON)
set(CMAKE_CXX_EXTENSIONS OFF)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/lib)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bin)
set(CMAKE_LINK_WHAT_YOU_USE OFF)

option(IMPRINTER_TESTS "Build the tests" ON)
option(IMPRINTER_BENCH "Build the benches" ON)
option(IMPRINTER_SANITIZE "Build with the address and undefined-behaviour sanitizers" OFF)
option(IMPRINTER_FUZZ "Build the fuzzers, everything with both sanitizers (clang only)" OFF)

find_program(CCACHE ccache)
if(CCACHE)
    set(CMAKE_CXX_COMPILER_LAUNCHER ${CCACHE})
endif()

add_compile_options(-Wall -Wextra -Wpedantic -Wshadow -Wnon-virtual-dtor -Woverloaded-virtual -Wold-style-cast -Werror)
# g++ 12 falsely reports overlapping copies in sums of texts when it optimizes fully.
if(CMAKE_CXX_COMPILER_ID STREQUAL GNU AND CMAKE_CXX_COMPILER_VERSION VERSION_LESS 13)
    add_compile_options(-Wno-restrict)
endif()
add_link_options(-Wl,--as-needed)
if(NOT IMPRINTER_FUZZ) # clang's sanitizers are in programs alone
    add_link_options(-Wl,--no-undefined)
endif()
if(IMPRINTER_SANITIZE)
    add_compile_options(-fsanitize=address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=address,undefined)
endif()
if(IMPRINTER_FUZZ)
    add_compile_options(-fsanitize=fuzzer-no-link,address,undefined -fno-sanitize-recover=all -fno-omit-frame-pointer)
    add_link_options(-fsanitize=fuzzer-no-link,address,undefined)
endif()

# The headers below a folder are what others may include of a target. Each has to compile alone.
function(public_headers target folder)
    get_target_property(type ${target} TYPE)
    set(scope PUBLIC)
    if(type STREQUAL INTERFACE_LIBRARY)
        set(scope INTERFACE)
    endif()
    file(GLOB_RECURSE headers CONFIGURE_DEPENDS ${CMAKE_CURRENT_SOURCE_DIR}/${folder}/*.h)
    target_sources(${target} ${scope} FILE_SET HEADERS BASE_DIRS ${CMAKE_CURRENT_SOURCE_DIR}/${folder} FILES ${headers})
    set_target_properties(${target} PROPERTIES VERIFY_INTERFACE_HEADER_SETS ON)
endfunction()

# Where the program's libraries and bundles are installed, below the prefix. The program finds them from its own place, so
# that the whole can be moved.
set(IMPRINTER_FOLDER lib/imprinter)
set(IMPRINTER_LIBRARIES ${IMPRINTER_FOLDER}/lib) # deep enough to be no folder the linker searches
set(IMPRINTER_HEADERS include/imprinter)

# Installs a shared library for those who run the program, and its headers for those who write a host.
function(install_library target export)
    install(TARGETS ${target} EXPORT ${export}
        LIBRARY DESTINATION ${IMPRINTER_LIBRARIES} COMPONENT program
        FILE_SET HEADERS DESTINATION ${IMPRINTER_HEADERS} COMPONENT development)
endfunction()

function(install_headers target export)
    install(TARGETS ${target} EXPORT ${export}
        FILE_SET HEADERS DESTINATION ${IMPRINTER_HEADERS} COMPONENT development)
endfunction()
