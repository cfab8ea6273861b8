# The Location editor's parts that need no window.
add_executable(unit_location location_formatter.cpp location_page_list.cpp ${CMAKE_SOURCE_DIR}/ImprinterPrefPane/PageList.cpp)
target_include_directories(unit_location PRIVATE ${CMAKE_SOURCE_DIR}/ImprinterPrefPane)
target_link_libraries(unit_location PRIVATE host GTest::gtest_main)
add_test(NAME unit_location COMMAND unit_location --gtest_brief=1)
set_tests_properties(unit_location PROPERTIES LABELS unit)
