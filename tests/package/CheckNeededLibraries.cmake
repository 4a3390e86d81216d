# The library depends on Qt Core and Gui, on the host's interface and on the language's runtime, and on nothing else: not
# on what the stand-in host adds, nor on what that needs.
include("${CMAKE_CURRENT_LIST_DIR}/Common.cmake")

dynamic_entries(needed "${BUILD}/lib/libZAXMaterial.so" NEEDED)
if(NOT "libQt6Core.so.6" IN_LIST needed)
    message(FATAL_ERROR "libZAXMaterial.so does not even need Qt Core: ${needed}")
endif()
list(FILTER needed EXCLUDE REGEX "^libQt6(Core|Gui)\\.so\\.6$")
list(FILTER needed EXCLUDE REGEX "^libZAX(System|Geometry|Feature)\\.so\\.[0-9]+$")
list(FILTER needed EXCLUDE REGEX "^(libstdc\\+\\+|libgcc_s|libm|libc|ld-linux[a-z0-9_-]*)\\.so\\.[0-9]+$")
if(needed)
    message(FATAL_ERROR "libZAXMaterial.so must not need ${needed}")
endif()
