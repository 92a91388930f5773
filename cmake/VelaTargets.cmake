# One line adds a test, a fuzz target or a benchmark.

# vela_test(NAME SOURCES... [LIBRARIES ...] [TIMEOUT seconds] [XVFB])
#
# A Qt Test program, run without the user's settings and without a display, or with XVFB on a
# display of its own.
function(vela_test name)
    cmake_parse_arguments(ARG "XVFB" "TIMEOUT" "LIBRARIES" ${ARGN})
    add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
    target_link_libraries(${name} PRIVATE
        $<TARGET_NAME_IF_EXISTS:vela_qtthreads> vela_test_support Qt5::Test ${ARG_LIBRARIES})
    target_include_directories(${name} PRIVATE ${CMAKE_SOURCE_DIR}/tests)
    target_precompile_headers(${name} REUSE_FROM vela_test_support)
    set_target_properties(${name} PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/tests)
    if(ARG_XVFB)
        add_test(NAME ${name} COMMAND ${CMAKE_SOURCE_DIR}/scripts/with_display.sh $<TARGET_FILE:${name}>)
    else()
        add_test(NAME ${name} COMMAND ${name})
        set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT QT_QPA_PLATFORM=offscreen)
    endif()
    vela_set_test_environment(${name} "${ARG_TIMEOUT}")
endfunction()

# Settings common to every test: nothing of the user's, one language, a limit of time.
function(vela_set_test_environment name timeout)
    if(NOT timeout)
        set(timeout 120)
    endif()
    set_tests_properties(${name} PROPERTIES TIMEOUT ${timeout})
    set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT
        LC_ALL=C.UTF-8
        VELA_BUILD_DIR=${CMAKE_BINARY_DIR}
        VELA_SOURCE_DIR=${CMAKE_SOURCE_DIR}
        XDG_CONFIG_HOME=${CMAKE_BINARY_DIR}/test-home/config
        XDG_DATA_HOME=${CMAKE_BINARY_DIR}/test-home/data
        XDG_CACHE_HOME=${CMAKE_BINARY_DIR}/test-home/cache
        ASAN_OPTIONS=detect_leaks=1:fast_unwind_on_malloc=0:allocator_may_return_null=1
        LSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/lsan.supp:print_suppressions=0
        TSAN_OPTIONS=suppressions=${CMAKE_SOURCE_DIR}/tests/tsan.supp)
endfunction()

# vela_fuzzer(NAME SOURCES... CORPUS folder [LIBRARIES ...])
#
# A libFuzzer program; the test runs it for 20 seconds from the seeds in fuzz/corpus/FOLDER. What
# it finds on the way goes to the build tree.
function(vela_fuzzer name)
    cmake_parse_arguments(ARG "" "CORPUS" "LIBRARIES" ${ARGN})
    add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
    target_link_libraries(${name} PRIVATE velacore ${ARG_LIBRARIES})
    target_link_options(${name} PRIVATE -fsanitize=fuzzer)
    set(grown ${CMAKE_BINARY_DIR}/corpus/${ARG_CORPUS})
    file(MAKE_DIRECTORY ${grown})
    add_test(NAME ${name} COMMAND ${name}
        -max_total_time=20 -timeout=10 -rss_limit_mb=2048 -print_final_stats=1 -max_len=65536
        ${grown} ${CMAKE_CURRENT_SOURCE_DIR}/corpus/${ARG_CORPUS})
    vela_set_test_environment(${name} 120)
    set_property(TEST ${name} APPEND PROPERTY ENVIRONMENT QT_QPA_PLATFORM=offscreen)
endfunction()

# vela_bench(NAME SOURCES... [LIBRARIES ...])
function(vela_bench name)
    cmake_parse_arguments(ARG "" "" "LIBRARIES" ${ARGN})
    add_executable(${name} ${ARG_UNPARSED_ARGUMENTS})
    target_link_libraries(${name} PRIVATE velacore benchmark::benchmark ${ARG_LIBRARIES})
    set_target_properties(${name} PROPERTIES
        RUNTIME_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/bench)
endfunction()
