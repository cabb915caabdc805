// What q7cal-report keeps of one unit's session: the checks it judged, the
// values the unit printed, who the unit is and when it ran. Every writer
// (summary, JUnit, JSON, HTML page) reads this record and nothing else.
#ifndef Q7REPORT_UNIT_RECORD_H
#define Q7REPORT_UNIT_RECORD_H

#include <cstddef>
#include <ctime>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "printed_texts.h"

namespace q7report {

// A measured quantity's limits, both inclusive, in `unit`, and the marginal
// band inside them: a value between the band and a limit passes, marginally.
struct Limit {
    double low = 0;
    double high = 0;
    double marginalLow = 0;
    double marginalHigh = 0;
    std::string unit;
};

// One judged item: a PASS or FAIL of an automated run, a state the unit
// showed, a value against its limits, an interactive command, or the run as
// a whole (complete, answers in step).
struct Check {
    std::string classname;  // "automated.Tx", "commands.Tx Commands", "session"
    std::string name;       // stable from unit to unit: "GetTxOutputPower and SetTxOutputPower: +20 dBm"
    bool passed = true;
    bool marginal = false;       // passed, but a value lies outside its marginal band
    bool isCommand = false;      // an interactive command, judged by how it ended
    bool expectedError = false;  // an error that the run announced, refused as it should be
    std::string type;            // why it failed: "FAIL", "ERROR", "NOT VALID", "outside limits", "not measured", ...
    std::string message;         // the deciding text
    std::string evidence;        // the transcript lines it was judged on
    size_t line = 0;             // the transcript line that decided it
    double at = 0;               // seconds from the transcript's first line to that line
    double seconds = 0;          // the time it took: since the check before it
};

// A value the unit printed ("Rx1 RSSI = -59.67 dBm"), or a list of them (the
// Rx spectrum, a calibration table).
struct Measurement {
    std::string name;       // unique in the record: "Rx1 RSSI", a second one "Rx1 RSSI #2"
    std::string quantity;   // what its limits are looked up by: "Rx1 RSSI"
    std::string classname;  // where it was printed, as for checks
    std::string command;    // the command or section that printed it
    std::vector<double> values;
    bool isArray = false;
    std::string unit;
    size_t line = 0;  // the transcript line of its (first) value
    std::optional<Limit> limit;
    bool withinLimits = true;
    bool marginal = false;  // within its limits, outside its marginal band
};

// The unit's identity as its transcript shows it, by the label q7cal prints.
struct IdentityField {
    const char *label;  // "MAC address"
    const char *key;    // "mac_address": the JSON member and JUnit property
};
inline constexpr IdentityField kIdentityFields[] = {
    {TEXT_MAC_ADDRESS, "mac_address"},
    {TEXT_CAL_FLAG, "cal_flag"},
    {TEXT_VENDOR_ID, "vendor_id"},
    {TEXT_CAL_DATE, "cal_date"},
    {TEXT_CAL_TIME, "cal_time"},
    {TEXT_SW_VERSION, "cal_sw_version"},
    {TEXT_PHY_FIRMWARE_VERSION, "phy_firmware_version"},
    {TEXT_MAC_FIRMWARE_VERSION, "mac_firmware_version"},
    {TEXT_DRIVER_VERSION, "driver_version"},
    {TEXT_CAL_API_LIBRARY_VERSION, "cal_api_library_version"},
    {TEXT_LOCAL_CAL_API_LIBRARY_VERSION, "local_cal_api_library_version"},
    {TEXT_BASEBAND_CHIP_VERSION, "baseband_chip_version"},
    {TEXT_RF_CHIP_VERSION, "rf_chip_version"},
};
inline constexpr size_t kIdentityFieldCount = sizeof kIdentityFields / sizeof kIdentityFields[0];

// One count of the record's checks, the same in every output: every check is
// PASS, MARGINAL, FAIL, or an expected error seen where the run announced it.
struct Totals {
    size_t checks = 0;
    size_t passed = 0;
    size_t marginal = 0;
    size_t failed = 0;
    size_t expectedErrors = 0;
    size_t commands = 0;  // of the checks, interactive commands judged by how they ended
};

// The source name of a transcript read from standard input.
inline constexpr char kStandardInput[] = "standard input";

struct UnitRecord {
    std::string source;      // the file name, or kStandardInput
    std::string error;       // why the input could not be judged: the unit's verdict is ERROR
    bool isSession = false;  // false: not a q7cal transcript at all
    bool scripted = true;    // answers came from a script: no typed answer shows after a prompt
    bool timed = false;      // read from a live pipe: lines carry when they arrived
    long long startMs = 0;   // the first line's arrival, or the file's last write: ms since 1970 (UTC)
    double seconds = 0;      // from the first line to the last
    std::string identity[kIdentityFieldCount];  // "" where the transcript does not show it
    std::vector<Check> checks;
    std::vector<Measurement> measurements;
    std::string transcript;  // as read, in UTF-8: invalid bytes as U+FFFD

    const std::string &Identity(const char *key) const;
    // The simulated device names itself in its driver version; nothing when
    // the transcript shows no version report: the device is not identified.
    std::optional<bool> Simulated() const;
    Totals Count() const;
    bool Passed() const;  // something was judged, and all of it passed
    const char *Verdict() const;  // "PASS", "FAIL", or "ERROR" for an input that could not be judged
};

// What the command line and the host add to every unit's record.
struct RunContext {
    std::string unit;      // --unit: the unit's own ID (serial number), "" when not given
    std::string station;   // --station
    std::string operatorName;  // --operator
    std::string hostname;
    std::string reportVersion;
};

// The unit's name in one word: its ID, else its MAC address, else "unknown".
std::string UnitName(const UnitRecord &record, const RunContext &context);

// "2026-11-24T09:41:07": UTC to the second, as JUnit writes it (no zone).
std::string IsoTime(long long milliseconds);
// "2026-11-24T09:41:07.250Z": UTC to the millisecond, as the JSON records and
// the history keep it; such times sort as text.
std::string UtcTime(long long milliseconds);

}  // namespace q7report

#endif
