#ifndef ZAXALLOCATIONMETER_H
#define ZAXALLOCATIONMETER_H

#include <cstddef>

/// Measures how much memory of the heap is in use at most, beyond what was when the meter was made. One at a time, in
/// one thread.
class ZAXAllocationMeter
{
public:
    ZAXAllocationMeter();
    ~ZAXAllocationMeter();
    ZAXAllocationMeter(const ZAXAllocationMeter&) = delete;
    ZAXAllocationMeter& operator=(const ZAXAllocationMeter&) = delete;

    /// The most bytes in use at one time so far.
    static std::ptrdiff_t Peak();
};

#endif
