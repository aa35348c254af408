// The function registry and the frame through which function handlers see vectors.
#pragma once

#include "torvelan/Containers.h"
#include "torvelan/Evaluate.h"
#include "torvelan/Export.h"
#include "torvelan/Messages.h"
#include "torvelan/ResultCodes.h"
#include "torvelan/Vectors.h"

#include <cstddef>
#include <cstdint>

class CommandTimer;
class dvec;
class FuncArgs;
class FuncResult;
struct FuncInfo;
struct UserFunctionInterface;

// How one argument is prepared before the handler sees it.
enum argType : unsigned char {
    ARG_NUMERIC = 0, // a string is evaluated; real and complex as they are
    ARG_STRING = 1,  // numbers become text
    ARG_AS_IS = 2,
    ARG_ANY = 3,  // as ARG_AS_IS
    ARG_REAL = 4, // like ARG_NUMERIC, and complex is refused
};

// How one argument may have several divisions.
enum MultiDef : unsigned char {
    MULTI_REFUSED = 0,
    MULTI_EACH = 1,     // the handler runs once per division; the result has the same divisions
    MULTI_WHOLE = 2,    // given whole, takes no part in the iteration
    MULTI_COLLAPSE = 3, // like MULTI_EACH, then the result becomes one division
};

// How much room the first allocation of a multi-division result reserves.
enum ResultAllocType : unsigned char {
    ALLOC_HINT = 0,         // the greater of the length and the hint; with hint -1 exactly the length, overwriting
    ALLOC_DIVISIONS = 1,    // the number of divisions times the length
    ALLOC_DIVISIONS_X15 = 2 // 1.5 times that when there are several
};

// A handler is written for one division and knows nothing of divisions. It reads `args`, sets kind and PhysType of the
// result, makes its data, and carries the reference along. FUNC_FAILED after giving its message; FUNC_OK with an
// untouched result says "nothing".
using FuncHandler = FUNC_ERROR (*)(FuncArgs const & args, FuncResult * result, FuncInfo * info,
                                   YRef<MessageHandler> messages, MessageHandler & handlerMessages,
                                   ScpParseContext const & context);
using DirectHandler = void (*)(UserFunctionInterface * frame, char const * name);

// Description of a function.
struct TORVELAN_API FuncInfo {
    static constexpr int maxArguments = 32;

    struct State {
        std::uint32_t words[2] = {0, 0};
    };
    // The timer of the name, kept by the call sequence once found. A copy of the record may get another name, so that
    // it looks for itself.
    struct TimerLink {
        CommandTimer * timer = nullptr;
        std::uint32_t generation = 0; // of the set of timers that it was found in

        TimerLink() noexcept = default;
        TimerLink(TimerLink const &) noexcept {}
        TimerLink & operator=(TimerLink const &) noexcept {
            timer = nullptr;
            return *this;
        }
    };

    YString name;
    argType argTypes[maxArguments] = {};
    std::uint16_t minArgs = 0;
    std::uint16_t maxArgs = 0;
    FuncHandler handler = nullptr;
    bool matchArgs = false; // matchVecs runs before each call; operators only
    bool exported = false;
    MultiDef multiDefs[maxArguments] = {};
    DirectHandler directHandler = nullptr;
    bool supportsIncremental = false; // elementwise: may be evaluated on new points alone
    bool flatDivisions = false;       // may be handed all divisions as one array: its elements do not know neighbours
    bool walksDivisions = false;      // the same, but goes through the divisions itself, which all arguments share
    State state;
    YString summary; // one line for lists of functions
    TimerLink timerLink;

    FuncInfo() = default;
    // `types` and `multiDefs_` hold maxArgs entries each; null multiDefs_ means all MULTI_REFUSED.
    FuncInfo(char const * name_, argType const * types, int minArgs_, int maxArgs_, FuncHandler handler_,
             MultiDef const * multiDefs_, bool supportsIncremental_);
    FuncInfo(char const * name_, argType const * types, int minArgs_, int maxArgs_, FuncHandler handler_,
             bool exported_);

    bool operator<(FuncInfo const & other) const noexcept { return compareNoCase(name, other.name) < 0; }
    std::size_t hashValue() const noexcept { return name.hashValue(); }
};

// Description of a function for the outside.
struct FunctionInfo {
    YString name;
    int minArgs = 0;
    int maxArgs = 0;
    YString summary;
};

// Where a function was registered.
struct FuncLocInfo {
    YString name;
    YString file;
    YString modulePath;
    int line = 0;
};

// Registers a copy of the record from a static initialiser.
class TORVELAN_API FuncDef {
public:
    explicit FuncDef(FuncInfo const & info);
};

class TORVELAN_API FuncLoc {
public:
    FuncLoc(char const * name, char const * file, int line, void * handlerAddress);
};

