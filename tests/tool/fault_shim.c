// Preloaded into the tool: the FAULT_AT-th call of the function FAULT_CALL fails with FAULT_ERRNO. Or, by
// FAULT_ACTION, it is the last thing that the process does (kill), takes half of what it is given (half), or
// is made just after somebody else has written to FAULT_FILE (change). A byte goes to the descriptor
// FAULT_TOLD where it comes to that.
#define _GNU_SOURCE
// As the tool: the functions of 32-bit processors that take offsets of 64 bits have names of their own.
#if __SIZEOF_POINTER__ == 4
#define _FILE_OFFSET_BITS 64
#define __open_2 __open64_2
#endif
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

static atomic_long calls;

static void change_file(const char* path) {
    const long fd = syscall(SYS_openat, AT_FDCWD, path, O_WRONLY | O_APPEND);
    syscall(SYS_write, fd, "x", 1);
    syscall(SYS_close, fd);
}

// What becomes of this call: nothing, or the first letter of the action.
static char fault_of(const char* name) {
    const char* const call = getenv("FAULT_CALL");
    const char* const action = getenv("FAULT_ACTION");
    if (call == NULL || strcmp(call, name) != 0
        || atomic_fetch_add(&calls, 1) + 1 != atol(getenv("FAULT_AT")))
        return 0;
    syscall(SYS_write, atoi(getenv("FAULT_TOLD")), "x", 1);
    if (*action == 'k')
        kill(getpid(), SIGKILL);
    if (*action == 'c')
        change_file(getenv("FAULT_FILE"));
    if (*action == 'f')
        errno = atoi(getenv("FAULT_ERRNO"));
    return *action;
}

static void* real_of(const char* name) {
    char wide[32];
    snprintf(wide, sizeof wide, "%s64", name);
    void* const found = sizeof(void*) == 4 ? dlsym(RTLD_NEXT, wide) : NULL;
    return found != NULL ? found : dlsym(RTLD_NEXT, name);
}

#define FAULTY(name, parameters, ...)                                                                        \
    int name parameters {                                                                                    \
        int(*real) parameters = (int(*) parameters)real_of(#name);                                           \
        return fault_of(#name) == 'f' ? -1 : real(__VA_ARGS__);                                              \
    }

FAULTY(mkostemp, (char* path, int flags), path, flags)
FAULTY(fchmod, (int fd, mode_t mode), fd, mode)
FAULTY(fsync, (int fd), fd)
FAULTY(fdatasync, (int fd), fd)
FAULTY(flock, (int fd, int operation), fd, operation)
FAULTY(ftruncate, (int fd, off_t size), fd, size)
FAULTY(link, (const char* from, const char* to), from, to)
FAULTY(rename, (const char* from, const char* to), from, to)
FAULTY(unlink, (const char* path), path)
FAULTY(mkdir, (const char* path, mode_t mode), path, mode)
FAULTY(close, (int fd), fd)

static int open_or_fail(const char* path, int flags, mode_t mode) {
    int (*real)(const char*, int, ...) = (int (*)(const char*, int, ...))real_of("open");
    return fault_of("open") == 'f' ? -1 : real(path, flags, mode);
}

int open(const char* path, int flags, ...) {
    va_list more;
    va_start(more, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(more, mode_t) : 0;
    va_end(more);
    return open_or_fail(path, flags, mode);
}

// What open() is called where the C library checks its arguments.
int __open_2(const char* path, int flags);
int __open_2(const char* path, int flags) {
    return open_or_fail(path, flags, 0);
}

#define FAULTY_TRANSFER(name, parameters, ...)                                                               \
    ssize_t name parameters {                                                                                \
        ssize_t(*real) parameters = (ssize_t(*) parameters)real_of(#name);                                   \
        const char fault = fault_of(#name);                                                                  \
        if (fault == 'h' && size > 1)                                                                        \
            size = size / 2;                                                                                 \
        return fault == 'f' ? -1 : real(__VA_ARGS__);                                                        \
    }

FAULTY_TRANSFER(write, (int fd, const void* bytes, size_t size), fd, bytes, size)
FAULTY_TRANSFER(pread, (int fd, void* bytes, size_t size, off_t at), fd, bytes, size, at)
