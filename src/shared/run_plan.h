/* The automated run's plan: what a unit's run must show, declared once. Its
 * groups in order, the sections each opens, and in each section the checks
 * the run prints (PASS or FAIL lines, states, refusals) and the values it
 * measures, with each quantity's unit and default limits. q7cal prints the
 * labels named here (printed_texts.h); q7cal-report judges a run against
 * this plan: whatever it names must be there, once, readable and within its
 * limits, and a limits table must give limits to every quantity here and to
 * nothing else.
 *
 * Adding a measured value: its label in printed_texts.h, printed through
 * that macro; its quantity (unit, limits, why) in kRunQuantities; its item
 * in kRunItems. The healthy run's report test then shows it judged. */
#ifndef Q7_RUN_PLAN_H
#define Q7_RUN_PLAN_H

#include <cstddef>

#include "printed_texts.h"

/* The seven groups, in the order the run opens them, by their headings. */
struct RunGroup {
    const char *heading;
    const char *name; /* "Rx": the group's check class is "automated.Rx" */
};
inline constexpr RunGroup kRunGroups[] = {
    {TEXT_CONFIGURATION_GROUP, "Configuration"},
    {TEXT_RX_GROUP, "Rx"},
    {TEXT_TX_GROUP, "Tx"},
    {TEXT_LOOPBACK_GROUP, "Loopback calibration"},
    {TEXT_OTHER_GROUP, "Other commands"},
    {TEXT_DSD_MANAGEMENT_GROUP, "DSD management"},
    {TEXT_DSD_READ_WRITE_GROUP, "DSD read/write"},
};
inline constexpr size_t kRunGroupCount = sizeof kRunGroups / sizeof kRunGroups[0];

/* Every section heading of a run, in order; a group's first section is its
 * own heading. */
struct RunSection {
    const char *title;
    size_t group; /* into kRunGroups */
};
inline constexpr RunSection kRunSections[] = {
    {TEXT_CONFIGURATION_GROUP, 0}, {TEXT_DEVICE_MODE_SECTION, 0}, {TEXT_BAND_SECTION, 0},
    {TEXT_RX_GROUP, 1},            {TEXT_RX_GAIN_SECTION, 1},     {TEXT_RSSI_SECTION, 1},
    {TEXT_FRAME_ERROR_SECTION, 1}, {TEXT_TX_GROUP, 2},            {TEXT_TX_ATTN_SECTION, 2},
    {TEXT_TX_POWER_SECTION, 2},    {TEXT_TX_SWITCH_SECTION, 2},   {TEXT_LOOPBACK_GROUP, 3},
    {TEXT_OTHER_GROUP, 4},         {TEXT_RFIC_READ_SECTION, 4},   {TEXT_RFIC_WRITE_SECTION, 4},
    {TEXT_TEMPERATURE_SECTION, 4}, {TEXT_GP_ADC_DAC_SECTION, 4},  {TEXT_SPECTRUM_SECTION, 4},
    {TEXT_VERSION_SECTION, 4},     {TEXT_DSD_MANAGEMENT_GROUP, 5}, {TEXT_MAC_ADDRESS_SECTION, 5},
    {TEXT_DSD_READ_WRITE_GROUP, 6}, {TEXT_REGION_READ_SECTION, 6},
};
inline constexpr size_t kRunSectionCount = sizeof kRunSections / sizeof kRunSections[0];

/* A measured quantity: its unit, its limits (both inclusive) and its
 * marginal band inside them, where a value that passes is still drifting
 * towards a limit (equal to the limits: no band). A limits table may move
 * these, never leave one out. */
