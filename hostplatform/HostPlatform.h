/**
 * @file
 * What a program on a development machine sets up of a device: properties, log level, where log
 * lines go, and where the device's directories are.
 *
 * All of it is set by calling functions, never through the environment, before the library is first
 * used. The functions are safe from any thread and copy what they are given. None of this exists in
 * a device build.
 */
#pragma once

#include <cstdint>
#include <functional>
#include <string>

namespace kc2::host {

#pragma GCC visibility push(default)

/** Sets the system property `name`. A reader of one that is not set gets the reader's default. */
void setProperty(const std::string& name, const std::string& value);

/** Removes every property, as for another device. */
void clearProperties();

/** Sets the level word that kc2::updateLogLevel() puts into kc2::gC2LogLevel. Initially 0. */
void setLogLevel(uint32_t level);

/** Receives a log line: an Android log priority, the tag, and the text without a line end. */
using LogSink = std::function<void(int priority, const char* tag, const char* text)>;

/**
 * Sends log lines to `sink`, one call at a time, instead of to standard error; with an empty sink
 * they go to standard error again, in logcat's brief form, with control characters escaped. The
 * sink gets the text as it was logged. It must not log. It is called on the thread that logs, and
 * its texts are valid only during the call.
 */
void setLogSink(LogSink sink);

/**
 * Maps the device directory `deviceDirectory` to `hostDirectory`. For a path in several mapped
 * directories, the longest one is used; "/" maps the whole device. Without a mapping, device paths
 * are used as they are. Whole components are compared: /odm2 is not in /odm.
 *
 * Links in a mapped directory lead where they would lead on the device, absolute ones too. A path
 * that leaves the mapped directories that way cannot be opened.
 */
void mapDirectory(const std::string& deviceDirectory, const std::string& hostDirectory);

/** Removes every mapping. */
void clearMappings();

/** Where `devicePath` is for this process; empty if it leads out of the mapped directories. */
std::string hostPath(const std::string& devicePath);

/** Whether the library may not write files: opening one for writing then fails. Initially false. */
void setReadOnly(bool readOnly);
bool isReadOnly();

#pragma GCC visibility pop

}  // namespace kc2::host
