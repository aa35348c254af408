// The vector classes. Each adds one thing: IfVector (a handle to shared data), BaseVector (a view of that data),
// NamedVector (a name), XYVector (a reference, the x values). dvec (dvec.h) adds membership of a group.
//
// The data lie in a VectorRep that handles share by counting. Read operations never copy; the write operations of
// BaseVector make the record unique first; the append operations of IfVector never do, so that everybody who shares
// the x values of a run sees them grow.
#pragma once

#include "torvelan/Complex.h"
#include "torvelan/Containers.h"
#include "torvelan/Export.h"
#include "torvelan/PhysType.h"
#include "torvelan/ResultCodes.h"
#include "torvelan/YString.h"

#include <cstddef>
#include <cstdint>

// Kind of the elements of a vector.
enum VD_type : unsigned char {
    VD_NONE = 0,    // no element kind yet
    VD_REAL = 1,    // IEEE double
    VD_COMPLEX = 2, // pair of doubles, real part first
    VD_STRING = 3,  // heap string (strdup/free), null for an empty slot
    VD_ABSENT = 4,  // answer for an argument that does not exist
    VD_UNSET = 5,   // a FuncResult whose kind has not been set
};

struct VectorRep;
class NewDataBlock;
class SharedBlockToken;

// Describes values for a new vector: vec_MakeVector reads name, type and physType.
struct VectorParam {
    void const * values = nullptr;
    YString name;
    long long count = 0;
    VD_type type = VD_REAL;
    PhysType physType = PT_UNKNOWN;
};

// Handle to shared data. A default-made handle has no data record: addVal then answers VEC_NO_DATA_RECORD, the other
// operations do nothing or answer zero.
class TORVELAN_API IfVector {
public:
    IfVector() noexcept = default;
    IfVector(IfVector const & other) noexcept; // shares the data
    IfVector & operator=(IfVector const & other) noexcept;
    virtual ~IfVector();

    // Announces a new division, filled by what is appended next. A non-empty name is that of the group whose labels
    // are to be fetched when somebody asks for the label of a division.
    virtual void addDivision(YString const & labelGroupName);
    virtual void addDivision(YString const & labelGroupName, unsigned long long extraOffset);
    // Appends one value. A complex value is stored only in a complex vector, a real one also there, as (value, 0);
    // otherwise nothing is stored and the answer is VEC_OK.
    virtual VEC_ERROR addVal(complex const & value);
    virtual VEC_ERROR addVal(double value);
    // Appends n values, as addVal of each would; they do not lie in this vector.
    VEC_ERROR addVals(double const * values, std::size_t n);
    VEC_ERROR addVals(complex const * values, std::size_t n);

    // Takes memory for n numbers more, which will be appended; the length stays.
    void expectVals(std::int64_t n);
    // Makes a numeric vector complex for everybody who shares its data. Allowed only while there are none: false
    // otherwise, unless it is complex already.
    bool becomeComplex();
    // Appends the first `bytes` bytes of a block of shared memory, which is given back. A block that is refused (a
    // number that stands for no pool, or for no block) counts as zeros. True when the bytes were taken.
    bool addSharedBlock(SharedBlockToken pool, int blockId, unsigned long long bytes);

    // Joins the data of `other` behind this vector's data, division entries shifted by the size that this had before;
    // the labels become `labels`. With the number of a link between the files of both (-1: none) no bytes move.
    void appendVector(IfVector const * other, int linkIndex, NameArray const & labels);
    unsigned long long getObjectSize() const noexcept; // bytes of element data, in memory or not
    bool isRealised() const noexcept;                  // true when there is a data block
    void setBufferSize(int bytes) noexcept;            // kept for callers; has no effect
    // Fits the memory of numeric data to their size; data that a file is written with go to the file.
    void shrinkReal();

protected:
    explicit IfVector(VectorRep * adopted) noexcept : rep(adopted) {}
    VectorRep * appendable(); // the record for append operations: never copied, null when there is none
    mutable VectorRep * rep = nullptr;
};

