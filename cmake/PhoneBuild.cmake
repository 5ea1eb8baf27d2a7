# How a phone's build compiles and links: Clang, libc++, the platform's code-generation flags, and a
# JsonCpp for libc++. It applies to the whole tree, since a process can have only one C++ library.

if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
    message(FATAL_ERROR "KC2_PHONE_JSONCPP needs Clang, not ${CMAKE_CXX_COMPILER_ID}")
endif()

execute_process(COMMAND ${CMAKE_CURRENT_SOURCE_DIR}/scripts/build-phone-libraries.sh
                COMMAND_ERROR_IS_FATAL ANY)
set(phone_libraries ${CMAKE_CURRENT_SOURCE_DIR}/build/phone-libraries)
list(PREPEND CMAKE_PREFIX_PATH ${phone_libraries}/${KC2_PHONE_JSONCPP}
                               ${phone_libraries}/googletest)
# The transitive kind of run path: the device's own library has none, and without it the loader would
# load Debian's JsonCpp.
list(APPEND CMAKE_BUILD_RPATH ${phone_libraries}/${KC2_PHONE_JSONCPP}/lib)
add_link_options(-Wl,--disable-new-dtags)

# CMake's checks of the compiler use the same C++ library.
set(CMAKE_REQUIRED_FLAGS -stdlib=libc++)

add_compile_options(
    -stdlib=libc++ -ftrivial-auto-var-init=zero -fstack-protector-strong -fno-strict-aliasing
    -ffunction-sections -fdata-sections -flto=thin)
if(CMAKE_CXX_COMPILER_VERSION VERSION_LESS 16)  # There it is experimental.
    add_compile_options(
        -enable-trivial-auto-var-init-zero-knowing-it-will-be-removed-from-clang)
endif()
add_compile_definitions(_FORTIFY_SOURCE=2 NDEBUG)
add_link_options(-stdlib=libc++ -flto=thin -Wl,--gc-sections -Wl,--icf=safe)

# Where an integer overflows, signed or unsigned, the process stops.
if(KC2_TRAP_OVERFLOW)
    set(overflow signed-integer-overflow,unsigned-integer-overflow)
    add_compile_options(
        -fsanitize=${overflow} -fsanitize-trap=${overflow}
        -fsanitize-ignorelist=${CMAKE_CURRENT_SOURCE_DIR}/cmake/overflow-ignorelist.txt)
endif()
