# Keyed archives: fixtures, and the fuzzer's corpus replayed.

add_executable(unit_keyed_archive keyed_archive.cpp)
target_compile_definitions(unit_keyed_archive PRIVATE
    ARCHIVES="${PROJECT_SOURCE_DIR}/tests/data/keyed_archives"
    CORPUS="${PROJECT_SOURCE_DIR}/fuzzing/corpus/keyed_archive")
target_link_libraries(unit_keyed_archive PRIVATE platform GTest::gtest_main)
add_test(NAME Unit.unit_keyed_archive COMMAND unit_keyed_archive)
set_tests_properties(Unit.unit_keyed_archive PROPERTIES LABELS unit)