// A view of shared data: which divisions it shows, which one is current, and how long they are to look.
// Divisions are numbered from 0 relative to the view unless an operation says otherwise. An index out of range is a
// silent no-op of the view operations.
class TORVELAN_API BaseVector : public IfVector {
public:
    struct Range {
        double min, max;
    };

    BaseVector() noexcept; // an empty real vector
    BaseVector(BaseVector const & other) noexcept = default;
    BaseVector & operator=(BaseVector const & other) noexcept = default;
    ~BaseVector() override;

    // --- reading; none of these copies or scans
    std::int64_t length() const; // of the current division
    std::int64_t length(std::int64_t division) const;
    std::int64_t numDivisions() const; // at least 1
    std::int64_t totalLength() const;
    VD_type type() const noexcept;
    PhysType physType() const noexcept;
    bool isMultiple() const noexcept; // the divisions are runs of one parameterised analysis
    bool isReal() const noexcept { return type() == VD_REAL; }
    bool isComplex() const noexcept { return type() == VD_COMPLEX; }
    bool isString() const noexcept { return type() == VD_STRING; }
    bool noData() const { return length() == 0; }
    bool isWhole() const noexcept { return firstDivision == 0 && endDivision == -1 && forcedLength == -1; }

    // Address of the elements of the current (or the given) division; null when the kind differs or it is empty.
    // Valid until the vector is written, appended to or released.
    double const * realData() const;
    complex const * complexData() const;
    char const * const * stringData() const;
    double const * realData(std::int64_t division) const;
    complex const * complexData(std::int64_t division) const;
    char const * const * stringData(std::int64_t division) const;
    // Address of the first element of all divisions of a whole view, in the kind given; null as above.
    double const * allRealData() const;
    complex const * allComplexData() const;

    double getReal(std::int64_t i) const; // 0.0 for other kinds or an index out of range; the real part of a complex
    double getImag(std::int64_t i) const;
    double getMag(std::int64_t i) const;
    char const * getString(std::int64_t i) const; // null for other kinds, an empty slot or an index out of range
    double getReal(std::int64_t i, std::int64_t division) const;
    double getImag(std::int64_t i, std::int64_t division) const;
    double getMag(std::int64_t i, std::int64_t division) const;
    char const * getString(std::int64_t i, std::int64_t division) const;

    // Copies `count` elements of a division (the current one for ~0) without making the block resident. False when
    // the kind differs, the division is empty or fewer elements are there.
    bool readRealBlock(double * dest, std::int64_t count, std::uint64_t division) const;
    bool readComplexBlock(complex * dest, std::int64_t count, std::uint64_t division) const;

    // Least and greatest value, cached: of all data for a whole view, of the current division otherwise. For complex
    // data the magnitude or the real part. Valid until the next call. {DBL_MAX, -DBL_MAX} when there is no data.
    Range getRange(bool useMagnitude) const;

    YString divisionLabel(std::int64_t i) const; // "?" when unknown among several, empty for the only division
    void divisionLabels(NameArray * out) const;  // appends the labels of all divisions shown
    // The label array as stored (null when there is none), after fetching it from the label group.
    std::shared_ptr<NameArray const> sharedLabels() const;
    // Both show the same data: the same record and view, or equal elements in the current divisions.
    bool sameData(BaseVector const & other) const;
    bool sharesRep(BaseVector const & other) const noexcept; // the very same record
    // Equal for vectors that share a record, and for no others while they live. Null when there has never been any
    // data.
    void const * dataIdentity() const noexcept;
    // The divisions of both whole views start at the same element numbers. O(1) when the tables are one.
    bool sameDivisions(BaseVector const & other) const;
    // No division shown has length 0.
    bool everyDivisionHasData() const;
    std::int64_t currentDivisionIndex() const noexcept { return currentDivision - firstDivision; }

