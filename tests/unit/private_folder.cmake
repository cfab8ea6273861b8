# The folder in which the program keeps its previews.

add_executable(unit_private_folder private_folder.cpp ${CMAKE_SOURCE_DIR}/standalone/app/PrivateFolder.cpp)
target_include_directories(unit_private_folder PRIVATE ${CMAKE_SOURCE_DIR}/standalone/app)
target_link_libraries(unit_private_folder PRIVATE GTest::gtest_main)
add_test(NAME Unit.unit_private_folder COMMAND unit_private_folder)
set_tests_properties(Unit.unit_private_folder PROPERTIES LABELS unit)
