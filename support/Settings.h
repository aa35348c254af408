// The configuration store: texts by section and key, in a file that the host has opened. Names compare without regard
// to case. Without a file nothing is found and nothing is kept.
#pragma once

#include "torvelan/Containers.h"
#include "torvelan/YString.h"

#include <string_view>

// Opens the store; a file that is not there yet is an empty one. False, and no store is open, when the file cannot be
// read or is no file of settings. An empty path closes the store.
bool openSettings(YString const & path);

// False, and *value untouched, when there is no such key.
bool cfgman_GetConfigSetting(YString const & section, YString const & key, YString * value);
// Each change is written at once, beside what other processes have written meanwhile, as a whole or not at all. False
// when that failed; the file is as it was.
bool cfgman_WriteConfigSetting(YString const & section, YString const & key, YString const & value);
bool cfgman_DeleteConfigSection(YString const & section);
void cfgman_GetConfigKeyNames(YString const & section, YList<YString> * out); // in order

// Where the store is.
class ConfigLocation {
public:
    explicit ConfigLocation(YString path) : path_(std::move(path)) {}
    YString getString() const { return path_; } // empty without a store

private:
    YString path_;
};
ConfigLocation cfgman_GetBaseConfigLocation();
