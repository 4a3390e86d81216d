# Compiles every installed header on its own.
include("${CMAKE_CURRENT_LIST_DIR}/Common.cmake")

build("${SCRATCH}/consumer" headers)
