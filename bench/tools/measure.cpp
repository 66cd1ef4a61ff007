// Runs one command with its output on a pipe and reports its wall time and peak memory:
//   measure OUTFILE SECONDS command [args...]
// prints "<wall seconds> <CPU seconds> <max RSS in KiB> <status>", the status being the exit
// code, "signalN" or "timeout", and saves the command's standard output in OUTFILE.
// Draining the pipe here, as fast as it fills, keeps a slow reader out of the timing.
#include <fcntl.h>
#include <poll.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

using Clock = std::chrono::steady_clock;

int Fail(const char* what) {
  std::perror(what);
  return 2;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 4) {
    std::fprintf(stderr, "usage: measure OUTFILE SECONDS command [args...]\n");
    return 2;
  }
  const double limit = std::atof(argv[2]);
  FILE* out = std::fopen(argv[1], "wb");
  if (!out) return Fail(argv[1]);
  int fds[2];
  if (pipe(fds) != 0) return Fail("pipe");

  const Clock::time_point start = Clock::now();
  const pid_t pid = fork();
  if (pid < 0) return Fail("fork");
  if (pid == 0) {
    const int null_fd = open("/dev/null", O_RDWR);
    dup2(null_fd, 0);
    dup2(null_fd, 2);
    dup2(fds[1], 1);
    close(fds[0]);
    close(fds[1]);
    execvp(argv[3], argv + 3);
    _exit(127);
  }
  close(fds[1]);

  bool timed_out = false;
  char buf[1 << 16];
  for (;;) {
    const double left = limit - std::chrono::duration<double>(Clock::now() - start).count();
    if (left <= 0) {
      timed_out = true;
      kill(pid, SIGKILL);
      break;
    }
    pollfd pfd{fds[0], POLLIN, 0};
    // Short waits near the limit stop a silent command close to it.
    const int ready = poll(&pfd, 1, left > 1 ? 1000 : 10);
    if (ready <= 0) continue;
    const ssize_t n = read(fds[0], buf, sizeof buf);
    if (n <= 0) break;
    std::fwrite(buf, 1, static_cast<size_t>(n), out);
  }
  int status = 0;
  rusage usage{};
  wait4(pid, &status, 0, &usage);
  const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
  close(fds[0]);
  std::fclose(out);

  std::string how = timed_out             ? "timeout"
                    : WIFSIGNALED(status) ? "signal" + std::to_string(WTERMSIG(status))
                                          : std::to_string(WEXITSTATUS(status));
  const auto secs = [](const timeval& tv) {
    return static_cast<double>(tv.tv_sec) + tv.tv_usec / 1e6;
  };
  const double cpu = secs(usage.ru_utime) + secs(usage.ru_stime);
  std::printf("%.4f %.4f %ld %s\n", seconds, cpu, usage.ru_maxrss, how.c_str());
  return 0;
}
