#include "Import/Spice3.h"

#include "Import/GroupBeingRead.h"
#include "Import/OutputFile.h"
#include "Import/Spice3Header.h"
#include "Import/Spice3Values.h"
#include "Import/Spice3Variables.h"
#include "support/Streams.h"

Spice3Result readSpice3(tvfstream & stream, Group * group, OutputFile & output, std::int32_t bufferBytes,
                        MessageHandler & messages) {
    Spice3Header header;
    Spice3Result result = readSpice3Header(stream, header);
    if (result != Spice3Result::done) return result;
    if (!header.title.empty()) group->title = header.title;
    group->date = header.date;
    group->name = header.groupName;

    YArray<dvec *> vectors; // in file order; the group owns them
    result = readSpice3Variables(stream, group, header, {bufferBytes, !output.isWanted()}, vectors, messages);
    if (result != Spice3Result::done) return result;
    output.attachTo(*group);
    result = readSpice3Values(stream, header, vectors);
    if (result != Spice3Result::done) return result;
    output.finish();
    listAsRead(group, messages);
    return Spice3Result::done;
}
