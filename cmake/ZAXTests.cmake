# zax_set_test_options(<target> <all texts?>)
# How the code of tests is compiled: what matters is how long that takes, so nothing is optimised.
function(zax_set_test_options target is_all_texts)
    target_link_libraries(${target} PRIVATE Qt6::Gui Qt6::Test ZAXFlags)
    # These are others in each folder.
    target_compile_options(${target} PRIVATE -O0 -UQT_TESTCASE_SOURCEDIR -UQT_TESTCASE_BUILDDIR)
    if(is_all_texts)
        target_compile_options(${target} PRIVATE -UQT_NO_CAST_FROM_ASCII)
    endif()
endfunction()

# What tests include of Qt is compiled once for those that are all texts, and once for the others. Compiler caches keep
# what was compiled without that.
if(CMAKE_CXX_COMPILER_LAUNCHER)
    set(ZAX_TEST_HEADERS OFF)
else()
    set(ZAX_TEST_HEADERS ON)
    foreach(is_all_texts IN ITEMS ON OFF)
        set(target ZAXTestHeaders${is_all_texts})
        if(TARGET ${target})
            continue()
        endif()
        file(CONFIGURE OUTPUT "${CMAKE_CURRENT_BINARY_DIR}/${target}.cpp" CONTENT "\n")
        add_library(${target} OBJECT "${CMAKE_CURRENT_BINARY_DIR}/${target}.cpp")
        set_target_properties(${target} PROPERTIES AUTOMOC OFF)
        zax_set_test_options(${target} ${is_all_texts})
        target_precompile_headers(${target} PRIVATE "${PROJECT_SOURCE_DIR}/tests/TestHeaders.h")
    endforeach()
endif()

# zax_add_test(<name> [ALL_TEXTS] SOURCES <file>... [LIBRARIES <target>...])
# One Qt Test program, run twice by ctest: under the C locale and under one with a decimal comma. It gets a home of its
# own, so that no test reads or writes the user's. ALL_TEXTS: literals are texts without saying so.
function(zax_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "ALL_TEXTS" "" "SOURCES;LIBRARIES")
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE ${arg_LIBRARIES})
    if(arg_ALL_TEXTS)
        set(is_all_texts ON)
    else()
        set(is_all_texts OFF)
    endif()
    zax_set_test_options(${name} ${is_all_texts})
    if(ZAX_TEST_HEADERS)
        target_precompile_headers(${name} REUSE_FROM ZAXTestHeaders${is_all_texts})
    endif()
    zax_register_test(${name} ${name})
endfunction()

# zax_register_test(<name> <command> [<argument>...])
# Has ctest run a command under both locales, as <name>.c and <name>.de.
function(zax_register_test name)
    foreach(locale IN ITEMS c=C.UTF-8 de=de_DE.UTF-8)
        string(REPLACE "=" ";" pair "${locale}")
        list(GET pair 0 suffix)
        list(GET pair 1 code)
        set(home "${CMAKE_BINARY_DIR}/home/${name}.${suffix}")
        file(MAKE_DIRECTORY "${home}")
        add_test(NAME ${name}.${suffix} COMMAND ${ARGN} WORKING_DIRECTORY "${home}")
        # A test may fork although threads run: the thread sanitizer goes on there.
        set_tests_properties(${name}.${suffix} PROPERTIES ENVIRONMENT
            "LC_ALL=${code};LANG=${code};LANGUAGE=;HOME=${home};XDG_CONFIG_HOME=${home}/config;XDG_DATA_HOME=${home}/data;XDG_CACHE_HOME=${home}/cache;QT_QPA_PLATFORM=offscreen;ZAXMAT_CATALOGUE=;UBSAN_OPTIONS=print_stacktrace=1;ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1;TSAN_OPTIONS=suppressions='${PROJECT_SOURCE_DIR}/tests/tsan.supp':die_after_fork=0")
    endforeach()
endfunction()
