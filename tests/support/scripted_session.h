// A console session whose answers are chosen while it runs: standard input is
// a stream that, each time the program goes to read a new line, shows the
// answerer what the program has printed so far and feeds it the line it
// returns. Each read is recorded with how much was printed and how many device
// calls were logged before it, so that a test can tell exactly what happened
// between two reads.
#ifndef Q7_TEST_SCRIPTED_SESSION_H
#define Q7_TEST_SCRIPTED_SESSION_H

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// The next line to type (without its line end), or nothing: end of input.
using Answerer = std::function<std::optional<std::string>(std::string_view printed)>;

struct SessionRead {
    size_t printed;      // bytes of output before this read
    size_t deviceCalls;  // entries of q7sim::control::Calls() before this read
};

struct Session {
    std::string output;
    std::vector<SessionRead> reads;
    // The program read more lines than any command asks for: the session
    // ended its input by force.
    bool runaway = false;
};

// Runs `body` with standard input answered by `answer` and standard output
// captured, the console's input state reset first. A watchdog ends the whole
// process, naming `what`, if the body runs longer than a few seconds.
Session RunSession(const std::string &what, const Answerer &answer, const std::function<void()> &body);

// What the program is waiting for, judged from what it printed last: the
// menu's "ENTER OPTION : ", a command's own picker (a line that starts with
// "ENTER ", read by the menu's rule), an Enter pause, or an answer.
enum class ReadKind { Menu, Choice, Pause, Answer };
ReadKind KindOfRead(std::string_view printed);

#endif
