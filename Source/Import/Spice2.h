// Reader of SPICE2 raw files, which are binary.
#pragma once

#include "torvelan/Messages.h"

class tvfstream;
struct Group;

// Fills a group that is not listed yet. On success it has been listed under its final name; otherwise it holds what had
// been made so far and is the caller's to dispose of. Data that end early are no failure.
bool readSpice2(tvfstream & stream, Group * group, MessageHandler & messages);
