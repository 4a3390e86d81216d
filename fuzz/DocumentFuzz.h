#ifndef DOCUMENTFUZZ_H
#define DOCUMENTFUZZ_H

#include <QByteArray>

/// Loads the document file \a bytes, once refusing damage and once recovering what is left. What could be loaded is
/// saved and loaded again, whole and as it was.
void CheckDocument(const QByteArray& bytes);

#endif
