#ifndef ZAXHOSTCHECKSUM_H
#define ZAXHOSTCHECKSUM_H

// Private to the host: may change without notice.

#include "ZAXHostExport.h"

#include <QByteArrayView>

/// The CRC-32 of zlib.
namespace ZAXHostChecksum {

/// The checksum of \a bytes. Objects of documents are short, and zlib takes its time with what is: where the processor
/// multiplies polynomials itself, that is several times as fast.
ZAXHOST_EXPORT quint32 Of(QByteArrayView bytes);

} // namespace ZAXHostChecksum

#endif
