// The bridge to functions compiled in other modules: they see plain arrays, and may call the registered functions of
// the library without knowing its vectors.
#pragma once

#include "torvelan/Complex.h"
#include "torvelan/Containers.h"
#include "torvelan/Export.h"
#include "torvelan/Functions.h"
#include "torvelan/Messages.h"
#include "torvelan/Vectors.h"

#include <cstdint>
#include <deque>

class UserFunctionEnvironment;

enum UserFunctionKind : std::int32_t { USER_REAL = 0, USER_COMPLEX = 1, USER_STRING = 2, USER_NONE = 3 };

// One argument, or the result of a call: the current division of a vector and of its reference. Data are doubles,
// complex pairs, or char const pointers, as the kinds say. A reference is as long as the values.
struct UserFunctionArgument {
    void const * yData;
    void const * xData; // null without a reference
    std::int32_t length;
    std::int32_t yKind; // of UserFunctionKind
    std::int32_t xKind;
    char const * yUnits; // name of the PhysType; "unknown" where there is none
    char const * xUnits;
};

// What callFunction says of a call that gave nothing.
enum UserFunctionError : int {
    USER_CALL_OK = 0,
    USER_NO_FUNCTION = 1, // there is no function of that name
    USER_NO_HANDLER = 2,
    USER_CALL_FAILED = 3, // the arguments do not fit it, or it failed
    USER_NO_MEMORY = 6,
    USER_TORVELAN_EXCEPTION = 7,
    USER_OTHER_EXCEPTION = 8,
};

// What a module is handed. Everything allocated through it, and the results of calls, live as long as the environment.
struct UserFunctionInterface {
    static constexpr int maxArguments = FuncInfo::maxArguments;

    UserFunctionArgument arguments[maxArguments];
    std::int32_t numArgs;

    UserFunctionEnvironment * environment; // first argument of the functions
    double * (*allocateReal)(UserFunctionEnvironment *, int n);
    complex * (*allocateComplex)(UserFunctionEnvironment *, int n);
    NamedVector * (*allocateNamedVector)(UserFunctionEnvironment *);
    YString * (*allocateString)(UserFunctionEnvironment *);
    // Calls a registered function on `count` arguments. Null, and *error says why, when it gives no result. Nothing is
    // thrown.
    UserFunctionArgument const * (*callFunction)(UserFunctionEnvironment *, char const * name,
                                                 UserFunctionArgument const * arguments, int count, int * error);
};

// Owns what one call of a module needs.
class TORVELAN_API UserFunctionEnvironment {
public:
    UserFunctionEnvironment(FuncResult * result, FuncArgs const & args);
    ~UserFunctionEnvironment();
    UserFunctionEnvironment(UserFunctionEnvironment const &) = delete;
    UserFunctionEnvironment & operator=(UserFunctionEnvironment const &) = delete;

    // Fills the interface; FUNC_FAILED after a message.
    FUNC_ERROR prepare(MessageHandler & messages);
    FuncArgs const & getInArgs() const noexcept { return args_; }
    FuncResult * getOutArgs() const noexcept { return result_; }
    UserFunctionInterface & getUserFunctionInterface() noexcept { return interface_; }

    // New vectors of n elements (0 when negative), cleared; pointers to their data, null when n is 0.
    double * allocateRealArg(int n);
    complex * allocateComplexArg(int n);
    NamedVector * allocateNamedVector();
    YString * allocateString();
    // The vector of this environment whose data begin there; empty when there is none, and for null.
    YRef<NamedVector> findNamedVector(double const * data) const;
    YRef<NamedVector> findNamedVector(complex const * data) const;
    UserFunctionArgument * newRecord(); // of kind USER_NONE and units "unknown"

private:
    YRef<NamedVector> newVector(char const * prefix);
    template <class Matches> YRef<NamedVector> find(Matches const & matches) const;

    FuncResult * result_;
    FuncArgs const & args_;
    UserFunctionInterface interface_{};
    YList<YRef<NamedVector>> vectors_;
    std::deque<YString> strings_;
    std::deque<UserFunctionArgument> records_;
};

// A record for each argument, and the table of functions. 0, or 2 after a message when an argument is neither real nor
// complex nor string.
TORVELAN_API int vec_PrepareUserFunction(UserFunctionEnvironment * environment, FuncArgs const & args,
                                         UserFunctionInterface & interface, MessageHandler & messages);

// Calls the direct handler of a registered function with `count` pointers (void *), which it finds as the one record
// of its frame, of kind USER_NONE. A function without a direct handler, or an unknown one: nothing happens.
TORVELAN_API void vec_CallUserFunctionDirect(char const * name, int count, ...);
// The same, the record added to those of a frame that exists.
TORVELAN_API void vec_CallUserFunctionDirectAppend(char const * name, int count, UserFunctionInterface * frame, ...);

// Names, at file scope, a function that its module relies on. One that does not exist when a session begins is
// reported.
class TORVELAN_API RegisterUserFunctionCall {
public:
    explicit RegisterUserFunctionCall(char const * name);

    static YList<YString> & list();
    static void check(); // in phase "PreExec"
};
