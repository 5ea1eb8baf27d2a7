# Debian's cross compiler for 32-bit Arm; what it builds runs under QEMU.
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(debian_architecture armhf)
set(triplet arm-linux-gnueabihf)
set(emulator qemu-arm)
add_compile_options(-Wno-psabi)  # Without it GCC notes at each map what its release 7 changed.
include(${CMAKE_CURRENT_LIST_DIR}/debian-cross.cmake)
