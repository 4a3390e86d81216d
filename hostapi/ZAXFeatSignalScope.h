#ifndef ZAXFEATSIGNALSCOPE_H
#define ZAXFEATSIGNALSCOPE_H

#include "ZAXFeatExport.h"

class ZAXFeatObject;

/// Held while a signal about a change of a feature is raised. The document refuses to undo, to redo and to open a
/// transaction in that time, since the change is still being told about.
class ZAXFEATURE_EXPORT ZAXFeatSignalScope
{
public:
    explicit ZAXFeatSignalScope(const ZAXFeatObject* feature);
    ~ZAXFeatSignalScope();
    ZAXFeatSignalScope(const ZAXFeatSignalScope&) = delete;
    ZAXFeatSignalScope& operator=(const ZAXFeatSignalScope&) = delete;

private:
    int* m_depth;
};

#endif
