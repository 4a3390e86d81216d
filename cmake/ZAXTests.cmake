# zax_add_test(<name> SOURCES <file>... [LIBRARIES <target>...])
# One Qt Test program, run twice by ctest: under the C locale and under one with a decimal comma. It gets a home of its
# own, so that no test reads or writes the user's.
function(zax_add_test name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;LIBRARIES")
    add_executable(${name} ${arg_SOURCES})
    target_link_libraries(${name} PRIVATE ${arg_LIBRARIES} Qt6::Test ZAXFlags)
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
        set_tests_properties(${name}.${suffix} PROPERTIES ENVIRONMENT
            "LC_ALL=${code};LANG=${code};LANGUAGE=;HOME=${home};XDG_CONFIG_HOME=${home}/config;XDG_DATA_HOME=${home}/data;XDG_CACHE_HOME=${home}/cache;QT_QPA_PLATFORM=offscreen;ZAXMAT_CATALOGUE=;UBSAN_OPTIONS=print_stacktrace=1;ASAN_OPTIONS=detect_leaks=1:strict_string_checks=1;TSAN_OPTIONS=suppressions=${PROJECT_SOURCE_DIR}/tests/tsan.supp")
    endforeach()
endfunction()
