// The one place of the version: CMake, the package files and the tool take it from here.
#pragma once

#define KC2_VERSION "1.0.0"
