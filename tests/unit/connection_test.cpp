#include <gtest/gtest.h>

#include <unistd.h>

#include <string>
#include <vector>

#include "SimControl.h"
#include "connection.h"
#include "console_capture.h"
#include "instant_sleep.h"

namespace {

class ConnectionTest : public ::testing::Test {
protected:
    void SetUp() override
    {
        q7sim::control::Reset();
        ForgetSleeps();
    }
    void TearDown() override { q7sim::control::Reset(); }

    CalInterfaceHandle Open()
    {
        char buffer[128];
        return Q7_GetCalInterface(Q7_INTERFACE_LOCAL, buffer, nullptr);
    }
};

TEST_F(ConnectionTest, ADeviceThatNeverAnswersFailsAfterExactlyTenAttempts)
{
    q7sim::control::ConnectSucceedsAtAttempt(0);
    int result = 0;
    std::string output = RunWithInput("", [&] { result = Initialize(Open()); });
    EXPECT_EQ(result, -1);
    EXPECT_EQ(Count(output, "\nTrying to open handle to Device..."), 10u);
    EXPECT_EQ(Count(output, "\nFailed because: "), 10u);
    EXPECT_EQ(Sleeps(), std::vector<uint32_t>(10, 1000));
    EXPECT_EQ(output.find("Success"), std::string::npos);
}

// No interface to be had: a null handle is no attempt, and no connection.
TEST_F(ConnectionTest, ANullHandleFailsWithoutAnAttempt)
{
    int result = 0;
    EXPECT_EQ(RunWithInput("", [&] { result = Initialize(nullptr); }), "");
    EXPECT_EQ(result, -1);
}

TEST_F(ConnectionTest, AtExitTheDeviceIsDisconnectedAndThenTheInterfaceClosed)
{
    CalInterfaceHandle hCal = Open();
    ASSERT_EQ(Q7_ConnectDevice(hCal), nullptr);
    q7sim::control::RecordCalls();
    std::string output = RunWithInput("", [&] { CloseApplication(hCal); });
    EXPECT_EQ(output, "\nClosing application...\n");
    // A disconnect after the close would find no interface, and is not logged.
    EXPECT_EQ(q7sim::control::Calls(), std::vector<std::string>{"Q7_DisconnectDevice"});
    EXPECT_EQ(q7sim::control::OpenDevice(), nullptr) << "the interface is closed";
}

TEST_F(ConnectionTest, SelectInterfaceEndsTheProgramWithStatusOneWhenTheDeviceNeverAnswers)
{
    q7sim::control::ConnectSucceedsAtAttempt(0);
    uint32_t type = 0;
    EXPECT_EXIT(
        {
            dup2(STDERR_FILENO, STDOUT_FILENO);  // let the death test see what was printed
            SelectInterface(&type);
        },
        ::testing::ExitedWithCode(1), "Failed because: .*\nERROR: Unable to open a Local Cal API interface\n\n$");
}

}  // namespace
