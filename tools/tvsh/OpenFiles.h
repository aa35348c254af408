// Opening files whose type the user names or the content tells.
#pragma once

#include "Console.h"

#include <memory>
#include <string>

// Opens FILE, or TYPE:FILE, into a new group that becomes current. False when that cannot be, which has been reported
// with the name of the file.
bool openFile(std::string const & argument, std::shared_ptr<ConsoleMessages> const & messages);

// Whether a file can be made or replaced; if not, that has been reported with its name.
bool canWriteFile(std::string const & path, MessageHandler & messages);

// For help texts.
extern char const * const fileHelp;
