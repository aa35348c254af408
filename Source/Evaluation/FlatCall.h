// A call over many divisions as one over all their elements.
#pragma once

#include "Evaluation/HandlerLoop.h"

// Runs the handler of a function that is elementwise, or walks through divisions itself, once over all divisions of its
// arguments. False when they are irregular or the handler did not do everything; frame and result are then as before,
// and the call is to be made division by division. For `count` divisions, at least 2, and a handler call whose messages
// go nowhere.
bool callFlat(HandlerCall & call, std::int64_t count);
