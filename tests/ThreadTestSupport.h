// Timing, thread start-up and child processes shared by the threaded suites.
#pragma once

#include <chrono>
#include <csignal>
#include <cstdio>
#include <future>
#include <poll.h>
#include <string>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

namespace thread_test {

using namespace std::chrono_literals;

// Long enough for a thread that could get in to do so, short enough to keep the suite quick.
constexpr auto kSettle = 50ms;
// The longest any single wait in a threaded test may take before it counts as a hang.
constexpr auto kBound = 10s;

template <class F>
std::future<void> Start(F f) {
    return std::async(std::launch::async, std::move(f));
}

// Runs f in a forked child and returns "" when it returned true within bound, ended with
// status 0 and wrote no sanitizer report to stderr; otherwise what went wrong, with the
// child's stderr. A child past the bound is killed. The child ends with _exit, as a forked
// child of a threaded process must, so a sanitizer's own exit code is not set at its exit:
// its report on stderr counts instead.
template <class F>
std::string RunBounded(F f, std::chrono::milliseconds bound = kBound) {
    int pipeEnds[2];
    if (pipe(pipeEnds) != 0)
        return "no pipe";
    pid_t const child = fork();
    if (child < 0)
        return "no fork";
    if (child == 0) {
        dup2(pipeEnds[1], STDERR_FILENO);
        close(pipeEnds[0]);
        close(pipeEnds[1]);
        bool const ok = f();
        std::fflush(stderr);
        _exit(ok ? 0 : 3);
    }
    close(pipeEnds[1]);
    std::string errors;
    auto const deadline = std::chrono::steady_clock::now() + bound;
    bool timedOut = false;
    for (;;) {
        auto const left = std::chrono::duration_cast<std::chrono::milliseconds>(
            deadline - std::chrono::steady_clock::now());
        pollfd readable{pipeEnds[0], POLLIN, 0};
        int const ready = left.count() > 0 ? poll(&readable, 1, static_cast<int>(left.count())) : 0;
        if (ready < 0)
            continue; // interrupted
        if (ready == 0) {
            timedOut = true;
            break;
        }
        char buffer[4096];
        ssize_t const n = read(pipeEnds[0], buffer, sizeof buffer);
        if (n <= 0)
            break; // the child and every process it shares the pipe with are gone
        errors.append(buffer, static_cast<std::size_t>(n));
    }
    close(pipeEnds[0]);
    if (timedOut)
        kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    std::string verdict;
    if (timedOut)
        verdict = "timed out";
    else if (!WIFEXITED(status))
        verdict = "killed by signal " + std::to_string(WTERMSIG(status));
    else if (WEXITSTATUS(status) != 0)
        verdict = "exit status " + std::to_string(WEXITSTATUS(status));
    else if (errors.find("Sanitizer") != std::string::npos ||
             errors.find("runtime error:") != std::string::npos)
        verdict = "sanitizer report";
    return verdict.empty() ? verdict : verdict + "\n" + errors;
}

} // namespace thread_test
