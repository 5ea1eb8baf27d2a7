# What `cmake --install` installs: the library and its headers, the stand-ins and the tool if the build
# has them, and the files with which CMake and pkg-config find them.

include(CMakePackageConfigHelpers)

set(package_directory ${CMAKE_INSTALL_LIBDIR}/cmake/${PROJECT_NAME})
set(pkgconfig_directory ${CMAKE_INSTALL_LIBDIR}/pkgconfig)
set(exported_targets kcodec2_platform)

install(DIRECTORY include/kc2 DESTINATION ${CMAKE_INSTALL_INCLUDEDIR} COMPONENT development
    FILES_MATCHING PATTERN "*.h")
set_target_properties(kcodec2_platform PROPERTIES EXPORT_NAME platform)

if(KC2_PLATFORM STREQUAL "host")
    # In a separate directory: nothing that is built for a device may find this header by accident.
    set(hostplatform_include ${CMAKE_INSTALL_INCLUDEDIR}/kcodec2-hostplatform)
    install(FILES hostplatform/HostPlatform.h DESTINATION ${hostplatform_include}/hostplatform
        COMPONENT development)
    target_include_directories(kcodec2_hostplatform
        INTERFACE $<INSTALL_INTERFACE:${hostplatform_include}>)
    target_compile_features(kcodec2_hostplatform INTERFACE cxx_std_17)
    set_target_properties(kcodec2_hostplatform PROPERTIES EXPORT_NAME hostplatform)
    # The library finds the stand-ins in its own directory, wherever the package is moved.
    set_target_properties(kcodec2_platform PROPERTIES INSTALL_RPATH "$ORIGIN")
    list(APPEND exported_targets kcodec2_hostplatform)
    set(pkgconfig_stand_ins " -lkcodec2_hostplatform")
    if(TARGET kcodec2_spec)
        file(RELATIVE_PATH bin_to_lib
            ${CMAKE_INSTALL_FULL_BINDIR} ${CMAKE_INSTALL_FULL_LIBDIR})
        set_target_properties(kcodec2_spec PROPERTIES INSTALL_RPATH "$ORIGIN/${bin_to_lib}")
        # Image builds run it from CMake, as kcodec2::spec.
        set_target_properties(kcodec2_spec PROPERTIES EXPORT_NAME spec)
        install(TARGETS kcodec2_spec EXPORT ${PROJECT_NAME}-targets COMPONENT tool)
        if(TARGET kcodec2_spec_texts)
            install(FILES ${kc2_tool_texts}/kcodec2_spec.schema.json
                DESTINATION ${CMAKE_INSTALL_DATADIR}/kcodec2 COMPONENT tool)
            # A vendor's file for --settings has the catalogue's form; the page describes both.
            install(FILES tools/kcodec2_spec/catalogue/settings.json docs/settings.md
                DESTINATION ${CMAKE_INSTALL_DATADIR}/kcodec2 COMPONENT tool)
            install(FILES examples/editor/settings.json RENAME vscode-settings.json
                DESTINATION ${CMAKE_INSTALL_DATADIR}/kcodec2 COMPONENT tool)
            install(FILES ${kc2_tool_texts}/kcodec2_spec.1
                DESTINATION ${CMAKE_INSTALL_MANDIR}/man1 COMPONENT tool)
            install(FILES ${kc2_tool_texts}/kcodec2_spec.bash RENAME kcodec2_spec
                DESTINATION ${CMAKE_INSTALL_DATADIR}/bash-completion/completions COMPONENT tool)
            install(FILES ${kc2_tool_texts}/_kcodec2_spec
                DESTINATION ${CMAKE_INSTALL_DATADIR}/zsh/site-functions COMPONENT tool)
        endif()
    endif()
endif()
if(TARGET kcodec2_spec_device)
    install(TARGETS kcodec2_spec_device COMPONENT tool)
endif()

install(TARGETS ${exported_targets} EXPORT ${PROJECT_NAME}-targets COMPONENT library)

# --- CMake ----------------------------------------------------------------------------------------

install(EXPORT ${PROJECT_NAME}-targets NAMESPACE kcodec2:: DESTINATION ${package_directory}
    COMPONENT development)
configure_package_config_file(cmake/package/${PROJECT_NAME}-config.cmake.in
    ${PROJECT_NAME}-config.cmake INSTALL_DESTINATION ${package_directory})
write_basic_package_version_file(${PROJECT_NAME}-config-version.cmake
    VERSION ${KC2_VERSION} COMPATIBILITY SameMajorVersion)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${PROJECT_NAME}-config.cmake
              ${CMAKE_CURRENT_BINARY_DIR}/${PROJECT_NAME}-config-version.cmake
    DESTINATION ${package_directory} COMPONENT development)

# --- pkg-config -----------------------------------------------------------------------------------

# Relative to the file, so that the package can be moved.
file(RELATIVE_PATH pkgconfig_to_prefix
    ${CMAKE_INSTALL_FULL_LIBDIR}/pkgconfig ${CMAKE_INSTALL_PREFIX})
string(REGEX REPLACE "/$" "" pkgconfig_to_prefix ${pkgconfig_to_prefix})
foreach(target IN LISTS exported_targets)
    configure_file(cmake/package/${target}.pc.in ${target}.pc @ONLY)
    install(FILES ${CMAKE_CURRENT_BINARY_DIR}/${target}.pc
        DESTINATION ${pkgconfig_directory} COMPONENT development)
endforeach()

# --- Debian package -------------------------------------------------------------------------------

if(KC2_PLATFORM STREQUAL "host" AND NOT CMAKE_CROSSCOMPILING)
    include(DebianPackage)
endif()
