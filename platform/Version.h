// The version: CMake, the package files and the tool read it from here.
// Between two releases it is that of the last one, with "+dev": later than the release, for every
// program that compares versions, and no promise about the next one.
#pragma once

#define KC2_VERSION "1.0.0+dev"
