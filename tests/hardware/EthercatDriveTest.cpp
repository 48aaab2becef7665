#include "hardware/EthercatDrive.h"

#include <gtest/gtest.h>
#include <stdexcept>

class EthercatDrive : public testing::Test
{
protected:
    EthercatDrive() { m_Drive.InitEthercatDrive(7); }
    // An entry at an odd address, as a process image may have it.
    void Map(const std::string& strName, size_t uAt) { m_Drive.m_lstPdo[strName] = {0, m_Image + uAt}; }
    template <class T> T At(size_t uAt) const
    {
        T value;
        std::memcpy(&value, m_Image + uAt, sizeof value);
        return value;
    }

    unsigned char m_Image[32] = {};
    CEthercatDrive m_Drive;
};

TEST_F(EthercatDrive, ChangesItsBitOfTheControlWordAndNoOther)
{
    Map("ControlWord", 1);
    Map("StatusWord", 5);
    m_Drive.SetValue<unsigned short>("ControlWord", 0xA00F);
    m_Drive.MotionStart();
    EXPECT_EQ(At<quint16>(1), 0xA01F);
    m_Drive.EmergencyStop();
    EXPECT_EQ(At<quint16>(1), 0xA01E);
    EXPECT_EQ(At<quint16>(3), 0) << "16 bits";
    m_Drive.SetHomingSensorInput(0, false);
    EXPECT_EQ(m_Drive.MoveDriveHome(), 0);
    EXPECT_EQ(At<quint16>(1), 0xA11E);
    EXPECT_FALSE(m_Drive.CheckMotionComplete());
    m_Drive.SetValue<unsigned short>("StatusWord", 0x0400);
    EXPECT_TRUE(m_Drive.CheckMotionComplete());
    Map("TargetVelocity", 9);
    m_Drive.SetTargetVelocity(-123456);
    EXPECT_EQ(At<qint32>(9), -123456);
}

TEST_F(EthercatDrive, SwitchesOutputsBelowBit32)
{
    Map("DigitalOutputs", 3);
    m_Drive.SetOutputState(31, true);
    for (const int iBit : {32, 33, -1}) m_Drive.SetOutputState(iBit, true);
    EXPECT_EQ(At<quint32>(3), 0x80000000u);
    m_Drive.SetOutputState(0, true);
    EXPECT_EQ(At<quint32>(3), 0x80000001u);
    m_Drive.SetOutputState(31, false);
    EXPECT_EQ(At<quint32>(3), 1u);
}

TEST_F(EthercatDrive, TellsWhatADriveDoesNotHave)
{
    testing::internal::CaptureStderr();
    testing::internal::CaptureStdout();
    EXPECT_EQ(m_Drive.MoveDriveHome(), -1);
    EXPECT_EQ(m_Drive.GetEncoderPulsesPerRotation(), -1);
    m_Drive.SetHomingSensorInput(3, true);
    m_Drive.SetLimitSensorInput(4, false);
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "No homing sensor defined for drive 7\n"
                                                      "Encoder resolution not available for drive 7\n");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "Drive 7: Homing sensor set to input 3 polarity=1\n"
                                                      "Drive 7: Limit sensor set to input 4 polarity=0\n");
    EXPECT_EQ(m_Drive.m_lstLimitInputs, (std::map<qint32, bool>{{4, false}}));
    EXPECT_FALSE(m_Drive.CheckMotionComplete());
    EXPECT_EQ(m_Drive.ReadAllInputs(), 0u);
    Map("SupportedOutputs", 0);
    m_Drive.SetValue<unsigned int>("SupportedOutputs", 16);
    EXPECT_EQ(m_Drive.IdentifyIO(), std::pair(0u, 16u));
    for (const auto& [strName, iValue] : {std::pair("0x6091:01", 1), {"0x608F:01", 2}, {"0x607E:01", 3}}) {
        Map(strName, 8);
        m_Drive.SetValue<int>(strName, iValue);
        EXPECT_EQ(m_Drive.GetEncoderPulsesPerRotation(), iValue) << "asked for first";
    }

    EXPECT_THROW(m_Drive.SetTargetPosition(1), std::out_of_range);
    EXPECT_THROW(m_Drive.MotionStart(), std::out_of_range);
    EXPECT_THROW(m_Drive.EmergencyStop(), std::out_of_range);
    EXPECT_THROW(m_Drive.MoveDriveHome(), std::out_of_range);
    EXPECT_THROW(m_Drive.SetOutputState(1, true), std::out_of_range);
}
