# Builds the module of examples/plugin and the application of tests/consumer, with nothing to find but ZAXMaterial.
include("${CMAKE_CURRENT_LIST_DIR}/Common.cmake")

configure("${SOURCE}/examples/plugin" "${SCRATCH}/plugin" "-DCMAKE_PREFIX_PATH=${PREFIX}"
    -DCMAKE_COMPILE_WARNING_AS_ERROR=ON)
build("${SCRATCH}/plugin" all)

file(GLOB_RECURSE config "${PREFIX}/ZAXMaterialConfig.cmake")
get_filename_component(package "${config}" DIRECTORY)
configure("${SOURCE}/tests/consumer" "${SCRATCH}/consumer" "-DZAXMaterial_DIR=${package}"
    "-DZAX_WORKSHOP_MODULE=${SCRATCH}/plugin/libZAXWorkshop.so")
build("${SCRATCH}/consumer" all)
