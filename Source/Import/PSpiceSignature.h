// What PSpice data files of all generations begin with.
#pragma once

class tvstream;

// True for a file that begins with it, and the marker of the generation is next to be read then; otherwise the stream
// stands at the start again.
bool testPSpiceSignature(tvstream & stream);
