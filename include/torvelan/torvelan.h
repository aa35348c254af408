// The whole exported interface. Start reading at EngineSession.h and Evaluate.h.
#pragma once

#include "torvelan/Complex.h"
#include "torvelan/Containers.h"
#include "torvelan/EngineSession.h"
#include "torvelan/Evaluate.h"
#include "torvelan/Exceptions.h"
#include "torvelan/ForeignData.h"
#include "torvelan/Functions.h"
#include "torvelan/Groups.h"
#include "torvelan/Host.h"
#include "torvelan/Messages.h"
#include "torvelan/PhysType.h"
#include "torvelan/ResultCodes.h"
#include "torvelan/Substitution.h"
#include "torvelan/Vectors.h"
#include "torvelan/YString.h"
#include "torvelan/dvec.h"
