// Vectors of the group store: finding, describing, making and ending them by name. An empty group name stands for the
// current group, but for vec_GetVector; a vector name that is looked up without a group is sought as an expression
// does: "group:name", or the local, the global and the current group in turn.
#pragma once

#include "torvelan/Containers.h"
#include "torvelan/Export.h"
#include "torvelan/Messages.h"
#include "torvelan/PhysType.h"
#include "torvelan/ResultCodes.h"
#include "torvelan/Vectors.h"

#include <cstdint>

// What vec_ExistVec tells of a vector beside its existence.
struct VectorExtInfo {
    bool isAlias = false;
};

struct MakeVectorOptions {
    bool separateReference = false; // the reference is the new vector's own rather than a vector of the group
    bool noCreate = false;          // only an existing vector will do
    bool multiple = false;          // the divisions are runs of one parameterised analysis
    std::int32_t bufferSize = 0;    // see IfVector::setBufferSize
};

// --- finding and describing. Pointers to what is to be filled may be null.
TORVELAN_API VEC_ERROR vec_ExistVec(YString const & name, bool * exists, VectorExtInfo * info);
// In one group, or, with an empty group, as an expression does. *out is null unless the answer is VEC_OK.
TORVELAN_API VEC_ERROR vec_GetVector(YString const & group, YString const & name, XYVector ** out);
// Elements of the current division; -1, and VEC_OK as always, when there is no such vector.
TORVELAN_API VEC_ERROR vec_GetVectorLength(YString const & name, long long * out);
TORVELAN_API VEC_ERROR vec_GetVectorPseudonym(YString const & group, YString const & name, YString * pseudonym);
// All elements of the first division, an empty slot as empty text. VEC_OTHER_KIND when the vector is no string vector.
TORVELAN_API VEC_ERROR vec_GetXYVectorAsString(XYVector * vector, YArray<YString> * out);
// Whether the data of the vector so named are those that the reference of `y` shares.
TORVELAN_API bool vec_TestVectorUsesReference(XYVector const * y, YString const & group, YString const & name);

// --- making and ending
// A vector y of a group, with a reference x unless x is null or has no name, ready to be filled: yOut and xOut (either
// may be null) come to share its data and those of its reference, if it has one. Vectors of one run share the x vector
// of the group. An existing vector of y's name is handed out in the same way, and the answer is VEC_EXISTS; unless its
// kind is not the one asked for: VEC_OTHER_KIND, for an alias VEC_ALIAS_OF_OTHER_KIND. VEC_NO_GROUP; VEC_NO_VECTOR when
// there is none and none was to be made.
TORVELAN_API VEC_ERROR vec_MakeVector(YString const & group, VectorParam const * y, VectorParam const * x,
                                      IfVector * yOut, IfVector * xOut, MakeVectorOptions const & options);
// A string vector of one element. VEC_NO_GROUP; VEC_EXISTS, and nothing is made, when the name is taken.
TORVELAN_API VEC_ERROR vec_MakeString(YString const & name, YString const & value, YString const & group);
// An alias: the expression is evaluated whenever the vector is used. A taken name is an internal error, and the vector
// of that name stays.
TORVELAN_API VEC_ERROR vec_MakeAliasVector(YString const & name, YString const & expression, YString const & group,
                                           PhysType physType);
// A new reference alias, in the local group, of the vector that `target` names; VEC_NOT_DONE when that cannot be.
TORVELAN_API VEC_ERROR vec_MakeReferenceAlias(YString const & name, YString const & target, MessageHandler & messages);
// VEC_NOT_DONE when not destroyed, with a message. `direct` deletes at once, otherwise the vector waits in the pool.
TORVELAN_API VEC_ERROR vec_DestroyVector(YString const & name, MessageHandler & messages, bool direct);
TORVELAN_API void vec_CollectGarbage(); // ends the temporaries
