# The folder in which the program keeps its previews.

add_executable(unit_private_folder private_folder.cpp)
target_link_libraries(unit_private_folder PRIVATE files GTest::gtest_main)
add_test(NAME Unit.unit_private_folder COMMAND unit_private_folder)
set_tests_properties(Unit.unit_private_folder PROPERTIES LABELS unit)
