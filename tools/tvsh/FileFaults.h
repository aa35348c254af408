// Where a file is not as files of its kind are.
#pragma once

#include "FileForm.h"

#include <string>

// "line 6: ..." or "byte 98: ...", with what stands there and what is accepted; empty when nothing is found.
std::string faultOf(FileForm form, std::string const & path);