struct RunQuantity {
    const char *name;
    const char *unit;
    double low;
    double high;
    double marginalLow;
    double marginalHigh;
    const char *why;
};
inline constexpr RunQuantity kRunQuantities[] = {
    {TEXT_TEMPERATURE, "C", 30, 45, 32, 42, "the device runs at 30 to 45 C, rising while a transmitter is on"},
    {TEXT_RX1_RSSI, "dBm", -70, -50, -67, -53, "the station's test signal arrives at about -60 dBm per antenna"},
    {TEXT_RX2_RSSI, "dBm", -70, -50, -67, -53, "the station's test signal arrives at about -60 dBm per antenna"},
    {TEXT_COMBINED_RSSI, "dBm", -67, -47, -64, -50, "the power sum of two paths: 3 dB over one"},
    {TEXT_RX1_ADC_POWER, "dBm", -50, -13, -45, -16,
     "well above the floor, and below full scale (-10 dBm) by more than the few dB where the ADC clips"},
    {TEXT_RX2_ADC_POWER, "dBm", -50, -13, -45, -16,
     "well above the floor, and below full scale (-10 dBm) by more than the few dB where the ADC clips"},
    {TEXT_ANTENNA1_CINR, "dB", 20, 45, 25, 42, "the test signal over thermal noise: about 38 dB"},
    {TEXT_ANTENNA2_CINR, "dB", 20, 45, 25, 42, "the test signal over thermal noise: about 38 dB"},
    {TEXT_COMBINED_CINR, "dB", 20, 48, 25, 45, "maximum-ratio combining of two antennas: up to 3 dB over one"},
    {TEXT_ANTENNA1_NOISE, "dBm", -104, -92, -102, -94,
     "-174 dBm/Hz + 10 log10(bandwidth) + a 5 to 7 dB noise figure: -98 dBm in 10 MHz, -101 dBm in 5 MHz"},
    {TEXT_ANTENNA2_NOISE, "dBm", -104, -92, -102, -94,
     "-174 dBm/Hz + 10 log10(bandwidth) + a 5 to 7 dB noise figure: -98 dBm in 10 MHz, -101 dBm in 5 MHz"},
    {TEXT_FREQUENCY_OFFSET, "PPM", -2, 2, -1.5, 1.5, "the reference stays within 2 ppm"},
    {"GP ADC value", "", 0, 1023, 0, 1023, "a 10-bit converter"},
    {"Rx spectrum noise floor", "dB", 6, 18, 8, 16, "the capture's empty bins sit about 12 dB up its scale"},
    {"Rx spectrum peak", "dB", 40, 66, 43, 62,
     "the test signal's bins stand about 36 dB over the noise floor, 9 dB more in a preamble"},
    {"Tx output power", "dBm", -40, 35, -40, 35, "the transmitters' range: -40 to +35 dBm"},
    {TEXT_PGA_GAIN_CORRECTION, "dB", -3, 3, -2, 2, "about 1 dB a PGA step: a correction of a few tenths"},
    {TEXT_LNA_MID_GAIN_STEP, "dB", 10, 18, 11, 17, "front-end low to medium gain: 26 - 12 = 14 dB"},
    {TEXT_LNA_HIGH_GAIN_STEP, "dB", 8, 16, 9, 15, "front-end medium to high gain: 12 dB"},
    {TEXT_LNA_EXT_GAIN_STEP, "dB", 11, 19, 12, 18, "the external LNA adds about 15 dB"},
    {TEXT_TX_EXT_ATTN_STEP, "dB", 0, 40, 0, 40, "20 steps of about 2 dB from 0 dB"},
};
inline constexpr size_t kRunQuantityCount = sizeof kRunQuantities / sizeof kRunQuantities[0];

enum RunItemKind {
    kRunVerdict, /* a PASS or FAIL line; a section's verdicts are named in the order it prints them */
    kRunValue,   /* "label = value(s) unit": `count` values, judged by the limits of `quantity` */
    kRunList,    /* "label[i] = value" lines, or the spectrum's rows: `count` entries, or as many as
                    the section's `lengthLabel` line says; judged by `quantity`'s limits where it has one */
    kRunLowTail, /* the 10th percentile of the list `of`: the spectrum's empty bins */
    kRunPeak,    /* the highest value of the list `of` */
    kRunState,   /* "label = text" or "<block> checksum is VALID": must read `expected` */
    kRunRefusal, /* a write that must be refused: "Setting GPIO <pin> to 0ERROR: ..." */
};

/* One thing a run must show, once, in its section. Its check is named
 * "<command or section>: <name>". */
