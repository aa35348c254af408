// The end of a session for temporary data files.
#pragma once

// Once all groups are gone, where the options say so.
void deleteTempDataOnExit();
