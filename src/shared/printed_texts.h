/* The texts that q7cal prints and q7cal-report reads back to judge a
 * session: each stands here once, so that the console and its judge cannot
 * drift apart. A format here is q7cal's printf format, which q7cal-report
 * reads back with sscanf; a plain text is what it looks for in a line. A
 * change here changes the console's output: the golden transcripts say so. */
#ifndef Q7_PRINTED_TEXTS_H
#define Q7_PRINTED_TEXTS_H

/* ---- Start, menus and the ends of commands ---- */
#define TEXT_CONNECTING "Trying to open handle to Device..."
#define TEXT_NO_INTERFACE "Cal API interface" /* "ERROR: Unable to open a Local Cal API interface" */
#define TEXT_MAIN_MENU "Cal API Main Menu"
#define TEXT_MENU_BANNER_EDGE "********"
#define TEXT_MENU_PROMPT "ENTER OPTION : "
#define TEXT_INVALID_OPTION "Sorry. Invalid option selected."
#define TEXT_SUCCESSFUL " was SUCCESSFUL."
#define TEXT_DEVICE_CONNECTED "     Device connected."
#define TEXT_DEVICE_DISCONNECTED "     Device disconnected."
#define TEXT_ERROR "ERROR:" /* also in "READ ERROR:" and "WRITE ERROR:" */
#define TEXT_WARNING "WARNING:"
#define TEXT_VERIFY_ERRORS " verify errors."
#define TEXT_NVM_MODE_QUESTION "Enter interface type"
/* A write that ends before using the key it requested. */
#define TEXT_KEY_REPLACED "The write key requested for this command has replaced the key the device held before; it was not used."

/* ---- The automated run ---- */
#define TEXT_PUSH_FORMAT "Push[%2d] - set device mode: mode = %u modulation = %u CW Offset=%u LoopbackTX=%u \n"
#define TEXT_POP_FORMAT "Pop[%2d] - set device mode: mode = %u modulation = %u CW Offset=%u LoopbackTX=%u \n"
#define TEXT_MODE_NOT_RESTORED "WARNING: The device mode is not restored"
#define TEXT_TEST_SEPARATOR "-------------"
#define TEXT_TESTING " Testing " /* a section heading: the separator, this, the title */
/* The seven groups, by the heading each opens with, and the sections whose
 * PASS and FAIL lines q7cal-report names. */
#define TEXT_CONFIGURATION_GROUP "CONFIGURATION COMMAND GROUP"
#define TEXT_RX_GROUP "GetRxAntConfig and SetRxAntConfig"
#define TEXT_TX_GROUP "TX COMMAND GROUP"
#define TEXT_LOOPBACK_GROUP "LOOPBACK COMMAND GROUP"
#define TEXT_OTHER_GROUP "ReadGPIOState, SetGPIOConfiguration, and SetGPIOPinState"
#define TEXT_DSD_MANAGEMENT_GROUP "DSD Management Commands"
#define TEXT_DSD_READ_WRITE_GROUP "ReadDSDBytes"
#define TEXT_BAND_SECTION "GetBandConfig and SetBandConfig"
#define TEXT_RX_GAIN_SECTION "GetRxGainState and SetRxGainState"
#define TEXT_TX_ATTN_SECTION "GetTxAttn and SetTxAttn"
#define TEXT_TX_POWER_SECTION "GetTxOutputPower and SetTxOutputPower"
#define TEXT_TX_SWITCH_SECTION "GetTxDiversitySwitch and SetTxDiversitySwitch"
#define TEXT_RFIC_WRITE_SECTION "WriteRFICRegister"
#define TEXT_DEVICE_MODE_SECTION "Get/SetDeviceMode"
#define TEXT_RSSI_SECTION "GetRSSIReport and related commands"
#define TEXT_FRAME_ERROR_SECTION "GetFrameErrorStatistics and ResetFrameErrorStatistics"
#define TEXT_RFIC_READ_SECTION "ReadRFICRegister"
#define TEXT_TEMPERATURE_SECTION "GetTemperature"
#define TEXT_GP_ADC_DAC_SECTION "GetGPADCValue and SetGPDACValue"
#define TEXT_SPECTRUM_SECTION "Spectrum commands"
#define TEXT_VERSION_SECTION "Get Version Information Command"
#define TEXT_MAC_ADDRESS_SECTION "GetMACAddress"
#define TEXT_REGION_READ_SECTION "ReadRegionByID"
#define TEXT_ERRORS_EXPECTED "Setting write permissions to 0 -- errors are expected"
#define TEXT_PIN_WRITE "Setting GPIO "
#define TEXT_SKIPPED_PIN " -- Skipping input pin "
/* The run's value lines without a "label = value" form. */
#define TEXT_POWER_SETTING "Setting power to "
#define TEXT_POWER_SETTING_MISSPELT "Setting poer to " /* the third setting line reads so */
#define TEXT_ADC_LINE "Testing Get GP ADC Value "