struct RunItem {
    RunItemKind kind;
    const char *section;
    const char *command;     /* the command heading it is printed under; null: the section */
    const char *name;        /* values, lists, states: the label as printed */
    const char *quantity;    /* values, lists, tails: whose limits judge it; null: none */
    size_t count;            /* values on the line; a list's entries, unless `lengthLabel` gives them */
    const char *lengthLabel; /* lists: the line before them that gives their length */
    const char *expected;    /* states: what a healthy unit shows; refusals: the pin; tails: the list */
};

/* The items by kind, each with what its kind needs. */
constexpr RunItem Verdict(const char *section, const char *name)
{
    return {kRunVerdict, section, nullptr, name, nullptr, {}, nullptr, nullptr};
}
/* `count` values on one line, judged by `quantity`'s limits. */
constexpr RunItem Value(const char *section, const char *command, const char *label, const char *quantity, size_t count)
{
    return {kRunValue, section, command, label, quantity, count, nullptr, nullptr};
}
/* A list of `entries`, judged by `quantity`'s limits, or only counted without one. */
constexpr RunItem List(const char *section, const char *command, const char *label, const char *quantity,
                       size_t entries)
{
    return {kRunList, section, command, label, quantity, entries, nullptr, nullptr};
}
/* A list of as many entries as the line `lengthLabel` before it says. */
constexpr RunItem CountedList(const char *section, const char *command, const char *label, const char *lengthLabel)
{
    return {kRunList, section, command, label, nullptr, {}, lengthLabel, nullptr};
}
/* A figure of the list `of`: its 10th percentile or its peak. */
constexpr RunItem Statistic(RunItemKind kind, const char *section, const char *command, const char *name, const char *of)
{
    return {kind, section, command, name, name, 1, nullptr, of};
}
constexpr RunItem State(const char *section, const char *command, const char *label, const char *healthy)
{
    return {kRunState, section, command, label, nullptr, {}, nullptr, healthy};
}
constexpr RunItem Refusal(const char *section, const char *name, const char *pin)
{
    return {kRunRefusal, section, nullptr, name, nullptr, {}, nullptr, pin};
}
/* The checksum lines' block names, trimmed: a state each. */
#define RUN_BLOCK_STATE(name) State(TEXT_DSD_MANAGEMENT_GROUP, nullptr, name " checksum", TEXT_VALID)

