// Reader of text tables: columns of numbers under an optional line of names, in one block or several.
#pragma once

#include "torvelan/Messages.h"

class tvfstream;
struct Group;

// Fills a listed group, which becomes the current one first. False, with a message, when a block has no line below its
// names, or a wide table hardly anything but gaps; what has been read so far stays.
bool readTextData(tvfstream & stream, Group * group, bool keepColons, MessageHandler & messages);
