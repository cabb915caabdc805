#include "scripted_session.h"

#include <signal.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "SimControl.h"
#include "console.h"

namespace {

// No command asks for this many lines; a program that does is looping.
constexpr size_t kMaxReads = 2000;
constexpr unsigned kWatchdogSeconds = 20;

char g_watchdogCase[512];

void WatchdogFired(int)
{
    static const char kHung[] = "\nHUNG: still running after the watchdog's time: ";
    ssize_t ignored = write(STDERR_FILENO, kHung, sizeof kHung - 1);
    ignored = write(STDERR_FILENO, g_watchdogCase, strlen(g_watchdogCase));
    ignored = write(STDERR_FILENO, "\n", 1);
    (void)ignored;
    _exit(3);
}

struct Stream {
    const Answerer *answer;
    Session *session;
    // The captured output as open_memstream publishes it at each flush.
    char **printed;
    size_t *printedSize;
    std::string pending;
    bool ended = false;
};

// stdio asks for more input only when the last line is used up, so each call
// here is the program going to read one new line.
ssize_t ReadLine(void *cookie, char *buffer, size_t size)
{
    Stream &stream = *static_cast<Stream *>(cookie);
    if (stream.pending.empty() && !stream.ended) {
        std::fflush(stdout);
        std::string_view printed(*stream.printed, *stream.printedSize);
        stream.session->reads.push_back({printed.size(), q7sim::control::Calls().size()});
        std::optional<std::string> line;
        if (stream.session->reads.size() > kMaxReads)
            stream.session->runaway = true;
        else
            line = (*stream.answer)(printed);
        if (line)
            stream.pending = *line + "\n";
        else
            stream.ended = true;
    }
    size_t count = std::min(size, stream.pending.size());
    std::memcpy(buffer, stream.pending.data(), count);
    stream.pending.erase(0, count);
    return static_cast<ssize_t>(count);
}

}  // namespace

Session RunSession(const std::string &what, const Answerer &answer, const std::function<void()> &body)
{
    Session session;
    char *printed = nullptr;
    size_t printedSize = 0;
    std::fflush(stdout);
    FILE *out = open_memstream(&printed, &printedSize);
    Stream stream{&answer, &session, &printed, &printedSize, "", false};
    cookie_io_functions_t functions{ReadLine, nullptr, nullptr, nullptr};
    FILE *in = fopencookie(&stream, "r", functions);
    if (in == nullptr || out == nullptr) {
        std::fprintf(stderr, "cannot redirect the console\n");
        std::abort();
    }

    std::snprintf(g_watchdogCase, sizeof g_watchdogCase, "%s", what.c_str());
    signal(SIGALRM, WatchdogFired);
    FILE *savedIn = stdin;
    FILE *savedOut = stdout;
    stdin = in;
    stdout = out;
    ResetInputState();
    alarm(kWatchdogSeconds);
    body();
    alarm(0);
    std::fflush(out);
    stdin = savedIn;
    stdout = savedOut;

    std::fclose(in);
    std::fclose(out);
    session.output.assign(printed, printedSize);
    std::free(printed);
    return session;
}

static bool EndsWith(std::string_view text, std::string_view tail)
{
    return text.size() >= tail.size() && text.substr(text.size() - tail.size()) == tail;
}

ReadKind KindOfRead(std::string_view printed)
{
    if (EndsWith(printed, "ENTER OPTION : "))
        return ReadKind::Menu;
    if (EndsWith(printed, "Press Enter to continue"))
        return ReadKind::Pause;
    size_t lineStart = printed.rfind('\n');
    if (printed.substr(lineStart == std::string_view::npos ? 0 : lineStart + 1).rfind("ENTER ", 0) == 0)
        return ReadKind::Choice;
    return ReadKind::Answer;
}
