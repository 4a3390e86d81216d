# Extracts the texts of the sources in SOURCE with Qt's lupdate to the file RESULT, and fails where it could not tell what
# to make of one.
find_program(lupdate NAMES lupdate HINTS "${QT}/../../../qt6/bin" "${QT}/../../../bin" NO_CACHE)
if(NOT lupdate)
    message(FATAL_ERROR "Qt's lupdate is missing (Debian's package qt6-l10n-tools).")
endif()

file(REMOVE "${RESULT}")
execute_process(COMMAND "${lupdate}" "${SOURCE}" -locations none -ts "${RESULT}"
    RESULT_VARIABLE code OUTPUT_VARIABLE output ERROR_VARIABLE warnings)
if(NOT code EQUAL 0)
    message(FATAL_ERROR "lupdate failed:\n${output}${warnings}")
endif()
string(REGEX MATCHALL "[^\n]*(cannot|lacks|[Dd]iscarding|[Uu]nterminated|[Ii]gnoring)[^\n]*" losses "${warnings}")
if(losses)
    message(FATAL_ERROR "Texts are lost:\n${warnings}")
endif()

file(READ "${RESULT}" texts)
string(REGEX MATCHALL "<name>[^<]*</name>" contexts "${texts}")
if(NOT contexts STREQUAL "<name>zaxmat</name>")
    message(FATAL_ERROR "The program looks its texts up under \"zaxmat\", but lupdate found ${contexts}.\n${warnings}")
endif()

# Only literals can be extracted.
file(GLOB sources "${SOURCE}/*.cpp" "${SOURCE}/*.h")
foreach(source IN LISTS sources)
    file(READ "${source}" code)
    if(code MATCHES "Text::tr\\([ \n]*[^ \n\"][^\n]*")
        message(SEND_ERROR "${source}: no literal: ${CMAKE_MATCH_0}")
    endif()
endforeach()
