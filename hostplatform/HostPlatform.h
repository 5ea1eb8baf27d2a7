/**
 * @file
 * What a program on a development machine sets of the device it plays: properties, log level, where
 * log lines go, and where the device's directories lie.
 *
 * All of it is set by function, never through the environment, and before the library is first
 * used; the functions are safe from any thread. None of it exists in a device build.
 */
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace kc2::host {

#pragma GCC visibility push(default)

/** Sets the system property `name`. One that is never set gives its readers their default. */
void setProperty(const std::string& name, const std::string& value);

/** Forgets every property, as for another device. */
void clearProperties();

/** Sets the level word that kc2::updateLogLevel() puts into kc2::gC2LogLevel. Initially 0. */
void setLogLevel(uint32_t level);

/** Receives a log line: an Android log priority, the tag, and the text without a line end. */
using LogSink = std::function<void(int priority, const char* tag, const char* text)>;

/**
 * Sends log lines to `sink`, one call at a time, instead of to standard error; an empty sink puts
 * standard error back, in logcat's brief form. The sink must not log.
 */
void setLogSink(LogSink sink);

/**
 * Lets the device directory `deviceDirectory` lie in `hostDirectory`. The longest mapped directory
 * that holds a path decides; "/" maps the whole device. Without a mapping device paths are taken as
 * they are. A directory holds a path only at a whole component: /odm does not hold /odm2.
 *
 * Links in a mapped directory lead where they would lead on the device, absolute ones too. A path
 * that leaves the mapped directories that way cannot be opened.
 */
void mapDirectory(const std::string& deviceDirectory, const std::string& hostDirectory);

/** Forgets every mapping. */
void clearMappings();

/** Where `devicePath` lies for this process; empty when it leads out of what is mapped. */
std::string hostPath(const std::string& devicePath);

/** Keeps the library from writing any file: opening one for writing then fails. Initially off. */
void setReadOnly(bool readOnly);
bool isReadOnly();

#pragma GCC visibility pop

}  // namespace kc2::host
