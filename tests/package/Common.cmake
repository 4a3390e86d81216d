# What the scripts of this folder share. They get SOURCE and BUILD, the folders of the build under test, SCRATCH, the
# folder for all that is made, and how to build: GENERATOR, COMPILER, FLAGS, QT (the folder of Qt's package), READELF.

cmake_minimum_required(VERSION 3.22)

# Where the packages are found, and an installation of the host without anything else.
set(PREFIX "${SCRATCH}/ZAX installed")
set(HOST_PREFIX "${SCRATCH}/ZAX host")

# run(<command> [<argument>...])
# Runs a command and stops when it fails.
function(run)
    execute_process(COMMAND ${ARGV} RESULT_VARIABLE result)
    if(NOT result EQUAL 0)
        string(REPLACE ";" " " command "${ARGV}")
        message(FATAL_ERROR "Failed (${result}): ${command}")
    endif()
endfunction()

# configure(<source folder> <build folder> [<option>...])
function(configure source build)
    run("${CMAKE_COMMAND}" -S "${source}" -B "${build}" -G "${GENERATOR}" -DCMAKE_BUILD_TYPE=Debug
        "-DCMAKE_CXX_COMPILER=${COMPILER}" "-DCMAKE_CXX_FLAGS=${FLAGS}" "-DQt6_DIR=${QT}" ${ARGN})
endfunction()

# build(<build folder> <target>)
function(build folder target)
    run("${CMAKE_COMMAND}" --build "${folder}" --target "${target}" --parallel 2)
endfunction()

# dynamic_entries(<variable> <library> <tag>)
# The values of the dynamic section's entries whose tag matches, NEEDED or RUNPATH.
function(dynamic_entries variable library tag)
    execute_process(COMMAND "${READELF}" --dynamic --wide "${library}" OUTPUT_VARIABLE text
        COMMAND_ERROR_IS_FATAL ANY)
    # A list must not hold brackets.
    string(REPLACE "[" "<" text "${text}")
    string(REPLACE "]" ">" text "${text}")
    string(REGEX MATCHALL "\\((${tag})\\)[^\n]*<[^\n]*>" lines "${text}")
    list(TRANSFORM lines REPLACE ".*<(.*)>" "\\1")
    set(${variable} "${lines}" PARENT_SCOPE)
endfunction()
