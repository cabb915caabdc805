// What q7cal-report reads and writes besides its console: transcripts (timed
// when they come from a live pipe), the limits table, the plotting library
// the HTML page inlines, and the report files. Each says on stderr what
// went wrong.
#ifndef Q7REPORT_REPORT_FILES_H
#define Q7REPORT_REPORT_FILES_H

#include <fstream>
#include <optional>
#include <string>
#include <vector>

#include "measurement_limits.h"
#include "unit_record.h"

namespace q7report {

// Judges the transcript `name` ("-": standard input) as it is read: from a
// live pipe (anything but a regular file) each line carries when it arrived
// and the unit's start is the first line's arrival; from a file, times are 0
// and the start is the file's last write. An input that cannot be read or
// is no q7cal transcript is a record with its `error` set, and said on stderr.
UnitRecord JudgeInput(const std::string &name, const Limits &limits);

// The limits table of `path`, or the plan's own for "".
std::optional<Limits> ReadLimits(const std::string &path);

// Debian's dygraphs, which draws the HTML page's plots.
bool ReadPlotLibrary(std::string &script, std::string &style);

// An output file written whole or not at all: the text goes to a new file
// beside it, which replaces it only when complete, so that a full disk, a
// size limit or an interrupted run leaves the previous file (or none). "-"
// is standard output.
class OutputFile {
public:
    explicit OutputFile(std::string path);
    ~OutputFile();  // an output not committed is removed
    OutputFile(const OutputFile &) = delete;
    OutputFile &operator=(const OutputFile &) = delete;
    bool Open();  // false, said on stderr, when the file cannot be made
    std::ostream &Stream();
    bool Commit();  // false, said on stderr, when it could not be written whole

private:
    std::string path_;
    std::string temporary_;
    std::ofstream file_;
    bool committed_ = false;
};

// A whole text as an output file.
bool WriteFile(const std::string &path, const std::string &text);

// Refuses (on stderr) output paths that name an input or one another:
// writing one would destroy what is being read.
bool OutputsAreApart(const std::vector<std::string> &outputs, const std::vector<std::string> &inputs);

// Removes, on SIGINT, SIGTERM or SIGHUP, every output not yet committed, then
// ends by the signal as it would have.
void RemoveOutputsOnSignals();

// The host's name, or "localhost".
std::string HostName();

}  // namespace q7report

#endif
