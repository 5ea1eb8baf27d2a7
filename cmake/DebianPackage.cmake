# What `cpack` packs for Debian: the library, the development files and the tool, each as a package.
# dpkg's own programs find the dependencies.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME kcodec2-platform)
set(CPACK_PACKAGE_VERSION ${KC2_VERSION})
set(CPACK_PACKAGE_CONTACT "kcodec2-platform maintainers <kcodec2-platform@localhost>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "${PROJECT_DESCRIPTION}")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE gzip)
set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Each component is packed from a separate directory, so dpkg-shlibdeps needs the library's.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS_PRIVATE_DIRS ${CMAKE_BINARY_DIR} ${CMAKE_BINARY_DIR}/hostplatform)
set(CPACK_COMPONENTS_ALL library development tool)

set(CPACK_DEBIAN_LIBRARY_PACKAGE_NAME libkcodec2-platform)
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_NAME libkcodec2-platform-dev)
set(CPACK_DEBIAN_TOOL_PACKAGE_NAME kcodec2-spec)
foreach(component LIBRARY DEVELOPMENT TOOL)
    set(CPACK_DEBIAN_${component}_PACKAGE_SECTION libs)
endforeach()
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_SECTION libdevel)
set(CPACK_DEBIAN_TOOL_PACKAGE_SECTION devel)
set(CPACK_COMPONENT_LIBRARY_DESCRIPTION "The platform library, and its stand-ins for a device")
set(CPACK_COMPONENT_DEVELOPMENT_DESCRIPTION "Headers, and files for CMake and pkg-config")
set(CPACK_COMPONENT_TOOL_DESCRIPTION "Shows and checks system spec documents")
# All three are from one build: none works with another version of the library.
set(same_library "libkcodec2-platform (= ${KC2_VERSION})")
set(CPACK_DEBIAN_TOOL_PACKAGE_DEPENDS "${same_library}")
# The targets that CMake finds name the tool, too.
set(CPACK_DEBIAN_DEVELOPMENT_PACKAGE_DEPENDS
    "${same_library}, kcodec2-spec (= ${KC2_VERSION})")
include(CPack)
