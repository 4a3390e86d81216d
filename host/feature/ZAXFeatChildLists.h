#ifndef ZAXFEATCHILDLISTS_H
#define ZAXFEATCHILDLISTS_H

// Private to the host: may change without notice.

#include <QList>

#include <vector>

class ZAXFeatObject;

/// What stands below a feature at the top of a tree, by class, in the order of the tree. The lists are kept up to date
/// while single features come and go. Where many do between two questions, collecting anew costs less.
class ZAXFeatChildLists
{
public:
    explicit ZAXFeatChildLists(const ZAXFeatObject* top) : m_top(top) {}

    /// All features below the top that are of the class \a type or derived from it.
    QList<ZAXFeatObject*> Find(const QMetaObject* type);
    /// \a feature got its place below the top, with its subtree, or is of another class than it was. False when there
    /// is too much to follow: the lists are of no use any more.
    bool Place(ZAXFeatObject* feature);
    /// \a features, which is one or its subtree in the order of the tree, are about to lose their places. False as
    /// above.
    bool Remove(const QList<ZAXFeatObject*>& features);

private:
    struct List
    {
        const QMetaObject* type;
        QList<ZAXFeatObject*> features;
        /// Those that have a place and are not listed yet: most are not yet of the class that they will be.
        QList<ZAXFeatObject*> placed;
    };

    bool CountChange();
    static void Update(List& list, const ZAXFeatObject* top);

    const ZAXFeatObject* m_top;
    std::vector<List> m_lists;
    /// Since a list was asked for.
    int m_changes = 0;
};

#endif
