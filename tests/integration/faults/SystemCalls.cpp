#include "SystemCalls.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdarg>
#include <utility>

#include <dlfcn.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

struct Plan
{
    bool isOn = false;
    int nth = 0;
    int error = 0;
    int times = 0;
    std::function<void()> action;
    int count = 0;
};

std::array<Plan, 6> plans;
bool isHeldUp = false;

/// Carries out what is planned for the next call of the kind. False when that is to fail.
bool Begin(SystemCalls::Call call)
{
    Plan& plan = plans[call];
    if (!plan.isOn || isHeldUp)
        return true;
    const int number = plan.count++;
    if (plan.action && number == plan.nth) {
        isHeldUp = true;
        plan.action();
        isHeldUp = false;
    }
    if (number < plan.nth || number >= plan.nth + plan.times)
        return true;
    errno = plan.error;
    return false;
}

size_t Part(SystemCalls::Call call, size_t size)
{
    constexpr size_t few = 1000;
    return plans[call].isOn && !isHeldUp ? std::min(size, few) : size;
}

template <typename Function>
Function Next(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

} // namespace

SystemCalls::Interruption::Interruption(Call call, int nth, const std::function<void()>& action)
{
    plans[call] = {true, nth, 0, 0, action, 0};
}

SystemCalls::Interruption::~Interruption()
{
    plans = {};
}

int SystemCalls::Interruption::Count() const
{
    int count = 0;
    for (const Plan& plan : plans)
        count += plan.count;
    return count;
}

SystemCalls::Failure::Failure(Call call, int nth, int error, int times)
{
    plans[call] = {true, nth, error, times, {}, 0};
}

SystemCalls::Failure::~Failure()
{
    plans = {};
}

// In the place of the system's own, for this program and for Qt.
extern "C" {

__attribute__((visibility("default"))) int open64(const char* path, int flags, ...)
{
    using Function = int (*)(const char*, int, ...);
    static const auto next = Next<Function>("open64");
    std::va_list arguments;
    va_start(arguments, flags);
    const auto mode = va_arg(arguments, mode_t);
    va_end(arguments);
    return Begin(SystemCalls::Open) ? next(path, flags, mode) : -1;
}

__attribute__((visibility("default"))) ssize_t read(int file, void* buffer, size_t size)
{
    using Function = ssize_t (*)(int, void*, size_t);
    static const auto next = Next<Function>("read");
    return Begin(SystemCalls::Read) ? next(file, buffer, Part(SystemCalls::Read, size)) : -1;
}

__attribute__((visibility("default"))) ssize_t write(int file, const void* buffer, size_t size)
{
    using Function = ssize_t (*)(int, const void*, size_t);
    static const auto next = Next<Function>("write");
    return Begin(SystemCalls::Write) ? next(file, buffer, Part(SystemCalls::Write, size)) : -1;
}

__attribute__((visibility("default"))) int rename(const char* from, const char* to) noexcept
{
    using Function = int (*)(const char*, const char*);
    static const auto next = Next<Function>("rename");
    return Begin(SystemCalls::Rename) ? next(from, to) : -1;
}

__attribute__((visibility("default"))) int fstat(int file, struct stat* status) noexcept
{
    using Function = int (*)(int, struct stat*);
    static const auto next = Next<Function>("fstat");
    return Begin(SystemCalls::Status) ? next(file, status) : -1;
}

__attribute__((visibility("default"))) int ftruncate64(int file, off64_t size) noexcept
{
    using Function = int (*)(int, off64_t);
    static const auto next = Next<Function>("ftruncate64");
    return Begin(SystemCalls::Truncate) ? next(file, size) : -1;
}
}
