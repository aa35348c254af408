// Reader of the text output of the Quadrel simulator.
#pragma once

class tvfstream;
struct Group;

// Fills the group, which may be listed already, and makes it the current one. False, without a message, when the
// description of the columns is bad; the vectors made so far stay. Data that end early are no failure.
bool readQuadrel(tvfstream & stream, Group * group);
