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
