# The two packages that an installation consists of, each a component and an export set of its own:
#   ZAXHost      the host's interface and the stand-in behind it: ZAX::HostApi, ZAX::System, ZAX::Geometry, ZAX::Feature
#                and ZAX::Host. Left out when it was installed elsewhere (ZAX_HOST_DIR).
#   ZAXMaterial  the library: ZAX::Material. Finds ZAXHost and Qt by itself.
# Nothing in an installation says where it stands, so it can be moved.

include(CMakePackageConfigHelpers)

# zax_install_headers(<package> <folder>...)
# The headers of the folders go to include/<package>, without those that are private: by their name, or by a comment of
# theirs that begins with "Private".
function(zax_install_headers package)
    foreach(folder IN LISTS ARGN)
        file(GLOB headers CONFIGURE_DEPENDS "${folder}/*.h")
        list(FILTER headers EXCLUDE REGEX "Private\\.h$")
        foreach(header IN LISTS headers)
            file(STRINGS "${header}" private REGEX "^// Private" LIMIT_COUNT 1)
            if(NOT private)
                install(FILES "${header}" DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${package}" COMPONENT ${package})
            endif()
        endforeach()
    endforeach()
endfunction()

# zax_install_package(<package> <target>...)
# Installs the targets with the files that find_package(<package>) reads, cmake/<package>Config.cmake.in among them.
function(zax_install_package package)
    set(folder "${CMAKE_INSTALL_LIBDIR}/cmake/${package}")
    install(TARGETS ${ARGN} EXPORT ${package}Targets
        LIBRARY DESTINATION "${CMAKE_INSTALL_LIBDIR}" COMPONENT ${package}
        INCLUDES DESTINATION "${CMAKE_INSTALL_INCLUDEDIR}/${package}")
    install(EXPORT ${package}Targets NAMESPACE ZAX:: DESTINATION "${folder}" COMPONENT ${package})
    configure_package_config_file("${PROJECT_SOURCE_DIR}/cmake/${package}Config.cmake.in"
        "${PROJECT_BINARY_DIR}/package/${package}Config.cmake"
        INSTALL_DESTINATION "${folder}" NO_SET_AND_CHECK_MACRO)
    write_basic_package_version_file("${PROJECT_BINARY_DIR}/package/${package}ConfigVersion.cmake"
        COMPATIBILITY SameMajorVersion)
    install(FILES "${PROJECT_BINARY_DIR}/package/${package}Config.cmake"
                  "${PROJECT_BINARY_DIR}/package/${package}ConfigVersion.cmake"
        DESTINATION "${folder}" COMPONENT ${package})
endfunction()

if(ZAX_HOST_DIR)
    set(ZAX_HOST_VERSION "${ZAXHost_VERSION}")
else()
    set(ZAX_HOST_VERSION "${PROJECT_VERSION}")
    zax_install_package(ZAXHost ZAXHostApi ZAXSystem ZAXGeometry ZAXFeature ZAXHost)
    file(GLOB rooms CONFIGURE_DEPENDS "${PROJECT_SOURCE_DIR}/host/*")
    zax_install_headers(ZAXHost "${PROJECT_SOURCE_DIR}/hostapi" ${rooms})
endif()
if(TARGET ZAXMaterial)
    zax_install_package(ZAXMaterial ZAXMaterial)
    zax_install_headers(ZAXMaterial "${PROJECT_SOURCE_DIR}/material")
endif()
