#ifndef ZAXMATROOTPRIVATE_H
#define ZAXMATROOTPRIVATE_H

// Private: the data of ZAXMatRoot.

#include <QList>

class ZAXFeatObject;
class ZAXMatMaterial;
class ZAXMatRoot;

class ZAXMatRootPrivate
{
public:
    /// Has \a root announce its materials.
    explicit ZAXMatRootPrivate(ZAXMatRoot* root);

    /// The materials among all features below the root, in the host's order.
    const QList<ZAXMatMaterial*>& AllMaterials() const;

    ZAXMatRoot* q_ptr;

private:
    /// What the host listed last, and the materials of it. As long as the list is kept no other one can stand at its
    /// address: if the host hands out the same one, the materials are the same ones too.
    mutable QList<ZAXFeatObject*> m_allChildren;
    mutable QList<ZAXMatMaterial*> m_allMaterials;
};

#endif
