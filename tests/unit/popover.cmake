# When a popover says what, and where it stands.

add_executable(unit_popover popover_placement.cpp popover_state.cpp scroll_view.cpp)
target_include_directories(unit_popover PRIVATE ${CMAKE_SOURCE_DIR}/platform/common/AppKit)
target_link_libraries(unit_popover PRIVATE platform GTest::gtest_main)
add_test(NAME Unit.unit_popover COMMAND unit_popover)
set_tests_properties(Unit.unit_popover PROPERTIES LABELS unit)
