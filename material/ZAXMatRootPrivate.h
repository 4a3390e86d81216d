#ifndef ZAXMATROOTPRIVATE_H
#define ZAXMATROOTPRIVATE_H

// Private: the data of ZAXMatRoot.

class ZAXMatRoot;

class ZAXMatRootPrivate
{
public:
    /// Has \a root announce its materials.
    explicit ZAXMatRootPrivate(ZAXMatRoot* root);

    ZAXMatRoot* q_ptr;
};

#endif
