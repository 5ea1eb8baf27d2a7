# The common part of the toolchain files for foreign processors: Debian's cross compiler, its
# packages of that architecture unpacked under build/, and QEMU to run what is built.

set(CMAKE_SYSTEM_NAME Linux)
if(NOT CMAKE_CXX_COMPILER)  # Clang compiles for any processor.
    set(CMAKE_CXX_COMPILER ${triplet}-g++)
endif()
set(CMAKE_CXX_COMPILER_TARGET ${triplet})
set(CMAKE_LIBRARY_ARCHITECTURE ${triplet})

# The libraries' packages have numbers in their names: the same as on this machine.
foreach(name jsoncpp fmt)
    execute_process(COMMAND dpkg-query -W -f "\${Depends}" lib${name}-dev
                    OUTPUT_VARIABLE depends COMMAND_ERROR_IS_FATAL ANY)
    string(REGEX MATCH "lib${name}[0-9]+[a-z0-9]*" package "${depends}")
    list(APPEND packages lib${name}-dev ${package})
endforeach()
set(root ${CMAKE_CURRENT_LIST_DIR}/../../build/foreign/${debian_architecture})
get_filename_component(root ${root} ABSOLUTE)
execute_process(
    COMMAND ${CMAKE_CURRENT_LIST_DIR}/../../scripts/fetch-packages.sh ${debian_architecture} ${root}
            ${packages} libcli11-dev libgtest-dev
    COMMAND_ERROR_IS_FATAL ANY)

# This machine's own libraries must not be found.
set(CMAKE_FIND_ROOT_PATH ${root})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
foreach(kind LIBRARY INCLUDE PACKAGE)
    set(CMAKE_FIND_ROOT_PATH_MODE_${kind} ONLY)
endforeach()

find_program(KC2_EMULATOR NAMES ${emulator}-static ${emulator} REQUIRED)
set(CMAKE_CROSSCOMPILING_EMULATOR
    ${KC2_EMULATOR} -L /usr/${triplet} -E LD_LIBRARY_PATH=${root}/usr/lib/${triplet})

# The device's library has no run path, so a program that links it must find that library's libraries.
set(CMAKE_EXE_LINKER_FLAGS_INIT "-Wl,-rpath-link,${root}/usr/lib/${triplet}")