    // --- writing; each makes the record unique first
    void setSize(std::int64_t n, VD_type type);  // new string slots are null; new numbers are not cleared
    void allocate(std::int64_t n, VD_type type); // capacity for n elements, length unchanged
    void setLength(std::int64_t n);              // total length; new string slots are null, new numbers not cleared
    double * writableRealData();
    complex * writableComplexData();
    char ** writableStringData();
    void setString(char const * s, std::int64_t i);
    // Copies an element of the current divisions; the kinds are equal. Indices are checked.
    void copyElement(BaseVector const & src, std::int64_t dstIndex, std::int64_t srcIndex);
    void setPhysType(PhysType type); // an equal value is not written, and nothing is copied then
    void setMultiple();
    void setComplexFlag(); // the kind becomes complex, the bytes stay
    void setLabels(NameArray const & labels, bool requireUnique);
    void setLabels(std::shared_ptr<NameArray const> labels, bool requireUnique); // shares the array
    void collapseDivisions();
    void expandTo(YArray<std::int64_t> const & lengths);
    void mergeAscending(double const * a, std::int64_t na, double const * b, std::int64_t nb, std::int64_t * n);
    // Gives this vector (whole, holding the total number of elements already) the divisions of `other`.
    void adoptDivisions(BaseVector const & other);
    // Gives this vector (whole) divisions of n elements each.
    void divideEvenly(std::int64_t n);
    // Cuts the data back to `total` elements in `divisions` divisions; releases strings behind them.
    void truncate(std::int64_t total, std::int64_t divisions);
    // Takes over the element memory of `donor` (sole holder, whole view, memory only), as n elements of `type` with
    // unspecified contents; the donor is empty then. False, and nothing changed, when that cannot be.
    bool takeStorage(BaseVector & donor, std::int64_t n, VD_type type);
    bool ownsStorageAlone() const noexcept; // takeStorage from this would succeed

    // --- the view
    void setDivision(std::int64_t i);
    void selectDivision(std::int64_t i);
    void openDivisionAt(std::int64_t i);
    bool limitDivisions(std::int64_t n);
    bool limitLength(std::int64_t n);
    void reset();

protected:
    // A copy that shares without giving an untouched empty vector a record of its own.
    void shareLazily(BaseVector const & other) noexcept;

private:
    friend class XYVector;
    friend struct VectorFileAccess; // of the layer of data files

    VectorRep const & record() const noexcept; // that of an untouched vector when there is none
    VectorRep * unique();                      // copy on write
    template <class T> T * writable(VD_type kind);
    bool acceptsLabels(std::size_t count, bool requireUnique) const;
    std::int64_t absolute(std::int64_t division) const noexcept; // -1 for a negative one
    std::int64_t shownLength(std::int64_t division) const;       // by absolute index
    void showAll() noexcept;

    std::int64_t forcedLength = -1;   // length reported for every division, when not -1
    std::int64_t currentDivision = 0; // absolute
    std::int64_t firstDivision = 0;   // absolute
    std::int64_t endDivision = -1;    // absolute, one past the last; -1: through the end of the data
};

// Adds a name.
class TORVELAN_API NamedVector : public BaseVector {
public:
    NamedVector() = default;
    explicit NamedVector(YString vectorName) : name_(std::move(vectorName)) {}
    NamedVector(NamedVector const & other) = default;
    NamedVector & operator=(NamedVector const & other) = default; // shares the data and takes the name
    ~NamedVector() override;

    virtual void setName(YString newName);
    YString const & name() const noexcept { return name_; }

protected:
    YString name_;
};

// Adds the reference: a whole vector of its own. A vector without reference has one that holds no data.
class TORVELAN_API XYVector : public NamedVector {
public:
    using NamedVector::NamedVector;
    XYVector() = default;
    XYVector(XYVector const & other);
    XYVector & operator=(XYVector const & other);
    ~XYVector() override;

    NamedVector ref;
};

// --- labels of divisions
// The stored form: text, value and PhysType joined by ';'. A ';' in the text becomes '_'.
TORVELAN_API YString vec_ComposeDivisionString(YString const & label, double value, PhysType physType);
// The form for people, "name=value/name=value", of a stored form.
TORVELAN_API YString vec_ComposeDivisionLabel(YString const & stored);
