# The engine's parts that know no toolkit.
add_executable(unit_engine
    ${CMAKE_SOURCE_DIR}/tests/support/LeakSuppressions.cpp
    ${CMAKE_SOURCE_DIR}/tests/unit/engine_content.cpp
    ${CMAKE_SOURCE_DIR}/tests/unit/engine_layout.cpp
    ${CMAKE_SOURCE_DIR}/tests/unit/engine_pages.cpp
    ${CMAKE_SOURCE_DIR}/tests/unit/engine_placement.cpp
)
target_include_directories(unit_engine PRIVATE ${CMAKE_SOURCE_DIR}/standalone/engine)
target_link_libraries(unit_engine PRIVATE engine_layout GTest::gtest_main)
add_test(NAME Unit.unit_engine COMMAND unit_engine)
set_tests_properties(Unit.unit_engine PROPERTIES LABELS unit)
