# Builds the library against an installed host, whose libraries it must then be linked to.
include("${CMAKE_CURRENT_LIST_DIR}/Common.cmake")

configure("${SOURCE}" "${SCRATCH}/material" "-DZAX_HOST_DIR=${HOST_PREFIX}" -DZAX_WERROR=ON)
build("${SCRATCH}/material" ZAXMaterial)
dynamic_entries(paths "${SCRATCH}/material/lib/libZAXMaterial.so" "RUNPATH|RPATH")
string(FIND "${paths}" "${HOST_PREFIX}/" position)
if(NOT position EQUAL 0)
    message(FATAL_ERROR "The library looks for the host in ${paths}")
endif()
if(EXISTS "${SCRATCH}/material/lib/libZAXHost.so")
    message(FATAL_ERROR "The host was built too.")
endif()
