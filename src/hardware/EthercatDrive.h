#pragma once
#include <QtGlobal>

#include <cstring>
#include <map>
#include <string>
#include <utility>

// One object of a drive's process data.
struct PdoEntry
{
    quintptr uId = 0;         // identifies the entry to the bus master
    void* pValue = nullptr;   // where its value lives in the process image; need not be aligned
};

// A CiA 402 servo drive on an EtherCAT bus: names for its objects, read and written in the process image that a bus
// master cycles. The system has no such master yet, and nothing makes one of these. The thread that cycles the image.
//
// A missing entry throws std::out_of_range from the setters, MotionStart, EmergencyStop and MoveDriveHome: an error of
// the program. The operations that name a result for it return that.
class CEthercatDrive
{
public:
    void InitEthercatDrive(int iId) { m_iDriveId = iId; }
    void SetTargetPosition(int iPosition) { SetValue<int>("TargetPosition", iPosition); }
    void SetTargetVelocity(int iVelocity) { SetValue<int>("TargetVelocity", iVelocity); }
    void SetTargetAcceleration(int iAcceleration) { SetValue<int>("TargetAcceleration", iAcceleration); }
    void MotionStart();
    void EmergencyStop();                       // leaves all other bits of the control word
    bool CheckMotionComplete();                 // false if missing
    qint32 MoveDriveHome();                     // 0, or -1 with a line on the error stream: no homing sensor is set
    qint32 GetEncoderPulsesPerRotation();       // -1, with a line on the error stream: the drive does not tell
    quint32 ReadAllInputs();                    // 0 if missing
    std::pair<quint32, quint32> IdentifyIO();   // inputs, outputs; each 0 if missing
    void SetHomingSensorInput(int iInput, bool bPolarity);
    void SetLimitSensorInput(int iInput, bool bPolarity);
    void SetOutputState(int iBit, bool bOn);   // bits beyond 0 to 31 change nothing

    template <class T> void SetValue(const std::string& strName, T value)
    {
        std::memcpy(m_lstPdo.at(strName).pValue, &value, sizeof value);
    }
    template <class T> T GetValue(const std::string& strName) const
    {
        T value;
        std::memcpy(&value, m_lstPdo.at(strName).pValue, sizeof value);
        return value;
    }

    qint32 m_iDriveId = 0;
    std::map<std::string, PdoEntry> m_lstPdo;
    qint32 m_iHomingInput = -1;   // -1: none
    bool m_bHomingPolarity = true;
    std::map<qint32, bool> m_lstLimitInputs;   // and the active level of each

private:
    template <class T> T ValueOr(const std::string& strName, T missing) const
    {
        return m_lstPdo.contains(strName) ? GetValue<T>(strName) : missing;
    }
};
