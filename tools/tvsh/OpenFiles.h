// Opening files whose type the user names or the content tells.
#pragma once

#include "Console.h"

#include "torvelan/YString.h"

#include <memory>
#include <string>
#include <vector>

// Opens FILE, or TYPE:FILE, into new groups, one for each data set, of which the last becomes current; their names are
// appended to *groups, where given, in the order of the file, also those that came ahead of a failure. False when that
// cannot be, which has been reported with the name of the file.
bool openFile(std::string const & argument, std::shared_ptr<ConsoleMessages> const & messages,
              std::vector<YString> * groups = nullptr);

std::string pathOf(std::string const & argument); // without the type

// Whether a file can be made or replaced; if not, that has been reported with its name.
bool canWriteFile(std::string const & path, MessageHandler & messages);

// For help texts.
extern char const * const fileHelp;
