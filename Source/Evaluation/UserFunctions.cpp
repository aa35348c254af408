#include "torvelan/UserFunctions.h"

#include "Evaluation/UserFunctionCalls.h"
#include "torvelan/Host.h"

#include <algorithm>
#include <string>

namespace {

std::int32_t kindOf(VD_type type) noexcept {
    switch (type) {
    case VD_REAL: return USER_REAL;
    case VD_COMPLEX: return USER_COMPLEX;
    case VD_STRING: return USER_STRING;
    default: return USER_NONE;
    }
}

void const * firstOf(double const * reals, complex const * pairs, char const * const * strings) noexcept {
    if (reals != nullptr) return reals;
    return pairs != nullptr ? static_cast<void const *>(pairs) : strings;
}

bool describe(UserFunctionEnvironment & environment, FuncArgs const & args, int i, UserFunctionArgument & record) {
    record.yKind = kindOf(args.type(i));
    record.xKind = kindOf(args.refType(i));
    if (record.yKind == USER_NONE) return false;
    record.yData = firstOf(args.data(i), args.complexData(i), args.stringData(i));
    record.xData = firstOf(args.refData(i), args.complexRefData(i), nullptr);
    record.length = args.length32(i);
    record.yUnits = unitsText(environment, args.physType(i));
    record.xUnits = unitsText(environment, args.refPhysType(i));
    return true;
}

// An operation of the environment for a module, into which no exception goes: null instead.
template <auto operation, class... Arguments>
auto guarded(UserFunctionEnvironment * environment, Arguments... arguments)
    -> decltype((environment->*operation)(arguments...)) {
    if (environment == nullptr) return nullptr;
    try {
        return (environment->*operation)(arguments...);
    } catch (...) {
        return nullptr;
    }
}

// Counts all arrays ever made, so that no two have one name.
std::string nextNumber() {
    static long long counter = 0;
    return std::to_string(counter++);
}

} // namespace

char const * unitsText(UserFunctionEnvironment & environment, PhysType type) {
    YString & text = *environment.allocateString();
    text = sp_GetPhysTypeName(type);
    return text.c_str();
}

UserFunctionEnvironment::UserFunctionEnvironment(FuncResult * result, FuncArgs const & args)
    : result_(result), args_(args) {}

UserFunctionEnvironment::~UserFunctionEnvironment() = default;

FUNC_ERROR UserFunctionEnvironment::prepare(MessageHandler & messages) {
    return vec_PrepareUserFunction(this, args_, interface_, messages) == 0 ? FUNC_OK : FUNC_FAILED;
}

YRef<NamedVector> UserFunctionEnvironment::newVector(char const * prefix) {
    YString name = prefix != nullptr ? YString(prefix + nextNumber()) : YString();
    return vectors_.emplace_back(std::make_shared<NamedVector>(std::move(name)));
}

double * UserFunctionEnvironment::allocateRealArg(int n) {
    NamedVector & vector = *newVector("realarg_");
    vector.setSize(std::max(n, 0), VD_REAL);
    double * const data = vector.writableRealData();
    if (data != nullptr) std::fill_n(data, std::max(n, 0), 0.0);
    return n > 0 ? data : nullptr;
}

complex * UserFunctionEnvironment::allocateComplexArg(int n) {
    NamedVector & vector = *newVector("complexarg_");
    vector.setSize(std::max(n, 0), VD_COMPLEX);
    complex * const data = vector.writableComplexData();
    if (data != nullptr) std::fill_n(data, std::max(n, 0), complex());
    return n > 0 ? data : nullptr;
}

NamedVector * UserFunctionEnvironment::allocateNamedVector() {
    return newVector(nullptr).get();
}

YString * UserFunctionEnvironment::allocateString() {
    return &strings_.emplace_back();
}

UserFunctionArgument * UserFunctionEnvironment::newRecord() {
    return &records_.emplace_back(
        UserFunctionArgument{nullptr, nullptr, 0, USER_NONE, USER_NONE, "unknown", "unknown"});
}

template <class Matches> YRef<NamedVector> UserFunctionEnvironment::find(Matches const & matches) const {
    auto const found = std::find_if(vectors_.begin(), vectors_.end(), matches);
    return found != vectors_.end() ? *found : nullptr;
}

YRef<NamedVector> UserFunctionEnvironment::findNamedVector(double const * data) const {
    if (data == nullptr) return nullptr;
    return find([data](YRef<NamedVector> const & vector) { return vector->realData() == data; });
}

YRef<NamedVector> UserFunctionEnvironment::findNamedVector(complex const * data) const {
    if (data == nullptr) return nullptr;
    return find([data](YRef<NamedVector> const & vector) { return vector->complexData() == data; });
}

int vec_PrepareUserFunction(UserFunctionEnvironment * environment, FuncArgs const & args,
                            UserFunctionInterface & interface, MessageHandler & messages) {
    interface.numArgs = std::min(args.getNumArgs(), UserFunctionInterface::maxArguments);
    int code = 0;
    for (int i = 0; i < interface.numArgs; ++i) {
        if (describe(*environment, args, i, interface.arguments[i])) continue;
        messages.error("Argument %d of function '%s' is neither a number nor a string", i + 1, args.getFuncName());
        code = 2;
    }
    interface.environment = environment;
    interface.allocateReal = guarded<&UserFunctionEnvironment::allocateRealArg, int>;
    interface.allocateComplex = guarded<&UserFunctionEnvironment::allocateComplexArg, int>;
    interface.allocateNamedVector = guarded<&UserFunctionEnvironment::allocateNamedVector>;
    interface.allocateString = guarded<&UserFunctionEnvironment::allocateString>;
    interface.callFunction = callFunctionFromInterface;
    return code;
}

RegisterUserFunctionCall::RegisterUserFunctionCall(char const * name) {
    list().push_back(YString(name));
}

YList<YString> & RegisterUserFunctionCall::list() {
    static YList<YString> names;
    return names;
}

void RegisterUserFunctionCall::check() {
    for (YString const & name : list())
        if (vec_FindFunction(name) == nullptr)
            tv_error("Internal Function %s not found. This is an installation problem - some functionality will not be "
                     "available",
                     name);
}

namespace {

AutoFunc const atPreExec("PreExec", RegisterUserFunctionCall::check, "RegisterUserFunctionCall_check");

} // namespace
