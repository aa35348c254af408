// VectorFileAccess: what files keep of a vector: its record of data and the part of it that the vector shows.
#pragma once

#include "Vectors/VectorRep.h"

struct VectorFileAccess {
    struct View {
        std::int64_t firstDivision = 0;
        std::int64_t endDivision = -1;
        friend bool operator==(View const &, View const &) = default;
    };

    // The record that appending goes to, made where there is none; shared with whoever shares it.
    static VectorRep & record(BaseVector & vector) { return *vector.appendable(); }
    static View view(BaseVector const & vector) noexcept { return {vector.firstDivision, vector.endDivision}; }
    // The vector shows this record from now on, which gets one holder more.
    static void adopt(BaseVector & vector, VectorRep & rep);
    // A view of other divisions than there are shows all of them.
    static void setView(BaseVector & vector, View view);
};
