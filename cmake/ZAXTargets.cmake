# What every target of the project shares: the language level, the warnings, where programs and libraries go.

set(CMAKE_CXX_VISIBILITY_PRESET hidden)
set(CMAKE_VISIBILITY_INLINES_HIDDEN ON)
set(CMAKE_POSITION_INDEPENDENT_CODE ON)
set(CMAKE_AUTOMOC ON)
set(CMAKE_EXPORT_COMPILE_COMMANDS ON)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/bin")
set(CMAKE_LIBRARY_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(CMAKE_ARCHIVE_OUTPUT_DIRECTORY "${CMAKE_BINARY_DIR}/lib")
set(CMAKE_INSTALL_RPATH "$ORIGIN/../${CMAKE_INSTALL_LIBDIR}:$ORIGIN")

add_library(ZAXFlags INTERFACE)
target_compile_features(ZAXFlags INTERFACE cxx_std_20)
target_compile_options(ZAXFlags INTERFACE -Wall -Wextra -Wpedantic)
if(ZAX_WERROR)
    target_compile_options(ZAXFlags INTERFACE -Werror)
endif()
if(CMAKE_CXX_COMPILER_ID STREQUAL "GNU")
    # Unique symbols would keep a library mapped after dlclose, and nothing in it would be unregistered.
    target_compile_options(ZAXFlags INTERFACE -fno-gnu-unique)
endif()
target_compile_definitions(ZAXFlags INTERFACE QT_NO_CAST_FROM_ASCII QT_DISABLE_DEPRECATED_BEFORE=0x060400)
if(ZAX_SANITIZE)
    target_compile_options(ZAXFlags INTERFACE "-fsanitize=${ZAX_SANITIZE}" -fno-omit-frame-pointer
                                              -fno-sanitize-recover=all)
    target_link_options(ZAXFlags INTERFACE "-fsanitize=${ZAX_SANITIZE}")
    if(CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        target_compile_options(ZAXFlags INTERFACE "-fsanitize-ignorelist=${PROJECT_SOURCE_DIR}/tests/sanitizers.ignore")
    endif()
endif()

# zax_compile_at_once(<target> [<file>...])
# Does what ZAX_UNITY asks for, but for the files, whose own names are also those of other sources.
function(zax_compile_at_once target)
    set_target_properties(${target} PROPERTIES UNITY_BUILD ${ZAX_UNITY} UNITY_BUILD_BATCH_SIZE 12)
    set_source_files_properties(${ARGN} PROPERTIES SKIP_UNITY_BUILD_INCLUSION ON)
endfunction()

# zax_add_library(<name> SOURCES <file>... [ALONE <file>...] [PUBLIC <target>...] [PRIVATE <target>...])
# A shared library lib<name>.so known to everyone as ZAX::<name without its ZAX prefix>.
function(zax_add_library name)
    cmake_parse_arguments(PARSE_ARGV 1 arg "" "" "SOURCES;ALONE;PUBLIC;PRIVATE")
    string(REGEX REPLACE "^ZAX" "" short "${name}")
    string(TOUPPER "${name}" upper)
    add_library(${name} SHARED ${arg_SOURCES})
    add_library(ZAX::${short} ALIAS ${name})
    set_target_properties(${name} PROPERTIES EXPORT_NAME "${short}" DEFINE_SYMBOL "${upper}_LIBRARY"
                                             VERSION "${PROJECT_VERSION}" SOVERSION "${PROJECT_VERSION_MAJOR}")
    target_link_libraries(${name} PUBLIC ${arg_PUBLIC} PRIVATE ${arg_PRIVATE} $<BUILD_INTERFACE:ZAXFlags>)
    target_compile_features(${name} PUBLIC cxx_std_20)
    zax_compile_at_once(${name} ${arg_ALONE})
    # Every symbol is found when the library is linked, not when a customer's machine loads it.
    if(NOT ZAX_SANITIZE)
        target_link_options(${name} PRIVATE "LINKER:--no-undefined")
    endif()
endfunction()
