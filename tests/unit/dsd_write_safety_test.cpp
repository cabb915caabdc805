// Data safety of the DSD writes over many seeded random requests and injected
// faults: after every command each byte of every store holds either its
// original value or the value the write puts there, and a store that is not
// back to its original contents was reported (the written count, verify
// errors, the WARNING or a WRITE ERROR). Faults act on the data write, the
// verification read and the restoring write; a wrong read of the original
// contents is beyond what the procedures can see and is not injected.
#include <gtest/gtest.h>

#include <cstdio>
#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "Faults.h"
#include "SimControl.h"
#include "commands.h"
#include "console_capture.h"

namespace {

using q7sim::Nvm;

enum class Kind { Block, Bytes, Flash2x, Region };

enum class Fault {
    None,
    RefusedKey,
    FailDataWrite,
    IgnoreDataWrite,
    StopDataWrite,
    FlipVerifyRead,
    FailVerifyRead,
    FailRestore,
    IgnoreRestore,
    StopRestore,
    Count,
};

const char *const kFaultNames[] = {"none",        "refused key",       "failed data write", "ignored data write",
                                   "stopped data write", "flipped verify read", "failed verify read",
                                   "failed restore", "ignored restore",  "stopped restore"};

struct Request {
    Kind kind;
    uint32_t nvmMode;
    uint32_t section;  // the current section in NVM mode 0; 2 is read-only
    std::string parameters;  // the answers before the key
    std::string pattern;     // the pattern answers (block and byte writes)
    uint32_t count;          // bytes the data write covers
    bool autoKey;
    bool restore;
    bool verify;
    Fault fault;
    uint32_t faultByte;
    unsigned seed;

    // The answers of the whole command.
    std::string Script(bool withRestore, bool withVerify, bool withAutoKey) const
    {
        std::string key = withAutoKey ? "1\n" : "0\n1234ABCD\n";
        std::string r = withRestore ? "1\n" : "0\n";
        std::string v = withVerify ? "1\n" : "0\n";
        if (kind == Kind::Region)
            return parameters + key + std::to_string(count) + "\n" + v + r;
        return parameters + key + r + pattern + v;
    }

    const char *DataWrite() const
    {
        return kind == Kind::Flash2x  ? "Q7_WriteFlash2xBytesWithHeader"
               : kind == Kind::Region ? "Q7_WriteDSDRegionByID"
                                      : "Q7_WriteDSDBytes";
    }
    const char *RestoreWrite() const { return kind == Kind::Region ? "Q7_WriteDSDRegionByID" : "Q7_WriteDSDBytes"; }
    unsigned RestoreCall() const { return std::string(DataWrite()) == RestoreWrite() ? 2 : 1; }
    const char *ReadOp() const { return kind == Kind::Region ? "Q7_ReadDSDRegionByID" : "Q7_ReadDSDBytes"; }
    unsigned VerifyReadCall() const
    {
        bool originalRead = restore || kind == Kind::Flash2x || kind == Kind::Region;
        return originalRead ? 2 : 1;
    }
    int (*Handler() const)(CalInterfaceHandle)
    {
        switch (kind) {
        case Kind::Block:
            return TestWriteDSDBlock;
        case Kind::Bytes:
            return TestWriteDSDBytes;
        case Kind::Flash2x:
            return TestWriteFlash2xBytesWithHeader;
        case Kind::Region:
            break;
        }
        return TestWriteDSDRegionByID;
    }
    // The line that reports the data write's count, and the restore's.
    std::string DataCountLine() const
    {
        return kind == Kind::Block    ? "\nNumber of 32-bit words actually written = "
               : kind == Kind::Region ? "\nNumber of bytes actually written by WriteDSDRegionByID = "
                                      : "\nWrote ";
    }
    bool Restored(const std::string &output) const
    {
        if (kind == Kind::Block)
            return Contains(output, "\n    Number of 32-bit words actually written = ");
        if (kind == Kind::Region)
            return Contains(output, "\n    Number of bytes actually written = ");
        return Count(output, "\nWrote ") == 2;
    }
};

std::string Hex(uint32_t value)
{
    char text[16];
    std::snprintf(text, sizeof text, "%X", value);
    return text;
}

Request RandomRequest(std::mt19937 &rng)
{
    auto pick = [&rng](uint32_t low, uint32_t high) { return std::uniform_int_distribution<uint32_t>(low, high)(rng); };
    Request r{};
    r.kind = static_cast<Kind>(pick(0, 3));
    r.nvmMode = r.kind == Kind::Flash2x ? (pick(0, 9) == 0 ? 1 : 0) : pick(0, 2);
    r.section = r.nvmMode == 0 && pick(0, 9) == 0 ? 2 : 0;
    r.autoKey = pick(0, 9) != 0;
    r.restore = pick(0, 3) != 0;
    r.verify = pick(0, 3) != 0;
    r.fault = static_cast<Fault>(pick(0, static_cast<uint32_t>(Fault::Count) - 1));
    r.faultByte = pick(0, 65535);
    r.seed = pick(1, 1000000);
    std::string patterns[] = {"1\n", "3\n" + Hex(pick(0, 0xFFFFFFFF)) + "\n",
                              "2\n" + Hex(pick(0, 0xFFFFFFFF)) + "\n" + Hex(pick(0, 0xFFFF)) + "\n"};
    r.pattern = patterns[pick(0, 2)];
    switch (r.kind) {
    case Kind::Block: {
        uint32_t words = pick(0, 32);
        r.count = 4 * words;
        r.parameters = Hex(4 * pick(0, 0x2000)) + "\n" + std::to_string(words) + "\n";
        break;
    }
    case Kind::Bytes:
        r.count = pick(0, 128);
        r.parameters = Hex(pick(0, 0x8000)) + "\n" + std::to_string(r.count) + "\n";
        break;
    case Kind::Flash2x: {
        uint32_t offset = pick(0, 1) ? pick(0, 65536) : pick(64000, 65536);
        r.count = std::min(pick(0, 1024), 65536 - offset);
        r.parameters = Hex(offset) + "\n" + std::to_string(r.count) + "\n" + std::to_string(pick(1, 2)) + "\n" +
                       std::to_string(pick(1, 63)) + "\n" + std::to_string(pick(0, 10)) + "\n";
        break;
    }
    case Kind::Region:
        r.count = pick(0, 800);
        r.parameters = std::to_string(pick(1, 11)) + "\n";
        break;
    }
    return r;
}

class DsdWriteSafetyTest : public SimulatedDeviceTest {
protected:
    // The factory's stores and no faults, with the request's NVM mode and
    // current section (a fresh device each time would be much slower).
    void Prepare(const Request &r, const std::vector<uint8_t> &factory)
    {
        q7sim::Faults().Clear();
        const uint8_t *bytes = factory.data();
        for (uint32_t section = 0; section < Nvm::kSectionCount; section++, bytes += Nvm::kSectionSize)
            std::copy(bytes, bytes + Nvm::kSectionSize, device().dsd.nvm.Section(section));
        std::copy(bytes, bytes + q7sim::Dsd::kBufferSize, device().dsd.Area(q7sim::Dsd::kNvmModeBuffer).bytes);
        ASSERT_EQ(Q7_SetOptionByID(hCal, Q7_OPTION_NVM_MODE, r.nvmMode), nullptr);
        ASSERT_EQ(Q7_SelectCurrentDSDSection(hCal, r.section), nullptr);
    }

