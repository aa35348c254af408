// Children of tests that write without end: none outlives its test, or fills the disk.
#pragma once

#include <csignal>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <unistd.h>

// As fork(); the child dies with its parent, and no file of it grows beyond `mostBytes`.
inline pid_t forkBounded(rlim_t mostBytes = rlim_t{4} << 30) {
    pid_t const parent = getpid();
    pid_t const child = fork();
    if (child != 0) return child;
    rlimit const files{mostBytes, mostBytes};
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (getppid() != parent || setrlimit(RLIMIT_FSIZE, &files) != 0) _exit(1);
    return 0;
}
