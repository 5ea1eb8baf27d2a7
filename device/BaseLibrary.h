/**
 * @file
 * What this library uses of the vendor base library, libkcodec2_base, besides kc2::PixFormat::Str
 * (kc2/PixFormat.h). Declared here, defined there; on a development machine hostplatform/ defines
 * it.
 */
#pragma once

#include <cstdint>
#include <string>

namespace kc2 {

#pragma GCC visibility push(default)

/** The process-wide log level word that gates every info and debug line (device/Log.h). */
extern uint32_t gC2LogLevel;

/** Refreshes gC2LogLevel from wherever the platform keeps the level. */
void updateLogLevel();

namespace OS::SystemProperty {

/**
 * @return a copy of the value of the system property `name`, or of `defaultValue` if it is not set.
 *         Both arguments are NUL-terminated and not null.
 */
std::string Get(const char* name, const char* defaultValue);

}  // namespace OS::SystemProperty

#pragma GCC visibility pop

}  // namespace kc2
