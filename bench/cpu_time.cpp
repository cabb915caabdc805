// For `make bench`: runs a command with its input from a file and its output
// discarded, and prints the CPU time (user + system) it used, in milliseconds.
// The shell's `time` would add its own fork to a run of a few milliseconds, and
// /usr/bin/time counts in hundredths of a second. Exits with the command's status.
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

extern char **environ;

int main(int argc, char *argv[])
{
    if (argc < 3) {
        std::fputs("Usage: cpu_time INPUT-FILE COMMAND [ARGUMENT...]\n", stderr);
        return 2;
    }
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 0, argv[1], O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    int error = posix_spawnp(&child, argv[2], &actions, nullptr, argv + 2, environ);
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0) {
        std::fprintf(stderr, "cpu_time: cannot run %s\n", argv[2]);
        return 127;
    }
    int status = 0;
    struct rusage usage {};
    if (wait4(child, &status, 0, &usage) != child)
        return 127;
    double ms = (usage.ru_utime.tv_sec + usage.ru_stime.tv_sec) * 1e3 +
                (usage.ru_utime.tv_usec + usage.ru_stime.tv_usec) / 1e3;
    std::printf("%.3f\n", ms);
    return WIFEXITED(status) ? WEXITSTATUS(status) : 128;
}
