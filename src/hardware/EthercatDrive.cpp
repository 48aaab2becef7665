#include "hardware/EthercatDrive.h"

#include <iostream>

static constexpr unsigned short SWITCH_ON = 1u << 0, NEW_SET_POINT = 1u << 4, HALT_AND_HOME = 1u << 8,
                                TARGET_REACHED = 1u << 10;

void CEthercatDrive::MotionStart()
{
    const auto uControl = GetValue<unsigned short>("ControlWord");
    SetValue<unsigned short>("ControlWord", uControl | NEW_SET_POINT);
}

void CEthercatDrive::EmergencyStop()
{
    const auto uControl = GetValue<unsigned short>("ControlWord");
    SetValue<unsigned short>("ControlWord", static_cast<unsigned short>(uControl & ~SWITCH_ON));
}

bool CEthercatDrive::CheckMotionComplete()
{
    return ValueOr<unsigned short>("StatusWord", 0) & TARGET_REACHED;
}

qint32 CEthercatDrive::MoveDriveHome()
{
    if (m_iHomingInput == -1) {
        std::cerr << "No homing sensor defined for drive " << m_iDriveId << std::endl;
        return -1;
    }
    const auto uControl = GetValue<unsigned short>("ControlWord");
    SetValue<unsigned short>("ControlWord", uControl | HALT_AND_HOME);
    return 0;
}

qint32 CEthercatDrive::GetEncoderPulsesPerRotation()
{
    for (const char* szName : {"0x607E:01", "0x608F:01", "0x6091:01"})
        if (m_lstPdo.contains(szName)) return GetValue<int>(szName);
    std::cerr << "Encoder resolution not available for drive " << m_iDriveId << std::endl;
    return -1;
}

quint32 CEthercatDrive::ReadAllInputs()
{
    return ValueOr<unsigned int>("DigitalInputs", 0);
}

std::pair<quint32, quint32> CEthercatDrive::IdentifyIO()
{
    return {ValueOr<unsigned int>("SupportedInputs", 0), ValueOr<unsigned int>("SupportedOutputs", 0)};
}

void CEthercatDrive::SetHomingSensorInput(int iInput, bool bPolarity)
{
    m_iHomingInput = iInput;
    m_bHomingPolarity = bPolarity;
    std::cout << "Drive " << m_iDriveId << ": Homing sensor set to input " << iInput << " polarity=" << bPolarity
              << std::endl;
}

void CEthercatDrive::SetLimitSensorInput(int iInput, bool bPolarity)
{
    m_lstLimitInputs[iInput] = bPolarity;
    std::cout << "Drive " << m_iDriveId << ": Limit sensor set to input " << iInput << " polarity=" << bPolarity
              << std::endl;
}

void CEthercatDrive::SetOutputState(int iBit, bool bOn)
{
    auto uOutputs = ValueOr<unsigned int>("DigitalOutputs", 0);
    const quint32 uMask = iBit >= 0 && iBit < 32 ? 1u << iBit : 0u;
    uOutputs = bOn ? uOutputs | uMask : uOutputs & ~uMask;
    SetValue<unsigned int>("DigitalOutputs", uOutputs);
}
