// The version: CMake, the package files and the tool read it from here.
#pragma once

#define KC2_VERSION "1.0.0"
