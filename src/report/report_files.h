// What q7cal-report reads and writes besides its console: transcripts (timed
// when they come from a live pipe), the limits table, the plotting library
// the HTML page inlines, and the report files. Each says on stderr what
// went wrong.
#ifndef Q7REPORT_REPORT_FILES_H
#define Q7REPORT_REPORT_FILES_H

#include <optional>
#include <string>
#include <vector>

#include "measurement_limits.h"
#include "transcript.h"
#include "unit_record.h"

namespace q7report {

// Reads a transcript ("-": standard input). From a live pipe (anything but a
// regular file), each line carries when it arrived and the unit's start is
// the first line's arrival; from a file, times are 0 and the start is the
// file's last write. Sets the record's source, timing and start.
bool ReadTranscript(const std::string &name, UnitRecord &record, std::vector<TimedLine> &lines);

// The limits table of `path`, or the one built in for "".
std::optional<Limits> ReadLimits(const std::string &path);

// Debian's dygraphs, which draws the HTML page's plots.
bool ReadPlotLibrary(std::string &script, std::string &style);

bool WriteFile(const std::string &path, const std::string &text);

// The host's name, or "localhost".
std::string HostName();

}  // namespace q7report

#endif