inline constexpr RunItem kRunItems[] = {
    Verdict(TEXT_BAND_SECTION, "2500000 kHz, 10000 kHz"),
    Verdict(TEXT_BAND_SECTION, "2533500 kHz, 5000 kHz"),
    Verdict(TEXT_BAND_SECTION, "band restored"),

    Value(TEXT_RX_GROUP, "IsSync", TEXT_FREQUENCY_OFFSET, TEXT_FREQUENCY_OFFSET, 1),
    State(TEXT_RX_GROUP, "IsSync", TEXT_SYNC_STATUS, TEXT_SYNC_ACHIEVED),
    Verdict(TEXT_RX_GAIN_SECTION, "Rx1 gain state"),
    Verdict(TEXT_RX_GAIN_SECTION, "Rx2 gain state"),
    Value(TEXT_RSSI_SECTION, "GetRSSIReport", TEXT_RX1_RSSI, TEXT_RX1_RSSI, 1),
    Value(TEXT_RSSI_SECTION, "GetRSSIReport", TEXT_RX2_RSSI, TEXT_RX2_RSSI, 1),
    Value(TEXT_RSSI_SECTION, "GetRSSIReport", TEXT_COMBINED_RSSI, TEXT_COMBINED_RSSI, 1),
    Value(TEXT_RSSI_SECTION, "GetRSSIReport", TEXT_RX1_ADC_POWER, TEXT_RX1_ADC_POWER, 1),
    Value(TEXT_RSSI_SECTION, "GetRSSIReport", TEXT_RX2_ADC_POWER, TEXT_RX2_ADC_POWER, 1),
    Value(TEXT_RSSI_SECTION, "GetCINR", TEXT_COMBINED_CINR, TEXT_COMBINED_CINR, 1),
    Value(TEXT_RSSI_SECTION, "GetCINR", TEXT_ANTENNA1_CINR, TEXT_ANTENNA1_CINR, 1),
    Value(TEXT_RSSI_SECTION, "GetCINR", TEXT_ANTENNA2_CINR, TEXT_ANTENNA2_CINR, 1),
    Value(TEXT_RSSI_SECTION, "GetPerAntThermalNoise", TEXT_ANTENNA1_NOISE, TEXT_ANTENNA1_NOISE, 1),
    Value(TEXT_RSSI_SECTION, "GetPerAntThermalNoise", TEXT_ANTENNA2_NOISE, TEXT_ANTENNA2_NOISE, 1),

    Verdict(TEXT_TX_ATTN_SECTION, "attenuator set 1"),
    Verdict(TEXT_TX_ATTN_SECTION, "attenuator set 2"),
    Value(TEXT_TX_POWER_SECTION, nullptr, "Tx output power read back at +20 dBm", "Tx output power", 1),
    Verdict(TEXT_TX_POWER_SECTION, "+20 dBm"),
    Value(TEXT_TX_POWER_SECTION, nullptr, "Tx output power read back at -20 dBm", "Tx output power", 1),
    Verdict(TEXT_TX_POWER_SECTION, "-20 dBm"),
    Value(TEXT_TX_POWER_SECTION, nullptr, "Tx output power read back at +10 dBm", "Tx output power", 1),
    Verdict(TEXT_TX_POWER_SECTION, "+10 dBm"),
    Verdict(TEXT_TX_SWITCH_SECTION, "antenna 1"),
    Verdict(TEXT_TX_SWITCH_SECTION, "antenna 2"),
    Verdict(TEXT_TX_SWITCH_SECTION, "antenna 1 again"),

    CountedList(TEXT_LOOPBACK_GROUP, "Calibrate LC Trim", TEXT_LC_TRIM, TEXT_LC_TRIM_COUNT),
    Value(TEXT_LOOPBACK_GROUP, "Calibrate FE Steps", TEXT_PGA_GAIN_CORRECTION, TEXT_PGA_GAIN_CORRECTION, 2),
    Value(TEXT_LOOPBACK_GROUP, "Calibrate FE Steps", TEXT_LNA_MID_GAIN_STEP, TEXT_LNA_MID_GAIN_STEP, 2),
    Value(TEXT_LOOPBACK_GROUP, "Calibrate FE Steps", TEXT_LNA_HIGH_GAIN_STEP, TEXT_LNA_HIGH_GAIN_STEP, 2),
    Value(TEXT_LOOPBACK_GROUP, "Calibrate FE Steps", TEXT_LNA_EXT_GAIN_STEP, TEXT_LNA_EXT_GAIN_STEP, 2),
    List(TEXT_LOOPBACK_GROUP, "Calibrate Tx external attenuator step", TEXT_TX_EXT_ATTN_STEP, TEXT_TX_EXT_ATTN_STEP, 20),

    Verdict(TEXT_OTHER_GROUP, "LED write 0"),
    Verdict(TEXT_OTHER_GROUP, "LED write 1"),
    Refusal(TEXT_OTHER_GROUP, "GPIO 10 write refused", "10"),
    Refusal(TEXT_OTHER_GROUP, "GPIO 11 write refused", "11"),
    Refusal(TEXT_OTHER_GROUP, "GPIO 12 write refused", "12"),
    Verdict(TEXT_RFIC_WRITE_SECTION, "write 0x0000"),
    Verdict(TEXT_RFIC_WRITE_SECTION, "write 0x0000 again"),
    Verdict(TEXT_RFIC_WRITE_SECTION, "write 0xFFFF"),
    Verdict(TEXT_RFIC_WRITE_SECTION, "saved value restored"),
    Value(TEXT_TEMPERATURE_SECTION, "GetTemperature", TEXT_TEMPERATURE, TEXT_TEMPERATURE, 1),
    Value(TEXT_GP_ADC_DAC_SECTION, nullptr, "GP ADC value", "GP ADC value", 4),
    CountedList(TEXT_SPECTRUM_SECTION, "GetRxSpectrum", "Rx spectrum", TEXT_SPECTRUM_LENGTH),
    Statistic(kRunLowTail, TEXT_SPECTRUM_SECTION, "GetRxSpectrum", "Rx spectrum noise floor", "Rx spectrum"),
    Statistic(kRunPeak, TEXT_SPECTRUM_SECTION, "GetRxSpectrum", "Rx spectrum peak", "Rx spectrum"),

    State(TEXT_DSD_MANAGEMENT_GROUP, nullptr, "DSD checksum", TEXT_VALID),
    RUN_BLOCK_STATE("Compatibility"), RUN_BLOCK_STATE("RF"), RUN_BLOCK_STATE("PHY"), RUN_BLOCK_STATE("MAC"),
    RUN_BLOCK_STATE("CAL"), RUN_BLOCK_STATE("HW"), RUN_BLOCK_STATE("MIB"), RUN_BLOCK_STATE("Security"),
    RUN_BLOCK_STATE("OMA DM"), RUN_BLOCK_STATE("MRU"), RUN_BLOCK_STATE("HVX"), RUN_BLOCK_STATE("unused"),
    State(TEXT_DSD_MANAGEMENT_GROUP, nullptr, "Calibration state", TEXT_VALID),
};
inline constexpr size_t kRunItemCount = sizeof kRunItems / sizeof kRunItems[0];