    void ArmFault(const Request &r)
    {
        namespace control = q7sim::control;
        switch (r.fault) {
        case Fault::None:
        case Fault::Count:
            break;
        case Fault::RefusedKey:
            control::RefuseWriteKeys(1);
            break;
        case Fault::FailDataWrite:
            control::FailCall(r.DataWrite(), 1, "NVM write failed");
            break;
        case Fault::IgnoreDataWrite:
            control::IgnoreWrite(r.DataWrite(), 1);
            break;
        case Fault::StopDataWrite:
            control::StopWriteAfter(r.DataWrite(), 1, r.faultByte % (r.count + 1));
            break;
        case Fault::FlipVerifyRead:
            control::FlipBitOnRead(r.ReadOp(), r.VerifyReadCall(), r.faultByte, 0x10);
            break;
        case Fault::FailVerifyRead:
            control::FailCall(r.ReadOp(), r.VerifyReadCall(), "NVM read timed out");
            break;
        case Fault::FailRestore:
            control::FailCall(r.RestoreWrite(), r.RestoreCall(), "NVM write failed");
            break;
        case Fault::IgnoreRestore:
            control::IgnoreWrite(r.RestoreWrite(), r.RestoreCall());
            break;
        case Fault::StopRestore:
            control::StopWriteAfter(r.RestoreWrite(), r.RestoreCall(), r.faultByte % 64);
            break;
        }
    }
};

TEST_F(DsdWriteSafetyTest, EveryStoreHoldsItsOriginalOrTheWrittenDataAndAnyChangeIsReported)
{
    std::mt19937 rng(20240611u);
    const std::vector<uint8_t> factory = DsdStores();
    for (int i = 0; i < 300; i++) {
        Request r = RandomRequest(rng);

        // What a complete data write alone leaves in the stores: the same
        // answers and the same C library random data, no restore, no faults.
        Prepare(r, factory);
        std::srand(r.seed);
        RunHandler(r.Handler(), hCal, r.Script(false, false, true));
        std::vector<uint8_t> written = DsdStores();

        Prepare(r, factory);
        std::vector<uint8_t> original = DsdStores();
        ArmFault(r);
        std::srand(r.seed);
        std::string script = r.Script(r.restore, r.verify, r.autoKey);
        HandlerRun run = RunHandler(r.Handler(), hCal, script);
        std::vector<uint8_t> after = DsdStores();

        SCOPED_TRACE("request " + std::to_string(i) + ", fault " + kFaultNames[static_cast<int>(r.fault)] +
                     ", NVM mode " + std::to_string(r.nvmMode) + ", section " + std::to_string(r.section) +
                     ", answers:\n" + script + "output:\n" + run.output.substr(0, 3000));
        size_t foreign = 0;
        for (size_t b = 0; b < after.size(); b++)
            if (after[b] != original[b] && after[b] != written[b])
                foreign++;
        EXPECT_EQ(foreign, 0u) << "bytes that are neither original nor written";

        bool dataWritten = Contains(run.output, r.DataCountLine());
        bool reported = dataWritten || Contains(run.output, "WRITE ERROR") || Contains(run.output, "WARNING") ||
                        (Contains(run.output, " verify errors.\n") && !Contains(run.output, "\n0 verify errors.\n"));
        if (after != original) {
            EXPECT_TRUE(reported) << "a changed store that nobody was told about";
            EXPECT_TRUE(dataWritten) << "the store changed without a data write being reported";
        }
        bool restoreFaulted = r.fault == Fault::IgnoreRestore || r.fault == Fault::StopRestore;
        if (r.Restored(run.output) && !restoreFaulted) {
            EXPECT_TRUE(after == original) << "a reported restore left the store changed";
        }
        if (run.result == 0 && r.verify && !r.restore) {
            EXPECT_TRUE(after == written) << "a verified write reads back as written";
        }
        if (HasFailure())
            break;
    }
}

}  // namespace
