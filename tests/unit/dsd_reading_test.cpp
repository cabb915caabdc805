#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>
#include <string>
#include <vector>

#include "SimControl.h"
#include "commands.h"
#include "console_capture.h"

namespace {

using DsdReadingTest = SimulatedDeviceTest;

std::vector<uint8_t> ReadBytes(CalInterfaceHandle hCal, uint32_t address, uint32_t count)
{
    std::vector<uint8_t> bytes(count);
    EXPECT_EQ(Q7_ReadDSDBytes(hCal, bytes.data(), count, address), nullptr);
    return bytes;
}

std::vector<std::string> Lines(const std::string &text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);)
        lines.push_back(line);
    return lines;
}

// The dump lines expected for the bytes: sixteen to a line, each led by the
// display offset of its first byte.
std::string Dump(const std::vector<uint8_t> &bytes, uint32_t firstOffset)
{
    std::string dump;
    char text[16];
    for (size_t i = 0; i < bytes.size(); i++) {
        if (i % 16 == 0) {
            std::snprintf(text, sizeof text, "%s%04X: ", i == 0 ? "" : "\n", firstOffset + static_cast<uint32_t>(i));
            dump += text;
        }
        std::snprintf(text, sizeof text, " %02X", bytes[i]);
        dump += text;
    }
    return dump + "\n";
}

TEST_F(DsdReadingTest, NullHandlePrintsNothing)
{
    for (auto handler : {TestReadDSDBlock, TestReadDSDBytes, TestGetDSDRegionSizeByID, TestReadDSDRegionByID}) {
        HandlerRun run = RunHandler(handler, nullptr, "1 1\n");
        EXPECT_EQ(run.result, -1);
        EXPECT_EQ(run.output, "");
    }
}

TEST_F(DsdReadingTest, FiveWordsAt100DumpTwentyBytesOnTwoLines)
{
    std::string dump = Dump(ReadBytes(hCal, 0x100, 20), 0x100);
    ASSERT_EQ(Lines(dump).size(), 2u);
    EXPECT_EQ(dump.substr(0, 6), "0100: ");
    EXPECT_EQ(Lines(dump)[1].substr(0, 6), "0110: ");

    HandlerRun run = RunHandler(TestReadDSDBlock, hCal, "100\n5\n");
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.output,
              "\nRead DSD Data Block:\n"
              "\nNote: Block size is the number of unsigned integers .\n"
              "    DSD  address (hex) ?     Block size (dec)          ? "
              "\n\nResults returned:\n" +
                  dump + "\nReadDSDBlock was SUCCESSFUL.\n");
}

TEST_F(DsdReadingTest, SixteenBytesFillOneLineAndSeventeenSpillOneByte)
{
    HandlerRun sixteen = RunHandler(TestReadDSDBytes, hCal, "0\n16\n");
    EXPECT_EQ(sixteen.result, 0);
    EXPECT_EQ(sixteen.output,
              "\nRead DSD Bytes:\n"
              "\nNote: Block size is the number of bytes.\n"
              "    DSD address (hex) ?     Byte size (dec)          ? "
              "\n\nResults returned:\n"
              "0000:  51 37 44 53 00 01 00 0C 00 00 80 00 2F D7 00 00\n"
              "\nReadDSDBytes was SUCCESSFUL.\n");

    HandlerRun seventeen = RunHandler(TestReadDSDBytes, hCal, "0\n17\n");
    const std::string tail = "\n\nResults returned:\n"
                             "0000:  51 37 44 53 00 01 00 0C 00 00 80 00 2F D7 00 00\n"
                             "0010:  00\n"
                             "\nReadDSDBytes was SUCCESSFUL.\n";
    EXPECT_EQ(seventeen.output.substr(seventeen.output.size() - tail.size()), tail);
}

TEST_F(DsdReadingTest, AZeroCountReadsNothingAndDumpsAnEmptyLine)
{
    HandlerRun words = RunHandler(TestReadDSDBlock, hCal, "FFFF\n0\n");
    EXPECT_EQ(words.result, 0);
    const std::string tail = "\n\nResults returned:\n\n\nReadDSDBlock was SUCCESSFUL.\n";
    EXPECT_EQ(words.output.substr(words.output.size() - tail.size()), tail);
}

