// dvec: a vector that belongs to a group, or a temporary.
#pragma once

#include "torvelan/Export.h"
#include "torvelan/Messages.h"
#include "torvelan/Vectors.h"

#include <cstddef>
#include <cstdint>

struct Group;

enum dvecFlags : std::uint16_t {
    VF_READONLY = 1, // may not be assigned; release() leaves it alive
    VF_ALIAS = 4,    // element 0 is an expression, evaluated whenever the vector is used
    VF_INGROUP = 8,  // stands in its group's name table; without this the vector is a temporary
    VF_REFALIAS = 16 // element 0 names another vector, "group:vector"; VF_ALIAS is set as well
};

// A member of a group, owned by it, or a temporary, which lives in the loose pool until it is released or collected.
// Every new dvec is a temporary; they are always made with new.
class TORVELAN_API dvec : public XYVector {
public:
    // An empty real vector. A null group means the local group.
    dvec(YString name, Group * group, PhysType physType);
    // Literals of one element for the local group: a real one of PT_LITERAL, a string one.
    dvec(YString name, double value);
    dvec(YString name, std::string_view text, Group * group, PhysType physType);
    // As above for plain C strings. A null name is an internal error, and the vector is called "unnamed".
    dvec(char const * name, Group * group, PhysType physType);
    dvec(char const * name, double value);
    dvec(char const * name, std::string_view text, Group * group, PhysType physType);
    // "group:name"; no group part, an empty one and an unknown group (with a message) give the local group.
    dvec(char const * qualifiedName, MessageHandler * messages);
    // Shares the data of both sides; a temporary, and not read-only.
    dvec(dvec const & other);
    dvec & operator=(dvec const &) = delete;
    ~dvec() override;

    static void * operator new(std::size_t size);
    static void operator delete(void * p, std::size_t size) noexcept;

    void setName(YString newName) override; // reindexes the group's table
    void enterGroup();
    void leaveGroup();
    // Takes the data of both sides of `other`, keeps its own name and group, and enters the group if it is not in it.
    void assign(dvec const & other);
    // Ends the vector, unless it is read-only. The object is gone afterwards.
    void release();
    YString fullName() const; // "group:name"
    // Target of a reference alias, or null. The target may be a reference alias itself.
    dvec * resolveReferenceAlias() const;

    bool isTemporary() const noexcept { return (flags & VF_INGROUP) == 0; }
    bool isAlias() const noexcept { return (flags & VF_ALIAS) != 0; }
    bool isReferenceAlias() const noexcept { return (flags & VF_REFALIAS) != 0; }
    bool isReadOnly() const noexcept { return (flags & VF_READONLY) != 0; }
    Group * owner() const noexcept { return group; }

    std::uint16_t flags = 0;
    bool converting = false; // re-entrance guard of the string-to-number conversion

private:
    friend class LoosePool;
    friend struct Group;
    Group * group = nullptr; // not owned
    // Links of the loose pool, both null outside it.
    dvec * poolPrevious = nullptr;
    dvec * poolNext = nullptr;
};
