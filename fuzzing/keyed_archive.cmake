# With clang and IMPRINTER_FUZZ a fuzzer; without, a program that replays the corpus, as a test does.

add_executable(fuzz_keyed_archive keyed_archive.cpp)
target_link_libraries(fuzz_keyed_archive PRIVATE platform)
if(IMPRINTER_FUZZ)
    target_compile_options(fuzz_keyed_archive PRIVATE -fsanitize=fuzzer)
    target_link_options(fuzz_keyed_archive PRIVATE -fsanitize=fuzzer)
else()
    target_sources(fuzz_keyed_archive PRIVATE replay.cpp)
    add_test(NAME fuzz.keyed_archive COMMAND fuzz_keyed_archive ${CMAKE_CURRENT_SOURCE_DIR}/corpus/keyed_archive)
    set_tests_properties(fuzz.keyed_archive PROPERTIES LABELS unit TIMEOUT 60 PASS_REGULAR_EXPRESSION "1[0-9][0-9] inputs")
endif()
