#ifndef ZAXHOSTPROBLEM_H
#define ZAXHOSTPROBLEM_H

#include <QByteArray>
#include <QString>

/// Something in a document that could not be brought back as it was saved.
struct ZAXHostProblem
{
    enum Kind
    {
        Unavailable, ///< a placeholder stands for the object, nothing is lost
        Unresolved,  ///< a reference leads nowhere, but is kept
        Damaged,     ///< part of the file is lost
    };

    Kind kind = Unavailable;
    /// The object it is about, as far as that is known; 0 and empty if it is not.
    quint64 id = 0;
    QByteArray className;
    /// For the user.
    QString message;
};

#endif