TEST_F(DsdReadingTest, AWordCountWhoseByteCountOverflowsIsRefusedBeforeAnyRead)
{
    q7sim::control::FailNext("Q7_ReadDSDBytes", 1, "read reached the device");
    HandlerRun run = RunHandler(TestReadDSDBlock, hCal, "0\n1073741824\n");
    EXPECT_EQ(run.result, -1);
    EXPECT_EQ(run.output,
              "\nRead DSD Data Block:\n"
              "\nNote: Block size is the number of unsigned integers .\n"
              "    DSD  address (hex) ?     Block size (dec)          ? "
              "\nERROR: Block size of 1073741824 words is too large (at most 1073741823)\n");
    uint8_t byte = 0;
    ApiStatus status = Q7_ReadDSDBytes(hCal, &byte, 1, 0);
    EXPECT_STREQ(status, "read reached the device") << "the handler must not have called the device";
}

TEST_F(DsdReadingTest, ReadsBeyondTheImageAreRefusedByTheDevice)
{
    HandlerRun bytes = RunHandler(TestReadDSDBytes, hCal, "FFF8\n16\n");
    EXPECT_EQ(bytes.result, -1);
    const std::string tail = "\nERROR: DSD read of 16 bytes at 0xFFF8 goes beyond DSD section 0 (0x0000-0xFFFF)\n";
    EXPECT_EQ(bytes.output.substr(bytes.output.size() - tail.size()), tail);
    EXPECT_EQ(bytes.output.find("Results returned"), std::string::npos);

    // The last word of the header block is the Flash 2.x magic number.
    HandlerRun magic = RunHandler(TestReadDSDBlock, hCal, "FFFC\n1\n");
    EXPECT_EQ(magic.result, 0);
    EXPECT_NE(magic.output.find("\nFFFC:  7E 1A 0D 5D\n"), std::string::npos);
}

TEST_F(DsdReadingTest, RegionSizeAndUnknownRegions)
{
    HandlerRun size = RunHandler(TestGetDSDRegionSizeByID, hCal, "10\n");
    EXPECT_EQ(size.result, 0);
    EXPECT_EQ(size.output,
              "\nGetDSDRegionSizeByID:\n"
              "Enter region ID (dec) ?     DSD region size = 300 bytes\n"
              "\nGetDSDRegionSizeByID was SUCCESSFUL.\n");

    HandlerRun unknown = RunHandler(TestGetDSDRegionSizeByID, hCal, "-3\n");
    EXPECT_EQ(unknown.result, -1);
    EXPECT_EQ(unknown.output,
              "\nGetDSDRegionSizeByID:\nEnter region ID (dec) ? \nERROR: DSD region ID -3 is unknown (1-11)\n");

    HandlerRun read = RunHandler(TestReadDSDRegionByID, hCal, "12\n");
    EXPECT_EQ(read.result, -1);
    EXPECT_EQ(read.output, "\nReadDSDRegionByID:\nEnter region ID (dec) ? \nERROR: DSD region ID 12 is unknown (1-11)\n");
}

TEST_F(DsdReadingTest, ARegionDumpsFromOffsetZeroTheSameBytesAsByAddress)
{
    // Region 3 is the MAC block's payload, which starts at 0x0608.
    std::string dump = Dump(ReadBytes(hCal, 0x0608, 56), 0);
    HandlerRun run = RunHandler(TestReadDSDRegionByID, hCal, "3\n");
    EXPECT_EQ(run.result, 0);
    EXPECT_EQ(run.output,
              "\nReadDSDRegionByID:\n"
              "Enter region ID (dec) ? "
              "\nDSD region size = 56 bytes\n" +
                  dump + "\nReadDSDRegionByID was SUCCESSFUL.\n");
    EXPECT_EQ(dump.substr(0, 24), "0000:  02 1A C7 30 5E 81") << "the MAC address leads its block";
}

TEST_F(DsdReadingTest, ARegionReadErrorComesAfterTheSizeLineWithoutADump)
{
    q7sim::control::FailNext("Q7_ReadDSDRegionByID", 1, "NVM read timed out");
    HandlerRun run = RunHandler(TestReadDSDRegionByID, hCal, "4\n");
    EXPECT_EQ(run.result, -1);
    EXPECT_EQ(run.output,
              "\nReadDSDRegionByID:\n"
              "Enter region ID (dec) ? "
              "\nDSD region size = 2488 bytes\n"
              "\nERROR: NVM read timed out\n");
}

TEST_F(DsdReadingTest, InBufferModeReadsAddressTheDsdBuffer)
{
    ASSERT_EQ(Q7_SetOptionByID(hCal, 7, 2), nullptr);
    HandlerRun header = RunHandler(TestReadDSDBytes, hCal, "FC00\n4\n");
    EXPECT_EQ(header.result, -1);
    EXPECT_NE(header.output.find("\nERROR: DSD read of 4 bytes at 0xFC00 goes beyond the DSD buffer (0x0000-0x7FFF)\n"),
              std::string::npos);
    EXPECT_EQ(RunHandler(TestReadDSDRegionByID, hCal, "3\n").result, 0);
}

}  // namespace
