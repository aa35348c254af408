#include "DataFiles/VectorFileAccess.h"

void VectorFileAccess::adopt(BaseVector & vector, VectorRep & rep) {
    rep.retain();
    vector.reset();
    vector.rep->release();
    vector.rep = &rep;
}

void VectorFileAccess::setView(BaseVector & vector, View view) {
    if (view == View()) return;
    std::int64_t const n = vector.record().divisions();
    bool const isOpen = view.endDivision == -1;
    bool const exists = view.firstDivision >= 0 && view.firstDivision < n &&
                        (isOpen || (view.endDivision > view.firstDivision && view.endDivision <= n));
    if (!exists) return;
    vector.firstDivision = vector.currentDivision = view.firstDivision;
    vector.endDivision = view.endDivision;
}
