#ifndef ZAXMAT_RECORDSCAN_H
#define ZAXMAT_RECORDSCAN_H

#include <QByteArray>
#include <QByteArrayView>

#include <optional>
#include <vector>

namespace zaxmat {

/// Where a record stands in the text of a catalogue.
struct RecordPlace
{
    /// The whole member, from the quotation mark before its name to the end of the record.
    QByteArrayView member;
    /// The record's JSON object.
    QByteArrayView text;
    QByteArrayView key;
    QByteArrayView materialKey;
    bool isMaterial = true;
};

/// The materials and stock forms in the \a text of a catalogue, found without reading their values. That takes a part
/// of the time of parsing the text, but only goes for what this program and the library write: members in their order,
/// each an object named by its key, and keys in ASCII. Nothing is given for anything else, and for what may be no JSON
/// at all: that is for the parser to say.
std::optional<std::vector<RecordPlace>> ScanRecords(QByteArrayView text);

} // namespace zaxmat

#endif