// Registers at run time; hides an earlier function of the same name.
TORVELAN_API void vec_AddNewFunction(FuncInfo const & info);
TORVELAN_API FuncInfo * vec_FindFunction(YString const & name); // null when there is none; any case
TORVELAN_API void vec_GetFunctions(YList<FunctionInfo> * out, bool exportedOnly);
TORVELAN_API void vec_GetSortedFunctionList(YList<FuncInfo> * out); // without names that begin with '_'
// Scripts that expressions may call, the newest first.
TORVELAN_API void vec_GetScriptFunctions(YList<FunctionInfo> * out);
TORVELAN_API void vec_GetFunctionLocs(YList<FuncLocInfo> * out);

// The arguments of a call, each a y side and a reference. An index beyond the arguments is no error for any accessor:
// it gives null, 0 or VD_ABSENT. Pointers are advanced, and lengths lessened, by the incremental offset.
class TORVELAN_API FuncArgs {
public:
    explicit FuncArgs(YString funcName);
    FuncArgs(FuncArgs const & other); // the same pointers; a copy does not own
    FuncArgs & operator=(FuncArgs const &) = delete;
    ~FuncArgs(); // releases the temporaries among the arguments

    // --- for handlers
    int getNumArgs() const noexcept { return used; }
    VD_type type(int i) const noexcept;
    VD_type refType(int i) const noexcept;
    PhysType physType(int i) const noexcept;
    PhysType refPhysType(int i) const noexcept;
    std::int64_t length(int i) const noexcept; // of the current division
    std::int32_t length32(int i) const noexcept;
    std::int64_t totalLength(int i) const noexcept; // all divisions, no offset
    std::int64_t refLength(int i) const noexcept;
    std::int64_t numYDivisions(int i) const noexcept;
    double const * data(int i) const;
    complex const * complexData(int i) const;
    char const * const * stringData(int i) const; // not advanced
    double const * data(int i, std::int64_t division) const;
    complex const * complexData(int i, std::int64_t division) const;
    char const * const * stringData(int i, std::int64_t division) const;
    double const * refData(int i) const;
    complex const * complexRefData(int i) const;
    YString refName(int i) const;
    YString const & getFuncName() const noexcept { return funcName; }
    NamedVector * getXVec(int i) const noexcept;
    NamedVector * getYVec(int i) const;                           // writes a repeated scalar out
    void getYDivisionLabelArray(int i, NameArray * labels) const; // appends
    // Fills `out` with argument i, both sides as views of the current division. False when there is none.
    bool assignXYVec(XYVector * out, int i, MessageHandler & messages, ScpParseContext const & context) const;

    // An operand that stands for a vector as long as the other one but holds one element per division: matchVecs marks
    // it instead of writing the copies out. `length`, `data` and the rest answer as if they had been.
    bool isRepeatedScalar(int i) const noexcept;
    // Element 0 of the current division of a repeated scalar, as a pair (imaginary part 0 when real).
    complex repeatedValue(int i) const;

    // --- for the call sequence
    void setNumArgs(int n);
    // Resolves and converts; the vector now stored, or null. The frame owns it if it is a temporary.
    dvec * add(dvec * vector, argType type, YRef<MessageHandler> const & messages, ScpParseContext const & context);
    bool add(NamedVector * y, NamedVector * ref); // not owned; false when the frame is full
    // Vectors that do not show so many divisions stay where they are.
    void setDivision(std::int64_t d) noexcept;
    void rewind() noexcept { // to the first division, where all vectors are between calls
        if (division != 0) setDivision(0);
    }
    bool setIncrementalOffset(std::int64_t offset, BaseVector const * reference) noexcept;
    bool hasIncrementalOffset() const noexcept; // of any argument
    // Makes two arguments comparable for the current division. False after an error, which has been reported; *count
    // is the length that argument 0 had on entry.
    bool matchVecs(MessageHandler & messages, std::int64_t * count);
    // All divisions as one: lengths and data of the y sides, and lengths of the references, over whole views.
    void setFlat(bool on) noexcept { flat = on; }
    bool isFlat() const noexcept { return flat; }

private:
    friend class FuncResult;
    friend struct ArgumentMatcher;
    struct Argument {
        NamedVector * y = nullptr;
        NamedVector * ref = nullptr;
        dvec * vector = nullptr; // the vector of both, when it came as one
        std::int64_t offset = 0; // incremental
        bool repeated = false;   // see isRepeatedScalar
    };

    Argument const * at(int i) const noexcept { return i >= 0 && i < used ? &arguments[i] : nullptr; }
    NamedVector * yOf(int i) const noexcept; // y as it is stored; null when there is none
    NamedVector * refOf(int i) const noexcept;
    NamedVector * realised(int i) const; // y, a repeated scalar written out first
    void writeOut(int i) const;          // y repeated to the lengths of the other argument
    // Lengths without offset, as if repeated scalars had been written out.
    std::int64_t rawLength(int i) const noexcept;
    std::int64_t storedLength(int i) const noexcept; // ignores the repetition
    // A new temporary that shares the data of argument i.
    dvec * copyOf(int i) const;
    // Puts a vector in the place of y, and of the reference where that belonged to the vector replaced, which is
    // released if it was a temporary of the frame. It stands nowhere else: operands that are one need no matching.
    void replace(int i, dvec * vector) const;
    void releaseOwned(int i) noexcept;
    bool standsElsewhere(int i) const noexcept; // the vector of i is that of another argument as well
    bool owns(int i) const noexcept;

