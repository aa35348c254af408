// Reader of SPICE2 raw files, which are binary.
#pragma once

#include "torvelan/Messages.h"

class OutputFile;
class tvfstream;
struct Group;

// Fills a group that is not listed yet, and gives it its name. On success it has been listed under its final one;
// otherwise it holds what had been made so far and is the caller's to dispose of. Data that end early are no failure.
// Memory is taken ahead only for values that go to no file.
bool readSpice2(tvfstream & stream, Group * group, OutputFile & output, MessageHandler & messages);
