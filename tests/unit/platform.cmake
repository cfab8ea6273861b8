# What the platform layer does without a toolkit: the objects themselves, linked into a program that has none.

add_library(unit_bundle MODULE platform_bundle_class.cpp)
target_include_directories(unit_bundle PRIVATE ${PROJECT_SOURCE_DIR}/platform/include)
target_link_options(unit_bundle PRIVATE -Wl,-z,undefs) # the layer is found in the program that loads it

add_executable(unit_platform
    platform_bundle.cpp
    platform_class.cpp
    platform_control.cpp
    platform_fonts.cpp
    platform_foundation.cpp
    platform_index_set.cpp
    platform_notification.cpp
    platform_string.cpp
    platform_strings_table.cpp
    platform_tab_view.cpp
    platform_table_view.cpp
    platform_text_field.cpp
    platform_token_field.cpp
    platform_toolkit.cpp
    platform_window.cpp
    token_text.cpp
    $<TARGET_OBJECTS:platform_common>
)
set_target_properties(unit_platform PROPERTIES ENABLE_EXPORTS ON)
target_include_directories(unit_platform PRIVATE
    ${PROJECT_SOURCE_DIR}/platform/include
    ${PROJECT_SOURCE_DIR}/platform/common/AppKit
    ${PROJECT_SOURCE_DIR}/platform/common/Foundation
)
target_compile_definitions(unit_platform PRIVATE BUNDLE_LIBRARY="$<TARGET_FILE:unit_bundle>")
target_link_libraries(unit_platform PRIVATE PkgConfig::FONTCONFIG EXPAT::EXPAT GTest::gtest_main ${CMAKE_DL_LIBS})
add_dependencies(unit_platform unit_bundle)
# One process for all: starting one for each test would take ten times as long as the tests.
add_test(NAME unit_platform COMMAND unit_platform --gtest_brief=1)
set_tests_properties(unit_platform PROPERTIES LABELS unit)
