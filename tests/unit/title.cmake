# What a title is made of, and how it is edited: without a window.
add_executable(unit_title title_tokens.cpp title_splice.cpp ${CMAKE_SOURCE_DIR}/ImprinterPrefPane/TitleTokens.cpp)
target_include_directories(unit_title PRIVATE ${CMAKE_SOURCE_DIR}/ImprinterPrefPane)
target_link_libraries(unit_title PRIVATE host GTest::gtest_main)
add_test(NAME unit_title COMMAND unit_title --gtest_brief=1)
set_tests_properties(unit_title PROPERTIES LABELS unit)
