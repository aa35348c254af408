// Result codes of the exported interface. Zero is success in every one of them.
#pragma once

// Answer of the vector and group operations (vec_...). The values are fixed; a name is generic where several
// operations share a value.
enum VEC_ERROR : int {
    VEC_OK = 0,
    VEC_NO_GROUP = 1,             // no such group
    VEC_NULL_EXPRESSION = 2,      // a null expression was given
    VEC_EXPRESSION_FAILED = 3,    // the expression could not be evaluated
    VEC_NO_DATA_RECORD = 4,       // a vector handle without a data record was asked to add a value
    VEC_BOOT_RECORD_FAILED = 6,   // the boot records of a data file could not be written
    VEC_NO_VECTOR = 9,            // no such vector, or a new one was not to be made
    VEC_EXISTS = 11,              // the vector (or collection) exists already
    VEC_ALIAS_OF_OTHER_KIND = 12, // the name belongs to an alias of another kind
    VEC_OTHER_KIND = 13,          // the name belongs to a vector of another kind, or a string was expected
    VEC_NOT_DONE = 14,            // a reference alias was not made, or a vector was not destroyed
    VEC_HAS_DATA_FILE = 15,       // the group has a data file already
    VEC_NO_DATA_FILE = 16,        // the data file could not be made
};

// Answer of a function handler and of the call frame.
enum FUNC_ERROR : int {
    FUNC_OK = 0,
    FUNC_NO_RESULT = 1,   // failed; not forgiven when only one of several divisions is concerned
    FUNC_FAILED = 2,      // failed, and the handler has given its message
    FUNC_UNAVAILABLE = 3, // failed for want of a facility or memory, or by an exception
};

// Answer of the vec_Evaluate family.
enum [[nodiscard]] VecEvalError : int{
    VEC_EVAL_OK = 0,
    VEC_EVAL_FAILED = 2,
};
