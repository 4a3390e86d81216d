// The text of a catalogue as the library reads it and as Qt does: where both take it, they make the same of it, and
// what Qt does not take the library does not either. And a record that was read and written reads as it did.

#include "CatalogueModel.h"
#include "FuzzInput.h"
#include "ZAXMatCatalogueReader.h"

#include <QBuffer>
#include <QJsonDocument>

namespace {

/// In pieces of \a pieceSize bytes.
void RequireAsQtReads(QByteArray text, qsizetype pieceSize)
{
    QBuffer buffer(&text);
    buffer.open(QIODevice::ReadOnly);
    const auto records = ZAXMatCatalogueReader(buffer, pieceSize).Read();
    if (!records)
        return;
    Require(QJsonDocument::fromJson(text).isObject(), "Qt takes what the library reads");
    const auto byQt = CatalogueModel::ReadByQt(text);
    Require(static_cast<qsizetype>(records->size()) == byQt.size(), "both find the same number of records");
    for (qsizetype i = 0; i < byQt.size(); ++i)
        Require(Describe(records->at(static_cast<size_t>(i))) == Describe(byQt.at(i)), "both read the same record");
}

QByteArray TextOf(const ZAXMatDefinition& record)
{
    return QJsonDocument(QJsonObject{{QString(), record.ToJson()}}).toJson();
}

bool IsAscii(const QByteArrayList& names)
{
    const auto isAscii = [](const QByteArray& name) {
        return std::ranges::all_of(name, [](char byte) { return static_cast<quint8>(byte) < 0x80; });
    };
    return std::ranges::all_of(names, isAscii);
}

bool HasAsciiNames(const ZAXMatDefinition& record)
{
    const QByteArrayList extensions = record.GetDefinedExtensions();
    return IsAscii({record.GetKey(), record.GetMaterialKey()}) && IsAscii(extensions) &&
           std::ranges::all_of(extensions, [&](const QByteArray& extension) {
               return IsAscii(record.GetDefinedProperties(extension));
           });
}

/// Of a text that starts with a byte-order mark, Qt writes that and passes it over when it reads.
bool IsReadAsWritten(const ZAXMatDefinition& record)
{
    return HasAsciiNames(record) && !TextOf(record).contains("\"\xef\xbb\xbf");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    const QByteArray text = FuzzInput(data, size).Rest();
    // Pieces that end in any place, by the size of the text.
    RequireAsQtReads(text, 1 + text.size() % 61);
    RequireAsQtReads(text, text.size() + 1);
    const auto records = CatalogueModel::ReadByQt(text);
    for (ZAXMatDefinition record : records) {
        // A name that is missing is written as an empty one.
        if (record.GetName().isNull())
            record.SetName(QLatin1String(""));
        if (IsReadAsWritten(record))
            Require(Describe(CatalogueModel::ReadByQt(TextOf(record)).constFirst()) == Describe(record),
                    "a record is read as it was written");
    }
    return 0;
}
