#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <initializer_list>
#include <string>
#include <vector>

#include "SimControl.h"
#include "commands.h"
#include "console_capture.h"
#include "printed_texts.h"

namespace {

using q7sim::Nvm;

// The bytes of 32-bit words as this host lays them out in memory: a block
// write hands the device its words as they are, so what the DSD then holds
// depends on the host's byte order.
std::vector<uint8_t> HostOrderBytes(std::initializer_list<uint32_t> words)
{
    std::vector<uint8_t> bytes(4 * words.size());
    uint8_t *at = bytes.data();
    for (uint32_t word : words) {
        std::memcpy(at, &word, sizeof word);
        at += sizeof word;
    }
    return bytes;
}

class DsdWritingTest : public SimulatedDeviceTest {
protected:
    std::vector<uint8_t> Region(int32_t id)
    {
        uint32_t size = 0;
        EXPECT_EQ(Q7_GetDSDRegionSizeByID(hCal, id, &size), nullptr);
        std::vector<uint8_t> bytes(size);
        uint32_t returned = 0;
        EXPECT_EQ(Q7_ReadDSDRegionByID(hCal, id, size, bytes.data(), &returned), nullptr);
        return bytes;
    }

    void SetNvmMode(uint32_t mode) { ASSERT_EQ(Q7_SetOptionByID(hCal, Q7_OPTION_NVM_MODE, mode), nullptr); }
};

// Answers: block "address words auto restore pattern... verify"; bytes the
// same with a byte size; Flash 2.x "offset size mode kB priority auto restore
// pattern... verify"; region "id auto count verify restore".

TEST_F(DsdWritingTest, WritesWithoutRestoreReadBackAsWritten)
{
    // Increments wrap modulo 2^32 for words and keep the low 8 bits for bytes.
    ASSERT_EQ(RunHandler(TestWriteDSDBlock, hCal, "200\n4\n1\n0\n2\nFFFFFFFE\n1\n0\n").result, 0);
    EXPECT_EQ(ReadDsd(0x200, 16), HostOrderBytes({0xFFFFFFFE, 0xFFFFFFFF, 0, 1}));
    ASSERT_EQ(RunHandler(TestWriteDSDBytes, hCal, "300\n4\n1\n0\n2\nFE\n1\n0\n").result, 0);
    EXPECT_EQ(ReadDsd(0x300, 4), (std::vector<uint8_t>{0xFE, 0xFF, 0x00, 0x01}));
    ASSERT_EQ(RunHandler(TestWriteDSDBytes, hCal, "310\n2\n1\n0\n0\n1A5\n7\n0\n").result, 0);
    EXPECT_EQ(ReadDsd(0x310, 2), (std::vector<uint8_t>{0xA5, 0x07}));

    // Region 4 keeps its first three bytes; the rest past the bytes written reads 0.
    std::vector<uint8_t> before = Region(4);
    HandlerRun run = RunHandler(TestWriteDSDRegionByID, hCal, "4\n1\n10\n1\n0\n");
    ASSERT_EQ(run.result, 0) << run.output;
    EXPECT_TRUE(Contains(run.output, "\nLeaving the first 3 bytes unchanged.\nWriting random data = 7 bytes\n"));
    std::vector<uint8_t> after = Region(4);
    ASSERT_EQ(after.size(), before.size());
    EXPECT_TRUE(std::equal(before.begin(), before.begin() + 3, after.begin()));
    EXPECT_EQ(std::vector<uint8_t>(after.begin() + 10, after.end()), std::vector<uint8_t>(after.size() - 10, 0));

    // An answer above the region size writes the whole region.
    size_t size7 = Region(7).size();
    run = RunHandler(TestWriteDSDRegionByID, hCal, "7\n1\n5000\n1\n0\n");
    EXPECT_TRUE(Contains(run.output, "Writing random data = " + std::to_string(size7) + " bytes\n")) << run.output;
    EXPECT_EQ(run.result, 0);
}

TEST_F(DsdWritingTest, TheFlash2xImageHoldsTheDataTheGapAndTheBigEndianHeader)
{
    std::vector<uint8_t> before = ReadDsd(0, 65536);
    HandlerRun run = RunHandler(TestWriteFlash2xBytesWithHeader, hCal, "100\n16\n1\n4\n3\n1\n0\n3\n5A\n1\n");
    ASSERT_EQ(run.result, 0) << run.output;
    EXPECT_TRUE(Contains(run.output, "\nRead 65536 bytes from dev data memory\n\n    Data pattern")) << run.output;
    std::vector<uint8_t> image = ReadDsd(0, 65536);
    EXPECT_TRUE(std::equal(image.begin(), image.begin() + 256, before.begin()));
    EXPECT_EQ(std::vector<uint8_t>(image.begin() + 256, image.begin() + 272), std::vector<uint8_t>(16, 0x5A));
    EXPECT_EQ(std::vector<uint8_t>(image.begin() + 272, image.begin() + 64512), std::vector<uint8_t>(64240, 0xFF));
    std::vector<uint8_t> header(image.begin() + 64512, image.end());
    std::vector<uint8_t> expected(1024, 0xFF);
    const uint8_t fields[] = {0x00, 0x00, 0x10, 0x00, 0xFF, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x03};
    std::memcpy(expected.data(), fields, sizeof fields);
    const uint8_t magic[] = {0x7E, 0x1A, 0x0D, 0x5D};
    std::memcpy(expected.data() + 1020, magic, sizeof magic);
    EXPECT_EQ(header, expected);

    // Write mode 2 keeps the gap as the image held it.
    before = image = ReadDsd(0, 65536);
    std::memset(before.data() + 0x2000, 0x11, 0x100);
    uint32_t written = 0;
    ASSERT_EQ(Q7_WriteDSDBytes(hCal, Q7_RequestDSDWriteKey(hCal), before.data() + 0x2000, 0x100, 0x2000, &written),
              nullptr);
    run = RunHandler(TestWriteFlash2xBytesWithHeader, hCal, "100\n16\n2\n4\n3\n1\n0\n3\n5A\n1\n");
    ASSERT_EQ(run.result, 0) << run.output;
    image = ReadDsd(0, 65536);
    EXPECT_TRUE(std::equal(image.begin() + 272, image.begin() + 64512, before.begin() + 272));
}

TEST_F(DsdWritingTest, SizesBeyondTheBufferOrTheImageAreRefusedBeforeTheDeviceIsAsked)
{
    std::vector<uint8_t> before = DsdStores();
    q7sim::control::FailNext("Q7_RequestDSDWriteKey", 1, "key request reached the device");
    q7sim::control::FailNext("Q7_ReadDSDBytes", 1, "read reached the device");

    HandlerRun run = RunHandler(TestWriteFlash2xBytesWithHeader, hCal, "FF00\n257\n1\n4\n3\n");
    EXPECT_EQ(run.result, -1);
    EXPECT_TRUE(EndsWith(run.output, "    DSD priority (0-10)        ? "
                                     "\nERROR: Flash offset 0xFF00 + size 257 bytes goes beyond the 65536-byte DSD image\n"))
        << run.output;
    run = RunHandler(TestWriteFlash2xBytesWithHeader, hCal, "FF00\n256\n1\n4\n3\n");
    EXPECT_TRUE(EndsWith(run.output, "Auto DSD key (1=yes/0=no) ? \nEnd of input: command abandoned.\n"))
        << "a block that ends on the image's last byte fits: " << run.output;
    run = RunHandler(TestWriteFlash2xBytesWithHeader, hCal, "FFFFFFFF\n4294967295\n1\n4\n3\n");
    EXPECT_EQ(run.result, -1) << "offset + size is summed without wrapping";
    run = RunHandler(TestWriteDSDBlock, hCal, "0\n1073741824\n");
    EXPECT_EQ(run.result, -1);
    EXPECT_TRUE(EndsWith(run.output, "\nERROR: Block size of 1073741824 words is too large (at most 1073741823)\n"));
    run = RunHandler(TestWriteDSDBlock, hCal, "0\n4194305\n");
    EXPECT_EQ(run.result, -1);
    EXPECT_TRUE(EndsWith(run.output, "\nERROR: A write of 16777220 bytes is larger than any DSD (at most 16777216)\n"));
    run = RunHandler(TestWriteDSDBytes, hCal, "0\n4000000000\n");
    EXPECT_EQ(run.result, -1);
    EXPECT_TRUE(EndsWith(run.output, "(at most 16777216)\n")) << "refused at once, before gigabytes are filled";

    EXPECT_EQ(Q7_RequestDSDWriteKey(hCal), 0u) << "no key was requested";
    uint8_t byte = 0;
    EXPECT_STREQ(Q7_ReadDSDBytes(hCal, &byte, 1, 0), "read reached the device");
    EXPECT_TRUE(DsdStores() == before);
}

TEST_F(DsdWritingTest, ABlockVerifyErrorIsReportedWordByWordAndWithholdsTheRestoreSilently)
{
    // Bit 0 of the second word's least significant byte, wherever this host
    // keeps it; reads 1 and 2 save the original.
    const std::vector<uint8_t> one = HostOrderBytes({1});
    const uint32_t lowByte = static_cast<uint32_t>(std::find(one.begin(), one.end(), 1) - one.begin());
    q7sim::control::FlipBitOnRead("Q7_ReadDSDBytes", 3, 4 + lowByte, 0x01);
    HandlerRun run = RunHandler(TestWriteDSDBlock, hCal, "100\n2\n1\n1\n3\n12345678\n1\n");
    EXPECT_EQ(run.result, -1);
    EXPECT_EQ(run.output,
              "\nWrite DSD Block:\n"
              "\nNote: Block size is the number of 32-bit unsigned integers (not bytes).\n"
              "    NVM mode is 0\n"
              "   DSD address (hex) ? "
              "    Block size (dec)          ? "
              "\n    Auto DSD key (1=yes/0=no) ? "
              "\n    Restore contents (1=yes/0=no) ? "
              "\n    Data pattern (0=user 1=random 2=increment 3=constant) ? "
              "    Constant value (hex) ? "
              "\nNumber of 32-bit words actually written = 2\n"
              "\n    Verify write     (1=yes/0=no) ? "
              "\n00000104: Wrote 12345678 - Read back 12345679 - Verify ERROR"
              "\n1 verify errors.\n");
    EXPECT_EQ(ReadDsd(0x100, 8), HostOrderBytes({0x12345678, 0x12345678}));
}

TEST_F(DsdWritingTest, HeaderFieldsCountFourErrorsAndFillerBytesOne)
{
    // Image reads: 1 and 2 save the original, 3 verifies.
    q7sim::control::FlipBitOnRead("Q7_ReadDSDBytes", 3, 64520 + 3, 0x80);
    HandlerRun run = RunHandler(TestWriteFlash2xBytesWithHeader, hCal, "100\n16\n1\n4\n3\n1\n0\n3\n5A\n1\n");
    EXPECT_EQ(run.result, -1);
    EXPECT_TRUE(EndsWith(run.output, "Header DSDImagePriority verify error:    Read back 00000083 - Expected 00000003\n"
                                     "\n\n4 verify errors.\n"))
        << run.output;

    q7sim::control::FlipBitOnRead("Q7_ReadDSDBytes", 3, 64600, 0x01);
    run = RunHandler(TestWriteFlash2xBytesWithHeader, hCal, "100\n16\n1\n4\n3\n1\n0\n3\n5A\n1\n");
    EXPECT_TRUE(EndsWith(run.output, "\nRead back [0000FC58] = FE - Expected FF - Verify ERROR\n"
                                     "\n\n1 verify errors.\n"))
        << run.output;
}

TEST_F(DsdWritingTest, ARegionVerifyErrorStillLetsTheRegionBeRestored)
{
    std::vector<uint8_t> before = DsdStores();
    std::string size = std::to_string(Region(7).size());
    q7sim::control::FlipBitOnRead("Q7_ReadDSDRegionByID", 4, 20, 0x01);  // in the zeroed rest
    HandlerRun run = RunHandler(TestWriteDSDRegionByID, hCal, "7\n1\n10\n1\n1\n");
    EXPECT_EQ(run.result, -1);
    EXPECT_EQ(run.output,
              "\nWriteDSDRegionSizeByID:\n"
              "Enter region ID (dec)             ? "
              "\n    Auto DSD key (1=yes/0=no) ? "
              "\nDSD region size = " + size + " bytes\n"
              "\nNumber of bytes returned by ReadDSDRegionByID = " + size + " bytes\n"
              "\nNumber of bytes to write (<= " + size + "): "
              "Writing random data = 10 bytes\n"
              "\nNumber of bytes actually written by WriteDSDRegionByID = 10\n"
              "\n    Verify write     (1=yes/0=no) ? "
              "\nNumber of bytes returned by ReadDSDRegionByID = " + size + " bytes\n"
              "\n00000014: Wrote 00 - Read back 01 - Verify ERROR"
              "\n\n1 verify errors.\n"
              "\n    Restore contents (1=yes/0=no) ? "
              "\nRestoring original DSD values ... \n"
              "\n    Number of bytes actually written = " + size + "\n");
    EXPECT_TRUE(DsdStores() == before);
}

TEST_F(DsdWritingTest, ARegion4ShorterThanItsKeptBytesKeepsOnlyWhatItHolds)
{
    // The directory entry of block 4 gives its payload a length of 2.
    uint8_t *section = device().dsd.nvm.Section(0);
    section[16 + 4 * 4 + 2] = 0;
    section[16 + 4 * 4 + 3] = 2;
    std::vector<uint8_t> before = Region(4);
    ASSERT_EQ(before.size(), 2u);
    HandlerRun run = RunHandler(TestWriteDSDRegionByID, hCal, "4\n1\n10\n1\n0\n");
    EXPECT_EQ(run.result, 0) << run.output;
    EXPECT_TRUE(Contains(run.output, "(<= 2): \nLeaving the first 2 bytes unchanged.\nWriting random data = 0 bytes\n"))
        << run.output;
    EXPECT_EQ(Region(4), before);
}

TEST_F(DsdWritingTest, KeysComeFromTheDeviceOrAreTypedAndARefusedKeyWritesNothing)
{
    q7sim::control::RefuseWriteKeys(1);
    HandlerRun run = RunHandler(TestRequestDSDWriteKey, hCal);
    EXPECT_EQ(run.result, -1);
    EXPECT_EQ(run.output, "\nRequest DSD Write Key:\n    New DSD key is 00000000\n"
                          "RequestDSDWriteKey operation FAILED with return value 0.\n");

    run = RunHandler(TestRequestDSDWriteKey, hCal);
    EXPECT_EQ(run.result, 0);
    char typed[16];
    ASSERT_EQ(std::sscanf(run.output.c_str(), "\nRequest DSD Write Key:\n    New DSD key is %8s", typed), 1);
    EXPECT_TRUE(EndsWith(run.output, "\nRequestDSDWriteKey was SUCCESSFUL.\n"));

    // An auto-key answer of 2 means no: the key is typed, and serves one write.
    std::string input = "100\n1\n2\n" + std::string(typed) + "\n0\n3\n1\n0\n";
    run = RunHandler(TestWriteDSDBlock, hCal, input);
    EXPECT_EQ(run.result, 0) << run.output;
    EXPECT_TRUE(Contains(run.output, "    DSD Key (hex)     ? ")) << run.output;
    std::vector<uint8_t> before = DsdStores();
    run = RunHandler(TestWriteDSDBlock, hCal, input);
    EXPECT_EQ(run.result, -1);
    EXPECT_TRUE(EndsWith(run.output, "\nWRITE ERROR: DSD write key " + std::string(typed) +
                                         " has already been used: each key is good for one write\n"))
        << run.output;

    // A write abandoned after its key was requested says that the key held
    // before is gone: the region write asks for its count after the request,
    // the byte write for its pattern.
    for (auto [handler, answers] : {std::pair{TestWriteDSDRegionByID, "5\n1\n"}, std::pair{TestWriteDSDBytes, "100\n4\n1\n0\n"}}) {
        run = RunHandler(handler, hCal, answers);
        EXPECT_EQ(run.result, -1);
        EXPECT_TRUE(EndsWith(run.output, "\nEnd of input: command abandoned.\n" TEXT_KEY_REPLACED "\n"))
            << run.output;
    }
    run = RunHandler(TestWriteDSDRegionByID, hCal, "5\n0\n");
    EXPECT_FALSE(Contains(run.output, "replaced")) << run.output;  // a typed key replaces nothing

    // A refused auto key is 0, which the write refuses.
    q7sim::control::RefuseWriteKeys(1);
    run = RunHandler(TestWriteDSDBytes, hCal, "100\n4\n1\n0\n3\n0\n");
    EXPECT_EQ(run.result, -1);
    EXPECT_TRUE(EndsWith(run.output, "\nWRITE ERROR: DSD write key 00000000 is not a key: request one with "
                                     "Q7_RequestDSDWriteKey\n"));
    EXPECT_TRUE(DsdStores() == before);
}

// What each write asks of the device: its range (address or region) and
// size on every read and write, the data write's own count, and a key of its
// own for the restore. Keys show as 1, 2, ... in the order the writes first
// present them.
TEST_F(DsdWritingTest, EachWriteNamesItsRangeItsSizesAndAFreshKeyForTheRestore)
{
    const LoggedCall key{"Q7_RequestDSDWriteKey", {}};
    auto readAt = [](double size, double address) { return LoggedCall{"Q7_ReadDSDBytes", {size, address}}; };
    auto writeAt = [](double keyNumber, double size, double address) {
        return LoggedCall{"Q7_WriteDSDBytes", {keyNumber, size, address}};
    };
    auto readRegion = [](double size) { return LoggedCall{"Q7_ReadDSDRegionByID", {7, size}}; };
    auto writeRegion = [](double keyNumber, double size) {
        return LoggedCall{"Q7_WriteDSDRegionByID", {keyNumber, 7, size}};
    };
    struct Case {
        int (*handler)(CalInterfaceHandle);
        const char *answers;
        std::vector<LoggedCall> calls;
    } cases[] = {
        {TestWriteDSDBlock, "200\n4\n1\n1\n3\nCAFEF00D\n1\n",
         {key, readAt(16, 0x200), readAt(16, 0x200), writeAt(1, 16, 0x200), readAt(16, 0x200), key,
          writeAt(2, 16, 0x200), readAt(16, 0x200)}},
        {TestWriteDSDBytes, "100\n5\n1\n1\n3\n77\n1\n",
         {key, readAt(5, 0x100), readAt(5, 0x100), writeAt(1, 5, 0x100), readAt(5, 0x100), key, writeAt(2, 5, 0x100),
          readAt(5, 0x100)}},
        // The image's data block at its offset, with the header's three words
        // and write mode 1; the whole image is read and restored.
        {TestWriteFlash2xBytesWithHeader, "100\n16\n1\n4\n3\n1\n1\n3\n5A\n1\n",
         {key, readAt(65536, 0), readAt(65536, 0), {"Q7_WriteFlash2xBytesWithHeader", {1, 16, 0x100, 3, 1}},
          readAt(65536, 0), key, writeAt(2, 65536, 0), readAt(65536, 0)}},
        // The region's size asked, then read with room to spare to confirm it.
        {TestWriteDSDRegionByID, "7\n1\n10\n1\n1\n",
         {key, {"Q7_GetDSDRegionSizeByID", {7}}, readRegion(32768), readRegion(760), readRegion(760),
          writeRegion(1, 10), readRegion(760), key, writeRegion(2, 760), readRegion(760)}},
    };
    for (const Case &c : cases) {
        q7sim::control::RecordCalls();
        HandlerRun run = RunHandler(c.handler, hCal, c.answers);
        EXPECT_EQ(run.result, 0) << run.output;
        std::vector<LoggedCall> calls =
            LoggedCallsOf({"Q7_RequestDSDWriteKey", "Q7_ReadDSDBytes", "Q7_WriteDSDBytes", "Q7_GetDSDRegionSizeByID",
                           "Q7_ReadDSDRegionByID", "Q7_WriteDSDRegionByID", "Q7_WriteFlash2xBytesWithHeader"});
        std::vector<double> keys;
        for (LoggedCall &call : calls)
            if (call.first.rfind("Q7_Write", 0) == 0) {
                if (std::find(keys.begin(), keys.end(), call.second[0]) == keys.end())
                    keys.push_back(call.second[0]);
                call.second[0] = double(std::find(keys.begin(), keys.end(), call.second[0]) - keys.begin() + 1);
            }
        EXPECT_EQ(calls, c.calls) << run.output;
        q7sim::control::Reset();
        SetUp();
    }
}

// Each way a write can go wrong, said in its own words: the original read (an
// error, short, two reads that disagree), the verification, and the restore
// (an error, ignored, stopped part-way, not read back, not asked for).
TEST_F(DsdWritingTest, EachWayAWriteCanGoWrongIsSaidInItsOwnWords)
{
    namespace control = q7sim::control;
    const char *const kWarning = "\nWARNING: Original data not restored, because ";
    const std::string kKeyUnused = TEXT_KEY_REPLACED "\n";  // each case requests its key
    struct Case {
        const char *what;
        int (*handler)(CalInterfaceHandle);
        const char *answers;
        std::function<void()> arm;
        std::string tail;
        int result;
    } cases[] = {
        {"original read fails", TestWriteDSDBlock, "100\n2\n1\n1\n",
         [] { control::FailNext("Q7_ReadDSDBytes", 1, "NVM read timed out"); },
         "\n    Restore contents (1=yes/0=no) ? \nREAD ERROR: NVM read timed out\n" + kKeyUnused, -1},
        {"region shorter than its size query", TestWriteDSDRegionByID, "7\n1\n",
         [] { control::ShortRead("Q7_ReadDSDRegionByID", 1, 700); },
         "\nERROR: The region's size query answered 760 bytes and its read 700 bytes: nothing was written\n" + kKeyUnused,
         -1},
        {"region larger than its size query says", TestWriteDSDRegionByID, "5\n1\n",
         [] { control::SkewOutput("Q7_GetDSDRegionSizeByID", 0, -148); },
         "\nERROR: The region's size query answered 100 bytes and its read 248 bytes: nothing was written\n" + kKeyUnused,
         -1},
        {"original read short", TestWriteDSDRegionByID, "7\n1\n", [] { control::ShortRead("Q7_ReadDSDRegionByID", 2, 700); },
         "\nERROR: Only 700 of the 760 bytes of the original contents could be read: nothing was written\n" + kKeyUnused,
         -1},
        {"original reads disagree", TestWriteDSDBytes, "100\n4\n1\n1\n",
         [] { control::FlipBitOnRead("Q7_ReadDSDBytes", 2, 0, 0x01); },
         "\nERROR: The original contents read differently twice: nothing was written\n" + kKeyUnused, -1},
        {"verification read fails", TestWriteDSDBytes, "100\n4\n1\n1\n3\n77\n1\n",
         [] { control::FailCall("Q7_ReadDSDBytes", 3, "NVM read timed out"); },
         "\nRead 4 bytes from dev data memory\n\nREAD ERROR: NVM read timed out\n" + std::string(kWarning) +
             "the verification read failed.\n",
         -1},
        {"verification read fails, no restore asked", TestWriteDSDBytes, "100\n4\n1\n0\n3\n77\n1\n",
         [] { control::FailCall("Q7_ReadDSDBytes", 1, "NVM read timed out"); },
         "\nRead 4 bytes from dev data memory\n\nREAD ERROR: NVM read timed out\n", -1},
        {"a short verification read reads as 0", TestWriteDSDRegionByID, "7\n1\n0\n1\n0\n",
         [] { control::ShortRead("Q7_ReadDSDRegionByID", 4, 0); },
         "\n\n0 verify errors.\n\n    Restore contents (1=yes/0=no) ? \nWriteDSDRegionByID was SUCCESSFUL.\n", 0},
        {"a short block verification read reads as 0", TestWriteDSDBlock, "200\n4\n1\n0\n3\n0\n1\n",
         [] { control::ShortRead("Q7_ReadDSDBytes", 1, 0); }, "? \n0 verify errors.\n\nWriteDSDBlock was SUCCESSFUL.\n", 0},
        {"a short byte verification read reads as 0", TestWriteDSDBytes, "100\n4\n1\n0\n3\n0\n1\n",
         [] { control::ShortRead("Q7_ReadDSDBytes", 1, 0); },
         "\nRead 4 bytes from dev data memory\n\n\n0 verify errors.\n\nTestWriteDSDBytes was SUCCESSFUL.\n", 0},
        {"data write refused, nothing changed", TestWriteDSDBytes, "100\n4\n1\n1\n3\n77\n",
         [] { control::FailNext("Q7_WriteDSDBytes", 1, "NVM write failed"); },
         "\nWRITE ERROR: NVM write failed\n\nThe DSD range is unchanged.\n", -1},
        {"data write fails part-way, restore asked", TestWriteDSDBlock, "200\n4\n1\n1\n3\nCAFEF00D\n",
         [] { control::FailWriteAfter("Q7_WriteDSDBytes", 1, 5); },
         "\nWRITE ERROR: NVM write failed after 5 bytes\n\nRestoring original DSD  values ... \n"
         "\n    Number of 32-bit words actually written = 4\n",
         -1},
        {"data write fails part-way, and the range cannot be read", TestWriteDSDBlock, "200\n4\n1\n1\n3\nCAFEF00D\n",
         [] {
             control::FailWriteAfter("Q7_WriteDSDBytes", 1, 5);
             control::FailCall("Q7_ReadDSDBytes", 3, "NVM read timed out");
         },
         "\nWRITE ERROR: NVM write failed after 5 bytes\n\nREAD ERROR: NVM read timed out\n" + std::string(kWarning) +
             "the range could not be read after the failed write.\n",
         -1},
        {"region write fails part-way, no restore asked yet", TestWriteDSDRegionByID, "7\n1\n10\n",
         [] { control::FailWriteAfter("Q7_WriteDSDRegionByID", 1, 5); },
         "\nWRITE ERROR: NVM write failed after 5 bytes\n" + std::string(kWarning) +
             "the failed write changed the range before the restore question.\n",
         -1},
        {"restore fails", TestWriteDSDBlock, "200\n1\n1\n1\n3\nCAFEF00D\n0\n",
         [] { control::FailCall("Q7_WriteDSDBytes", 2, "NVM write failed"); },
         "\nRestoring original DSD  values ... \n\nWRITE ERROR: NVM write failed\n", -1},
        {"restore ignored", TestWriteDSDBlock, "200\n4\n1\n1\n3\nCAFEF00D\n0\n",
         [] { control::IgnoreWrite("Q7_WriteDSDBytes", 2); },
         "\n    Number of 32-bit words actually written = 4\n" + std::string(kWarning) +
             "the restored data did not read back.\n",
         -1},
        {"restore stopped", TestWriteDSDBlock, "200\n4\n1\n1\n3\nCAFEF00D\n0\n",
         [] { control::StopWriteAfter("Q7_WriteDSDBytes", 2, 4); },
         "\n    Number of 32-bit words actually written = 1\n" + std::string(kWarning) + "the restore wrote 4 of 16 bytes.\n",
         -1},
        {"restore not read back", TestWriteDSDBytes, "100\n4\n1\n1\n3\n77\n0\n",
         [] { control::FailCall("Q7_ReadDSDBytes", 3, "NVM read timed out"); },
         "\nWrote 4 bytes to dev data memory\n\nREAD ERROR: NVM read timed out\n" + std::string(kWarning) +
             "the restored data could not be read back.\n",
         -1},
        {"input ends at the region's restore question", TestWriteDSDRegionByID, "7\n1\n10\n0\n", [] {},
         "\n    Restore contents (1=yes/0=no) ? \nEnd of input: command abandoned.\n" + std::string(kWarning) +
             "input ended.\n",
         -1},
    };
    for (const Case &c : cases) {
        c.arm();
        HandlerRun run = RunHandler(c.handler, hCal, c.answers);
        EXPECT_EQ(run.result, c.result) << c.what;
        EXPECT_TRUE(EndsWith(run.output, c.tail)) << c.what << ":\n" << run.output;
        q7sim::control::Reset();
        SetUp();
    }
}

}  // namespace
