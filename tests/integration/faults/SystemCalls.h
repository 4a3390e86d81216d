#ifndef SYSTEMCALLS_H
#define SYSTEMCALLS_H

#include <functional>

/// Stands between this program and the system's files. As long as anything is planned for them, calls that read or
/// write take a thousand bytes at most.
namespace SystemCalls {

enum Call
{
    Open,
    Read,
    Write,
    Rename,
    Truncate,
    /// Of a file that is open.
    Status,
};

/// For as long as it lives, a call of one kind is held up: just before the \a nth one, counted from 0, \a action runs.
/// What that does with files goes straight to the system.
class Interruption
{
public:
    Interruption(Call call, int nth, const std::function<void()>& action);
    ~Interruption();
    Interruption(const Interruption&) = delete;
    Interruption& operator=(const Interruption&) = delete;

    /// How many calls of that kind there have been.
    int Count() const;
};

/// For as long as it lives, \a times calls of one kind fail with \a error (errno), from the \a nth one on, counted from
/// 0.
class Failure
{
public:
    Failure(Call call, int nth, int error, int times = 1000);
    ~Failure();
    Failure(const Failure&) = delete;
    Failure& operator=(const Failure&) = delete;
};

} // namespace SystemCalls

#endif
