# What a device build links: the device's liblog and libkcodec2_base. Sets KC2_LIBLOG,
# KC2_LIBKCODEC2_BASE, KC2_ANDROID_INCLUDE (where <android/log.h> is), and KC2_HAS_LIBLOG where the
# first is the real one.
#
# When a library is not installed, an empty one of the same name is built to link against, as the NDK
# does for the platform's libraries: the result is the device's binary, but runs only on a device.

# Debian's liblog (android-liblog-dev) is in separate directories. It uses libstdc++, which must not be
# loaded into a process with libc++.
include(CheckCXXSymbolExists)
check_cxx_symbol_exists(_LIBCPP_VERSION version KC2_USES_LIBCXX)
if(NOT KC2_USES_LIBCXX AND NOT KC2_PHONE_JSONCPP)
    set(debian_suffix PATH_SUFFIXES android)
endif()

find_path(KC2_ANDROID_INCLUDE android/log.h ${debian_suffix})
if(NOT KC2_ANDROID_INCLUDE)
    set(KC2_ANDROID_INCLUDE ${CMAKE_CURRENT_SOURCE_DIR}/hostplatform/include)
endif()

find_library(KC2_LIBLOG log ${debian_suffix})
find_library(KC2_LIBKCODEC2_BASE kcodec2_base)

function(kc2_link_stub variable name)
    if(NOT ${variable})
        message(STATUS "lib${name} not found: linking against an empty one")
        add_library(kcodec2_stub_${name} SHARED cmake/linkstubs/${name}.cpp)
        target_include_directories(kcodec2_stub_${name} PRIVATE
            ${CMAKE_CURRENT_SOURCE_DIR} ${CMAKE_CURRENT_SOURCE_DIR}/include)
        target_include_directories(kcodec2_stub_${name} SYSTEM PRIVATE ${KC2_ANDROID_INCLUDE})
        set_target_properties(kcodec2_stub_${name} PROPERTIES
            OUTPUT_NAME ${name} LIBRARY_OUTPUT_DIRECTORY ${CMAKE_BINARY_DIR}/linkstubs)
        # By file: the installed package must not require the empty library.
        add_dependencies(kcodec2_platform kcodec2_stub_${name})
        set(${variable} $<TARGET_FILE:kcodec2_stub_${name}> PARENT_SCOPE)
    endif()
endfunction()

if(KC2_LIBLOG)
    set(KC2_HAS_LIBLOG TRUE)
endif()
kc2_link_stub(KC2_LIBLOG log)
kc2_link_stub(KC2_LIBKCODEC2_BASE kcodec2_base)
