#include "Import/PSpice.h"

#include "Import/BinaryInput.h"
#include "Import/GroupBeingRead.h"
#include "Import/SignalName.h"
#include "Import/UniqueNames.h"

namespace {

bool readLayout(tvfstream & stream, Group * group, MessageHandler & messages) {
    switch (int const marker = stream.get()) {
    case PSpiceMarker::flat401:
    case PSpiceMarker::flat404:
    case PSpiceMarker::flat51: return readPSpiceFlat(stream, group, static_cast<std::uint8_t>(marker));
    case PSpiceMarker::records92: return readPSpiceRecords(stream, group, false, messages);
    case PSpiceMarker::records100: return readPSpiceRecords(stream, group, true, messages);
    default: return false;
    }
}

bool convertName(YString const & text, bool isReference, SignalName & signal) {
    if (!isReference) return convertSignalName(text, signal);
    signal = plainSignalName(text);
    return true;
}

} // namespace

bool readPSpice(tvfstream & stream, Group * group, MessageHandler & messages) {
    if (!readLayout(stream, group, messages)) return false;
    listAsRead(group, messages);
    return true;
}

bool readPSpiceNames(BinaryInput & input, Group * group, PSpiceShape shape, YArray<dvec *> & vectors) {
    constexpr std::size_t maxText = 102400; // names with all their alternatives
    UniqueNames uniqueName(*group);
    for (std::size_t i = 0; i < shape.numVectors; ++i) {
        YString const text = input.text(maxText);
        SignalName signal;
        if (input.failed() || !convertName(text, i == 0, signal)) return false;
        auto * const vector = new dvec(uniqueName(signal.name), group, signal.type);
        vector->allocate(shape.pointsAhead, shape.isComplex ? VD_COMPLEX : VD_REAL);
        vectors.push_back(vector);
        vector->ref = *vectors.front();
        vector->enterGroup();
    }
    return true;
}
