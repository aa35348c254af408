#include "Evaluation/UserFunctionCalls.h"

#include "torvelan/Evaluate.h"

#include <algorithm>
#include <cstdarg>
#include <string>

namespace {

using Error = UserFunctionError;

// --- arguments

bool accepts(argType type, std::int32_t kind) noexcept {
    switch (type) {
    case ARG_NUMERIC: return kind == USER_REAL || kind == USER_COMPLEX;
    case ARG_REAL: return kind == USER_REAL;
    case ARG_STRING: return kind == USER_STRING;
    default: return kind >= USER_REAL && kind <= USER_STRING;
    }
}

// Whether a record can be what it says. There is no way to see more of a foreign array.
bool isPlausible(UserFunctionArgument const & record) noexcept {
    bool const hasX = record.xData != nullptr && record.xKind != USER_NONE;
    return record.yData != nullptr && record.length > 0 &&
           (!hasX || record.xKind == USER_REAL || record.xKind == USER_COMPLEX);
}

bool fits(FuncInfo const & info, UserFunctionArgument const * arguments, int count) noexcept {
    if (count < info.minArgs || count > std::min<int>(info.maxArgs, FuncInfo::maxArguments)) return false;
    if (count > 0 && arguments == nullptr) return false;
    for (int i = 0; i < count; ++i)
        if (!isPlausible(arguments[i]) || !accepts(info.argTypes[i], arguments[i].yKind)) return false;
    return true;
}

PhysType physTypeOf(char const * units) {
    return units != nullptr ? sp_GetPhysTypeFromString(YString(units)) : PT_UNKNOWN;
}

void copyStrings(NamedVector & vector, char const * const * strings, std::int32_t length) {
    for (std::int32_t i = 0; i < length; ++i)
        if (strings[i] != nullptr) vector.setString(strings[i], i);
}

NamedVector * copied(UserFunctionEnvironment & environment, std::string const & name, void const * data,
                     std::int32_t kind, std::int32_t length) {
    NamedVector * const vector = environment.allocateNamedVector();
    vector->setName(YString(name));
    if (kind == USER_REAL) {
        vector->setSize(length, VD_REAL);
        std::copy_n(static_cast<double const *>(data), length, vector->writableRealData());
    } else if (kind == USER_COMPLEX) {
        vector->setSize(length, VD_COMPLEX);
        std::copy_n(static_cast<complex const *>(data), length, vector->writableComplexData());
    } else {
        vector->setSize(length, VD_STRING);
        copyStrings(*vector, static_cast<char const * const *>(data), length);
    }
    return vector;
}

// The environment's own vector behind a pointer, if it is as long as the record says.
NamedVector * known(UserFunctionEnvironment const & environment, void const * data, std::int32_t kind,
                    std::int32_t length) {
    YRef<NamedVector> const vector = kind == USER_REAL ? environment.findNamedVector(static_cast<double const *>(data))
                                     : kind == USER_COMPLEX
                                         ? environment.findNamedVector(static_cast<complex const *>(data))
                                         : nullptr;
    return vector != nullptr && vector->length() == length ? vector.get() : nullptr;
}

NamedVector * vectorFor(UserFunctionEnvironment & environment, std::string const & name, void const * data,
                        std::int32_t kind, std::int32_t length, char const * units) {
    if (data == nullptr || kind == USER_NONE) return environment.allocateNamedVector();
    PhysType const type = physTypeOf(units);
    NamedVector * vector = known(environment, data, kind, length);
    if (vector != nullptr && vector->physType() == type) return vector;
    vector = copied(environment, name, data, kind, length); // others may still mean the type that it has
    vector->setPhysType(type);
    return vector;
}

void addArgument(UserFunctionEnvironment & environment, FuncArgs & args, UserFunctionArgument const & record, int i) {
    std::string const number = std::to_string(i);
    NamedVector * const y =
        vectorFor(environment, "arg_y_" + number, record.yData, record.yKind, record.length, record.yUnits);
    NamedVector * const x =
        vectorFor(environment, "arg_x_" + number, record.xData, record.xKind, record.length, record.xUnits);
    args.add(y, x);
}

// --- results

void describeSide(NamedVector const & vector, void const *& data, std::int32_t & kind) {
    if (double const * const reals = vector.realData()) {
        data = reals;
        kind = USER_REAL;
    } else if (complex const * const pairs = vector.complexData()) {
        data = pairs;
        kind = USER_COMPLEX;
    } else if (char const * const * const strings = vector.stringData()) {
        data = strings;
        kind = USER_STRING;
    }
}

UserFunctionArgument const * recordOf(UserFunctionEnvironment & environment, NamedVector const & y,
                                      NamedVector const & x) {
    UserFunctionArgument & record = *environment.newRecord();
    constexpr std::int64_t most = INT32_MAX;
    record.length = static_cast<std::int32_t>(std::min(y.length(), most));
    if (!y.noData()) describeSide(y, record.yData, record.yKind);
    if (x.length() >= y.length() && !x.noData()) describeSide(x, record.xData, record.xKind);
    record.yUnits = unitsText(environment, y.physType());
    record.xUnits = unitsText(environment, x.physType());
    return &record;
}

UserFunctionArgument const * call(UserFunctionEnvironment & environment, char const * name,
                                  UserFunctionArgument const * arguments, int count, int & error) {
    FuncInfo * const info = name != nullptr ? vec_FindFunction(YString(name)) : nullptr;
    error = info == nullptr ? Error::USER_NO_FUNCTION : info->handler == nullptr ? Error::USER_NO_HANDLER : 0;
    if (error != 0) return nullptr;
    error = Error::USER_CALL_FAILED;
    if (!fits(*info, arguments, count)) return nullptr;
    FuncArgs args(name);
    args.setNumArgs(count);
    for (int i = 0; i < count; ++i) addArgument(environment, args, arguments[i], i);
    FuncResult result;
    NamedVector & y = *environment.allocateNamedVector();
    NamedVector & x = *environment.allocateNamedVector();
    result.add(&y, &x);
    result.beginCall();
    auto const silence = std::make_shared<NullMessageHandler>();
    if (info->handler(args, &result, info, silence, *silence, ScpParseContext(silence)) != FUNC_OK) return nullptr;
    error = Error::USER_CALL_OK;
    return recordOf(environment, y, x);
}

// --- direct calls

struct RaisedCount {
    explicit RaisedCount(std::int32_t & number) noexcept : count(number) { ++count; }
    ~RaisedCount() { --count; }
    RaisedCount(RaisedCount const &) = delete;
    RaisedCount & operator=(RaisedCount const &) = delete;
    std::int32_t & count;
};

// The pointers stand as one record behind those of the frame.
void callDirect(char const * name, int count, UserFunctionInterface & frame, va_list list) {
    FuncInfo const * const info = name != nullptr ? vec_FindFunction(YString(name)) : nullptr;
    bool const hasRoom = frame.numArgs >= 0 && frame.numArgs < UserFunctionInterface::maxArguments;
    if (info == nullptr || info->directHandler == nullptr || !hasRoom || count < 0) return;
    YArray<void *> pointers;
    for (int i = 0; i < count; ++i) pointers.push_back(va_arg(list, void *));
    frame.arguments[frame.numArgs] = {pointers.data(), nullptr, count, USER_NONE, USER_NONE, "unknown", "unknown"};
    RaisedCount const raised(frame.numArgs); // the pointers end here
    info->directHandler(&frame, name);
}

} // namespace

UserFunctionArgument const * callFunctionFromInterface(UserFunctionEnvironment * environment, char const * name,
                                                       UserFunctionArgument const * arguments, int count, int * error) {
    int ignored = 0;
    int & code = error != nullptr ? *error : ignored;
    code = USER_CALL_FAILED;
    if (environment == nullptr) return nullptr;
    try {
        return call(*environment, name, arguments, count, code);
    } catch (MemoryException const &) {
        code = USER_NO_MEMORY;
    } catch (TorvelanException const &) {
        code = USER_TORVELAN_EXCEPTION;
    } catch (...) {
        code = USER_OTHER_EXCEPTION;
    }
    return nullptr;
}

void vec_CallUserFunctionDirect(char const * name, int count, ...) {
    UserFunctionInterface frame{};
    va_list list;
    va_start(list, count);
    callDirect(name, count, frame, list);
    va_end(list);
}

void vec_CallUserFunctionDirectAppend(char const * name, int count, UserFunctionInterface * frame, ...) {
    if (frame == nullptr) return;
    va_list list;
    va_start(list, frame);
    callDirect(name, count, *frame, list);
    va_end(list);
}
