# The stand-alone host's configurations in memory and on disk.

add_executable(unit_model model_configuration.cpp model_font_run.cpp model_history.cpp model_host_classes.cpp model_list.cpp)
target_link_libraries(unit_model PRIVATE model GTest::gtest_main)
add_test(NAME Unit.unit_model COMMAND unit_model)
set_tests_properties(Unit.unit_model PROPERTIES LABELS unit)

add_executable(unit_store_orders store_orders.cpp)
target_include_directories(unit_store_orders PRIVATE ${CMAKE_SOURCE_DIR}/standalone/store)
target_link_libraries(unit_store_orders PRIVATE store Qt6::Core GTest::gtest_main)
add_test(NAME Unit.unit_store_orders COMMAND unit_store_orders)
set_tests_properties(Unit.unit_store_orders PROPERTIES LABELS unit)

add_executable(unit_store store_defaults.cpp store_exchange.cpp store_merging.cpp store_round_trip.cpp store_support.cpp)
target_compile_definitions(unit_store PRIVATE FORMAT_DOCUMENT="${PROJECT_SOURCE_DIR}/docs/file-format.md")
target_link_libraries(unit_store PRIVATE files store GTest::gtest_main)
add_test(NAME Unit.unit_store COMMAND unit_store)
set_tests_properties(Unit.unit_store PROPERTIES LABELS unit)
