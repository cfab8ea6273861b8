# The catalog and the two buttons, without a bundle and without windows, on fonts that a test makes up.
add_executable(font_tests main.cpp Fonts.cpp Popups.cpp
    ${CMAKE_SOURCE_DIR}/ImprinterPrefPane/VelIFontAttributePopupButton.cpp
    ${CMAKE_SOURCE_DIR}/ImprinterPrefPane/VelIFontPopupButton.cpp
    ${CMAKE_SOURCE_DIR}/ImprinterPrefPane/VelIFontPopupButtonCell.cpp
    ${CMAKE_SOURCE_DIR}/ImprinterPrefPane/VelIFonts.cpp)
target_include_directories(font_tests PRIVATE ${CMAKE_SOURCE_DIR}/ImprinterPrefPane)
target_link_libraries(font_tests PRIVATE host Qt6::Widgets GTest::gtest)
gtest_discover_tests(font_tests DISCOVERY_TIMEOUT 60 PROPERTIES LABELS pane ENVIRONMENT "LC_ALL=C")