/* ---- States and values ---- */
#define TEXT_CHECKSUM_STATE_FORMAT "    %s checksum is %s VALID\n"
#define TEXT_CHECKSUM_IS " checksum is "
#define TEXT_CALIBRATION_STATE "Calibration state = "
#define TEXT_VALID "VALID"
#define TEXT_NOT_VALID "NOT VALID"
#define TEXT_SPECTRUM_LENGTH "Spectrum length"
#define TEXT_SYNC_STATUS "Sync status"
#define TEXT_SYNC_ACHIEVED "Sync achieved"
#define TEXT_SYNC_NOT_ACHIEVED "Sync not achieved"
/* The DSD blocks by the names their checksum lines print (block 9's holds a
 * tab, so that its lines align on the terminal's tab stop). */
#define TEXT_DSD_BLOCK_NAMES \
    "Compatibility", "      RF", "     PHY", "     MAC", "     CAL", "      HW", \
    "     MIB", "Security", "  OMA DM", " \t  MRU", "     HVX", "unused"

/* The labels of the values the automated run measures (run_plan.h judges
 * them): each printed through its macro here, so that a label is named in
 * one place. */
#define TEXT_FREQUENCY_OFFSET "Frequency offset (PPM)"
#define TEXT_RX1_RSSI "Rx1 RSSI"
#define TEXT_RX2_RSSI "Rx2 RSSI"
#define TEXT_COMBINED_RSSI "Combined RSSI"
#define TEXT_RX1_ADC_POWER "Rx1 ADC input power"
#define TEXT_RX2_ADC_POWER "Rx2 ADC input power"
#define TEXT_COMBINED_CINR "Combined CINR"
#define TEXT_ANTENNA1_CINR "Antenna 1 CINR"
#define TEXT_ANTENNA2_CINR "Antenna 2 CINR"
#define TEXT_ANTENNA1_NOISE "Antenna 1 thermal noise"
#define TEXT_ANTENNA2_NOISE "Antenna 2 thermal noise"
#define TEXT_LC_TRIM_COUNT "#Frequency"
#define TEXT_LC_TRIM "LCTrimArray"
#define TEXT_PGA_GAIN_CORRECTION "PGA gain correction"
#define TEXT_LNA_MID_GAIN_STEP "LNA mid gain step"
#define TEXT_LNA_HIGH_GAIN_STEP "LNA high gain step"
#define TEXT_LNA_EXT_GAIN_STEP "LNA ext gain step"
#define TEXT_TX_EXT_ATTN_STEP "Tx Ext Attn Step"
#define TEXT_TEMPERATURE "Temperature"

/* The labels of the unit's identity, as the result lines print them. */
#define TEXT_MAC_ADDRESS "MAC address"
#define TEXT_CAL_FLAG "Cal flag"
#define TEXT_VENDOR_ID "Vendor ID"
#define TEXT_CAL_DATE "Cal date"
#define TEXT_CAL_TIME "Cal time"
#define TEXT_SW_VERSION "SW Version"
#define TEXT_PHY_FIRMWARE_VERSION "PHY firmware version"
#define TEXT_MAC_FIRMWARE_VERSION "MAC firmware version"
#define TEXT_DRIVER_VERSION "Driver version"
#define TEXT_CAL_API_LIBRARY_VERSION "Halvix Cal API library version"
#define TEXT_LOCAL_CAL_API_LIBRARY_VERSION "Local Cal API library version"
#define TEXT_BASEBAND_CHIP_VERSION "Baseband chip version"
#define TEXT_RF_CHIP_VERSION "RF chip version"
/* The simulated device names itself in its driver version. */
#define TEXT_SIMULATED_DEVICE "SIMULATED DEVICE"

#endif /* Q7_PRINTED_TEXTS_H */
