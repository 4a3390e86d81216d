// The start of zaxmat. Scripts ask for the version in passing, so that neither Qt nor the libraries of the program are
// loaded for it.

#include <cstdio>
#include <cstring>
#include <initializer_list>

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int internalError = 70;

/// Whoever starts the program may have closed a standard stream. The next file opened would take its place, and a
/// document would receive what is meant for the terminal.
void KeepStandardStreamsApart()
{
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        // Opened the wrong way round, so that using it fails as using the closed stream would.
        if (fcntl(stream, F_GETFD) == -1)
            open("/dev/null", stream == STDIN_FILENO ? O_WRONLY : O_RDONLY);
    }
}

bool IsVersionAsked(int argc, char* argv[])
{
    return argc == 2 && std::strcmp(argv[1], "--version") == 0;
}

/// False when the standard output does not take it; then the program itself is to say why.
bool PrintVersion()
{
    return std::puts("zaxmat " ZAXMAT_VERSION) != EOF && std::fflush(stdout) == 0;
}

} // namespace

int main(int argc, char* argv[])
{
    KeepStandardStreamsApart();
    if (IsVersionAsked(argc, argv) && PrintVersion())
        return 0;
    void* const library = dlopen(ZAXMAT_PROGRAM_FILE, RTLD_NOW);
    using Program = int (*)(int, char*[]);
    const auto program = library ? reinterpret_cast<Program>(dlsym(library, "ZaxmatProgram")) : nullptr;
    if (program)
        return program(argc, argv);
    std::fprintf(stderr, "zaxmat: The program is not installed completely: %s\n", dlerror());
    return internalError;
}