    static constexpr int inlineArguments = 4;
    Argument inlineStore[inlineArguments];
    std::unique_ptr<Argument[]> heapStore;
    Argument * arguments = inlineStore;
    int numArgs = 0; // capacity
    int used = 0;
    std::int64_t division = 0; // last one set
    bool owner = true;
    bool flat = false;
    YString funcName;
};

// The result of a call. The vectors belong to the evaluator.
class TORVELAN_API FuncResult {
public:
    // --- for handlers
    void setType(VD_type yType_, VD_type refType_) noexcept;
    void setPhysType(PhysType yPhysType, PhysType refPhysType); // PT_UNCHANGED leaves one as it is
    void setName(YString name);
    void setRefName(YString name);
    // Room for n elements of the kind set (plus the incremental offset), a new division behind earlier ones.
    // The elements are not cleared. Throws MemoryException.
    void allocate(std::int64_t n, ResultAllocType how, std::int64_t hint);
    void allocateRef(std::int64_t n, ResultAllocType how, std::int64_t hint);
    // Kind, room, and the writable elements of this call, cleared to zero.
    double * makeReal(std::int64_t n, ResultAllocType how, std::int64_t hint);
    complex * makeComplex(std::int64_t n, ResultAllocType how, std::int64_t hint);
    double * makeRealRef(std::int64_t n, ResultAllocType how, std::int64_t hint);
    complex * makeComplexRef(std::int64_t n, ResultAllocType how, std::int64_t hint);
    char ** makeString(std::int64_t n); // null slots for strdup results, in a division of their own
    double * data();
    complex * complexData();
    char ** stringData(); // not advanced
    double * refData();
    complex * complexRefData();
    std::int64_t length() const noexcept;
    std::int64_t length(std::int64_t division) const noexcept;
    std::int64_t getNumYVecDivisions() const noexcept;
    void setDivisionLabelArray(NameArray const & labels);
    void setMultiple();
    void emptyVectors(); // back to the state before this handler call
    void copy(FuncResult const & other);
    // Take over the data, behind those of earlier divisions; y keeps its name.
    void copyVector(NamedVector const & vector);
    void copyVector(NamedVector const & vector, NamedVector const & reference);
    void importNames(FuncResult const & other);
    // Carries the reference of an argument along, sharing its data unless the kind has to change.
    bool copyRefFromArgs(FuncArgs const & args, ResultAllocType how, std::int64_t hint, int argIndex);
    bool getPreferComplexResult() const noexcept { return preferComplexResult; }
    // Instead of allocate: takes the element memory of a temporary argument for n elements of the kind set, where
    // nobody else needs it. Elements keep their place, so a handler may then work in place; it has fetched the
    // argument's pointer before. False when that cannot be.
    bool takeStorage(FuncArgs const & args, int argIndex, std::int64_t n);

    // --- for the call sequence
    FuncResult() = default;
    void add(NamedVector * y_, NamedVector * ref_) noexcept;
    void add(dvec * vector) noexcept;
    void setDivision(std::int64_t d) noexcept { division = d; }
    void setIncrementalOffset(std::int64_t offset) noexcept { incrementalOffset = offset; }
    void setNumDivisions(std::int64_t n) noexcept { numDivisions = n; }
    void setPreferComplexResult() noexcept { preferComplexResult = true; }
    void beginCall() noexcept;            // notes the state that emptyVectors goes back to
    bool hasNewDivision() const noexcept; // y has data, and more divisions than when the call began
    NamedVector * getYVec() const noexcept { return y; }
    NamedVector * getXVec() const noexcept { return ref; }

private:
    void allocate(NamedVector & vector, VD_type kind, std::int64_t n, ResultAllocType how, std::int64_t hint);
    void startWith(NamedVector & vector, VD_type kind, std::int64_t n, std::int64_t room);
    std::int64_t capacity(std::int64_t n, ResultAllocType how, std::int64_t hint) const noexcept;
    template <class T> T * advanced(T * elements, NamedVector const & vector) const noexcept;
    void takeOver(NamedVector & to, NamedVector const & from) const;
    void convertRef(FuncArgs const & args, ResultAllocType how, std::int64_t hint, int argIndex);

    std::int64_t allocatedLength = 0;
    std::int64_t division = 0; // output division of this call
    std::int64_t incrementalOffset = 0;
    std::int64_t numDivisions = 1;
    bool preferComplexResult = false;
    NamedVector * ref = nullptr;
    NamedVector * y = nullptr;
    VD_type refType = VD_UNSET;
    VD_type yType = VD_UNSET;
    // What a vector held before this handler call.
    struct Mark {
        std::int64_t total = 0, divisions = 0;
    };
    static Mark markOf(NamedVector const * vector) noexcept;
    static void cutBack(NamedVector * vector, Mark const & mark);
    Mark yMark, refMark;
};

// Calls the function named by the frame (getFuncName) on a frame filled from outside; a missing function does nothing.
// Messages go to the host's default handler.
TORVELAN_API void vec_CallFunction(FuncArgs const & args, FuncResult * result);