/* The labels of the run's other "label = value" lines: shown for the
 * engineer, judged by no limit, but known, so that a line the reader does
 * not know is unexpected. */
inline constexpr const char *kRunShownLabels[] = {
    "DUT Mode", "Modulation type", "CW Offset", "Loopback", "RxAntConfig", "Sync frequency (kHz)",
    "Rx1 ADC clip count", "Rx2 ADC clip count", "Number of ADC samples", "Total frames elapsed", "Frames in error",
    "Device mode", "Set dev mode", "Set mod type", "Set CW Offset", "Set Loopback Tx Type", "Loopback Tx Type",
    "Read: transmitter mode", "Wrote: transmitter mode", "baseband attenuator", "PA Driver Thermometer index",
    "PA driver attenuation index", "External attenuator", TEXT_LC_TRIM_COUNT, "GPIO pin state", "GPIO direction",
    "GPIO write permission", "RFIC ID", TEXT_SPECTRUM_LENGTH, "Test block size", "DSD size", "NVM type",
    "Flash map type",
};

/* The beginnings (after leading blanks) of the run's lines of other shapes:
 * headings of the commands it calls, announcements, and what its failure
 * paths print. */
inline constexpr const char *kRunShownTexts[] = {
    "GetDeviceMode:", "GetRxAntConfig:", "Setting to ", "IsSync:", "Force Re-sync:", "Read:  Freq = ",
    "Write: Freq = ", "Band not restored: ", "Read  path ", "Wrote path ", "GetRSSIReport:", "GetCINR:",
    "GetPerAntThermalNoise:", "GetFrameErrorStatistics:", "ResetFrameErrorStatistics:", "Mixer Thermometer index",
    TEXT_POWER_SETTING, TEXT_POWER_SETTING_MISSPELT, "Setting switch to ", "Calibrate LC Trim:",
    "Calibrate Tx Pout frequency correction:", "Setting frequency index ", "Setting correction value to ",
    "Setting cable losses to ", "Calibrate FE Steps:", "Scan list index for the center frequency set to ",
    "Amplitude of signal in dBm at RX1 and RX2 antennas set to ", "Rx1    Rx2",
    "Calibrate Tx external attenuator step:", "Active Transmitter set to ", "Setting GPIO write permission to ",
    TEXT_PIN_WRITE, TEXT_ERRORS_EXPECTED, "Reg 30 not restored: ", "GetTemperature:", TEXT_ADC_LINE,
    "Testing Set GP DAC Value ", "ResetRxSpectrum", "Setting shift for IIR filter alpha to ",
    "Setting symbol index to be captured to ", "GetRxSpectrum", "GetVersionInfo:", "LoadDSD:", "Load mode: ",
    "DSD address ?", "IsDSDValid:", "AreDSDChecksumsValid:", "GetDSDChecksums:", "IsCalibrationValid:",
    "GetCalibrationInfo:", "GetMACAddress:", "DSD blocks found.", "Region ID = ", "Read ", "Printing only the first ",
    "Memory allocation failed.", "GetNVMSize:", "GetDSDInfo:", "Press Enter to continue", "End of input",
    "Interrupted",
};

#endif /* Q7_RUN_PLAN_H */
